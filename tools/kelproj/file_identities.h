#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>

namespace kelproj {

/// The rest of the identity of a file behind that of a directory; nothing if it is not below.
std::optional<std::string> PartBelow(const std::string& directory, const std::string& file);

/// Tells whether two paths are of one file: the same name in the same directory, however that is
/// spelled and whatever links lead to it. The file need not exist; a file that is itself a link is
/// another one than its target.
class FileIdentities {
 public:
  /// The one text that all absolute paths of the file have.
  std::string Of(const std::filesystem::path& path);

  /// The same for a directory, with which the identity of every file below begins.
  const std::string& OfDirectory(const std::filesystem::path& path);

 private:
  std::unordered_map<std::string, std::string> directories_;
};

}  // namespace kelproj
