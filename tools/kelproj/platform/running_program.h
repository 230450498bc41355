#pragma once

#include <filesystem>

namespace kelproj {

/// Where the program lies now, wherever its installation was moved to; empty if that is unknown.
std::filesystem::path RunningProgram();

}  // namespace kelproj
