#pragma once

#include <optional>
#include <string>

#include <sys/stat.h>

namespace projectdb::files {

/// The status of the file at a path, or at the end of its symbolic links.
/// @return nothing if there is none
/// @exception Failure if the system does not tell
std::optional<struct stat> FindStatus(const std::string& path);

/// Whether a regular file is at a path, or at the end of its symbolic links. Anything else, such as
/// a pipe, may keep who opens it waiting.
/// @exception Failure if the system does not tell
bool IsRegularFile(const std::string& path);

}  // namespace projectdb::files
