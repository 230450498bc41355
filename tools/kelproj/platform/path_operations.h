#pragma once

#include <filesystem>
#include <string>

/// What is done with paths here alone, as some standard libraries do not know that a share is a
/// root as a drive is.
namespace kelproj {

/// Where the user stands.
std::filesystem::path CurrentDirectory();

/// Where a name leads from a directory.
/// @param directory absolute
std::filesystem::path PathIn(const std::filesystem::path& directory, const std::string& name);

/// The path without "." and ".." by its text alone.
std::filesystem::path LexicallyNormal(const std::filesystem::path& path);

/// The path without "." and "..", and without links as far as it exists and the system tells.
/// @param path absolute
std::filesystem::path WithoutLinks(const std::filesystem::path& path);

/// The way from a directory to a path by their texts alone; empty if there is none, as from one
/// drive to another.
std::filesystem::path LexicallyRelative(const std::filesystem::path& path,
                                        const std::filesystem::path& directory);

}  // namespace kelproj
