#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/open_file.h"

namespace projectdb::files {

/// A directory whose entries are changed.
class Directory {
 public:
  /// @exception Failure if it cannot be opened
  explicit Directory(std::filesystem::path path);

  const std::filesystem::path& path() const { return path_; }
  const OpenFile& file() const { return file_; }

  /// Brings its entries to the disk, on file systems that can do that.
  void Flush() const;

 private:
  std::filesystem::path path_;
  OpenFile file_;
};

/// A new file that removes itself, unless it is given another name. It is locked for as long as
/// it is temporary: one that nobody has locked was left behind by a process that was killed.
class TemporaryFile {
 public:
  /// Creates an empty file under a name that cannot be foreseen and has no extension.
  /// @param directory outlives this object
  /// @param former what the file is to replace: whoever may not read that may not read this one;
  ///        null for a file that gets the permissions of any new one
  /// @exception Failure if it cannot be created
  TemporaryFile(const Directory& directory, const std::filesystem::path* former);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  std::filesystem::path path() const { return directory_.path() / name_; }
  const OpenFile& file() const { return *file_; }

  /// Brings the file to the disk.
  /// @exception Failure if that fails
  void Flush() const;

  /// Gives it this name in its directory, in place of the file of that name; then it stays.
  /// @exception Failure if that fails
  void RenameTo(const std::filesystem::path& name);

  /// Gives it this name in its directory, where there is no file of that name; then it stays.
  /// @return whether there was none
  /// @exception Failure if that fails for another reason
  bool LinkTo(const std::filesystem::path& name);

  /// Gives its lock back, which only a temporary file needs.
  void Unlock() const;

 private:
  /// No file yet: once this has run, the destructor cleans up after whatever fails.
  explicit TemporaryFile(const Directory& directory) : directory_(directory) {}

  void Create(const std::filesystem::path* former);

  const Directory& directory_;
  std::string name_;
  std::optional<OpenFile> file_;
  bool stays_ = false;
};

/// Removes the temporary files that were left behind in a directory, as far as that is possible.
void RemoveAbandonedFiles(const Directory& directory);

}  // namespace projectdb::files
