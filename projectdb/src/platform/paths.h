#pragma once

#include <filesystem>
#include <string>

/// File names as UTF-8 strings. They go to and from paths here alone, as the standard library's own
/// functions for UTF-8 paths differ between C++17 and C++20.
namespace projectdb::paths {

/// The path with these bytes, UTF-8 or not.
std::filesystem::path FromBytes(const std::string& name);

/// The path's bytes: UTF-8 if what it was made from was UTF-8.
std::string ToBytes(const std::filesystem::path& path);

/// @exception std::range_error if the name is not UTF-8
std::filesystem::path FromUtf8(const std::string& name);

/// Whether the path is on a share of a machine, which the standard library may not know for a root.
bool IsOnShare(const std::filesystem::path& path);

/// Whether the path is the same in every directory and on every drive.
bool IsAbsolute(const std::filesystem::path& path);

/// The path below a base. One with a root alone is on the drive or the share of the base, where
/// there are such.
/// @param path not on a share
std::filesystem::path Below(const std::filesystem::path& base, const std::filesystem::path& path);

/// The path below the current directory, unless it is absolute. No lexical normalisation.
/// @exception std::filesystem::filesystem_error if the system does not tell that directory
std::filesystem::path Absolute(const std::filesystem::path& path);

/// The stored name resolved against a base directory: as it is if it is absolute, else below the
/// base. No lexical normalisation; the file need not exist.
/// @exception std::range_error if the name is not UTF-8
std::filesystem::path ResolveProjectPath(const std::filesystem::path& base,
                                         const std::string& name);

}  // namespace projectdb::paths
