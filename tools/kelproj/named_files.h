#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "console.h"

namespace kelproj {

/// Whether a file is there; a directory is none.
bool IsFile(const std::filesystem::path& path);

/// Writes a warning for each of the names, seen from the directory, that is not that of a file.
void WarnOfMissingFiles(const Console& console, const std::filesystem::path& directory,
                        const std::vector<std::string>& names);

}  // namespace kelproj
