#pragma once

#include <filesystem>

namespace kelproj {

/// Whether a path is on a share, or on what else the system knows by two separators.
bool IsOnShare(const std::filesystem::path& path);

/// A path on a share, taken apart.
struct PathOnShare {
  std::filesystem::path share;  ///< Such as "//server/share".
  std::filesystem::path place;  ///< There: with a root, or empty.
};

/// @param path on a share
PathOnShare TakeApart(const std::filesystem::path& path);

}  // namespace kelproj
