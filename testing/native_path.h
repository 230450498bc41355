#pragma once

#include <filesystem>
#include <string>

namespace test_support {

/// The path with a name in UTF-8, which is how the library takes names everywhere.
std::filesystem::path NativePath(const std::string& name);

/// The name of a path in UTF-8.
inline std::string PathText(const std::filesystem::path& path) {
  const auto name = path.u8string();  // Of another type since C++20.
  return std::string(name.begin(), name.end());
}

/// The name of something in the root directory, on the drive of the current one if there are
/// drives.
inline std::string InRoot(const std::string& name) {
  return PathText(std::filesystem::current_path().root_name()) + "/" + name;
}

}  // namespace test_support
