#pragma once

#include <filesystem>

namespace kelproj {

/// Whether this process may read a file that is there.
bool MayRead(const std::filesystem::path& path);

/// Whether this process may write a file, or files into a directory.
bool MayWrite(const std::filesystem::path& path);

}  // namespace kelproj
