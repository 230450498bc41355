#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Paths as they stand in "file" URIs, where "/" parts them.
namespace projectdb::paths {

/// @param path absolute
/// @return the text that begins with "/"
std::string ToUriPath(const std::filesystem::path& path);

/// @param text the inverse of ToUriPath, or a relative path
std::filesystem::path FromUriPath(const std::string& text);

/// Whether what stands before the first ":" of a reference is no scheme but a drive.
bool IsDrive(std::string_view scheme);

/// Whether a path leads to another machine, or to a device.
bool IsBeyondFiles(const std::filesystem::path& path);

}  // namespace projectdb::paths
