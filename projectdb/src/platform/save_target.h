#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/file_status.h"

namespace projectdb::files {

/// The file that a save puts in place.
struct SaveTarget {
  std::filesystem::path path;        ///< Absolute, and no symbolic link.
  std::optional<FileStatus> former;  ///< Of the file that is there.
};

/// The file at a path or at the end of its links.
/// @exception Failure if it is there and may not be replaced: what is no regular file, or what this
///            process may not write
SaveTarget FindSaveTarget(const std::string& path);

}  // namespace projectdb::files
