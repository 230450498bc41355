#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kelproj {

/// The file .gitattributes at the top of a working tree, which tells git the drivers of files.
class GitAttributes {
 public:
  /// @param top of a working tree; the file need not be there
  /// @exception Trouble if the file cannot be read
  explicit GitAttributes(const std::filesystem::path& top);

  /// Has the drivers of this program handle the files of a pattern.
  void Add(const std::string& pattern);
  void Remove(const std::string& pattern);

  const std::filesystem::path& path() const { return path_; }

  /// Whether it is a symbolic link, which git does not follow since 2.32.
  bool is_link() const;

  /// Writes the file anew, whole or not at all, if it changed, and removes one without lines. A
  /// link stays one, and what it leads to is written.
  /// @exception Trouble if that fails
  void Save() const;

 private:
  std::filesystem::path path_;
  std::vector<std::string> lines_;  ///< With their ends, which the last one may lack.
  bool is_changed_ = false;
};

/// The pattern that stands for the path alone.
std::string LiteralPattern(const std::string& path);

}  // namespace kelproj
