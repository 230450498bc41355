#pragma once

#include <string>
#include <vector>

#include "console.h"

namespace kelproj {

/// Runs the program.
/// @param arguments without the program's name
ExitStatus RunProgram(const std::vector<std::string>& arguments, const Console& console);

}  // namespace kelproj
