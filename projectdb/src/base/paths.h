#pragma once

#include <filesystem>
#include <string>

/// File names as UTF-8 strings.
namespace projectdb::paths {

/// @exception std::range_error if the name is not UTF-8
std::filesystem::path FromUtf8(const std::string& name);

/// The stored name resolved against a base directory: as it is if it is absolute, else below the
/// base. No lexical normalisation; the file need not exist.
/// @exception std::range_error if the name is not UTF-8
std::filesystem::path ResolveProjectPath(const std::filesystem::path& base,
                                         const std::string& name);

}  // namespace projectdb::paths
