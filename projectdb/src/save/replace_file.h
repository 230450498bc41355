#pragma once

#include <functional>
#include <string>

namespace projectdb::files {

/// How the new content of a file is made and whether it may take the place of the former.
struct Replacement {
  /// Writes the content to a file of this path. One that leaves the file empty has nothing to save.
  std::function<void(const std::string& path)> write;
  /// Called when the new file is whole, right before it takes the place of the former one, and told
  /// whether this process has the lock of the former one. Meanwhile no other thread replaces a file
  /// or gives back its lock.
  std::function<void(bool is_locked)> confirm = [](bool /*is_locked*/) {};
  /// Called instead of taking the place of a file that came to be meanwhile where there was none;
  /// nothing is written then. By default that file is replaced.
  std::function<void()> refuse = nullptr;
};

/// Puts a new file in the place of the one at the path, or where there is none, so that the path
/// holds the one or the other, whole, at every moment, as <projectdb/durable_export.h> describes
/// it.
///
/// @param path not empty
/// @exception Failure with the reason if the file cannot be replaced; it is then as it was, unless
///            only the flush of the directory failed
/// @exception what write and confirm throw; the file is then as it was
void ReplaceFile(const std::string& path, const Replacement& replacement);

}  // namespace projectdb::files
