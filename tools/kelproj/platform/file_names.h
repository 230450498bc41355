#pragma once

#include <filesystem>
#include <string>

/// Names of files as UTF-8 texts. They go to and from paths here alone, as the standard library
/// takes texts on some systems for something else.
namespace kelproj {

std::filesystem::path PathFrom(const std::string& name);

/// Whether the name is the same file from every directory.
bool IsAbsolute(const std::string& name);

/// What git gives in place of a file that is not there: the device with nothing in it.
inline constexpr char kNoFile[] = "/dev/null";

/// Whether the name is kNoFile, or what the system calls that device.
bool IsNoFile(const std::string& name);

/// The name of a path, its parts parted by slashes.
std::string NameFrom(const std::filesystem::path& path);

}  // namespace kelproj
