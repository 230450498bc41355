#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

/// Symbolic links, also those that lead to no file.
namespace projectdb::files {

/// What a symbolic link leads to, absolute or below its directory.
/// @param data what the system tells of a reparse point
/// @return nothing if that is no symbolic link
std::optional<std::filesystem::path> TargetIn(const std::vector<std::byte>& data);

/// What the symbolic link at a path leads to, absolute or below its directory.
/// @return nothing if no link is there
/// @exception Failure if the system does not tell
std::optional<std::filesystem::path> ReadLink(const std::filesystem::path& path);

}  // namespace projectdb::files
