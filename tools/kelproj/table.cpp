#include "table.h"

#include <algorithm>
#include <ostream>

namespace kelproj {
namespace {

// In characters, of a text in UTF-8.
std::size_t Width(const std::string& text) {
  const auto begins_character = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins_character));
}

TextTable MadePrintable(TextTable table) {
  for (auto& row : table) {
    for (std::string& cell : row) cell = Printable(cell);
  }
  return table;
}

std::vector<std::size_t> ColumnWidths(const TextTable& table) {
  std::vector<std::size_t> widths;
  for (const auto& row : table) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  return widths;
}

}  // namespace

void WriteTable(const Console& console, const TextTable& table, int indentation) {
  const TextTable rows = MadePrintable(table);
  const std::vector<std::size_t> widths = ColumnWidths(rows);
  for (const auto& row : rows) {
    std::string line(static_cast<std::size_t>(indentation), ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i] + std::string(widths[i] - Width(row[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    console.out << line << '\n';
  }
}

}  // namespace kelproj
