#pragma once

#include <filesystem>
#include <string>

namespace kelproj {

/// Where the program lies now, wherever its installation was moved to; empty if that is unknown.
std::filesystem::path RunningProgram();

/// Where a file of the program was to be installed when that was built; empty where users who
/// install nothing may make files at such a place.
/// @param name absolute
std::filesystem::path PlaceOfInstallation(const std::string& name);

}  // namespace kelproj
