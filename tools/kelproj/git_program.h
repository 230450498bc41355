#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelproj {

/// The program git, run in a directory, or where the user stands if the environment has GIT_DIR.
class Git {
 public:
  explicit Git(std::filesystem::path directory) : directory_(std::move(directory)) {}

  /// What git prints, without the end of the last line; nothing if it ends in another status than
  /// 0, whose reason nobody sees.
  /// @exception Trouble if there is no git
  std::optional<std::string> Ask(const std::vector<std::string>& arguments) const;

  /// @exception Trouble with git's own words if it ends in another status than 0
  void Tell(const std::vector<std::string>& arguments) const;

 private:
  std::filesystem::path directory_;
};

}  // namespace kelproj
