#pragma once

#include <string>
#include <vector>

#include "console.h"

namespace kelproj {

/// Rows of cells that are written below each other, indented.
using TextTable = std::vector<std::vector<std::string>>;

/// Writes the table's rows as lines, each column as wide as its widest cell.
void WriteTable(const Console& console, const TextTable& table, int indentation = 2);

}  // namespace kelproj
