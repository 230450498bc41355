#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/open_file.h"

namespace projectdb::files {

/// A lock on a file, exclusive among all that ask for it, in this process and in others. It is on
/// the file, whatever its name. When this process replaces the file, LockHandover takes the lock
/// over to the new one.
class FileLock {
 public:
  /// @param longest_wait for ever if not given
  /// @exception NoLocks if the file system has none
  /// @exception Failure if the path names no regular file that can be opened and locked, or if the
  ///            wait took too long
  FileLock(const std::string& path, std::optional<std::chrono::milliseconds> longest_wait);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  /// @param file as StatusOfLocked gives it
  bool IsOn(const FileStatus& file) const;

 private:
  friend class LockHandover;

  std::unique_ptr<OpenFile> file_;
};

/// Whether this process has a lock on the file at the path.
/// @exception Failure if the system does not tell
bool IsLockedHere(const std::string& path);

/// Takes the lock that this process has on a file, if it has one, over to the file that replaces
/// it. Meanwhile no other thread gives back a lock or replaces a file.
class LockHandover {
 public:
  /// Locks the replacement too, which nobody else knows yet.
  /// @param path of the file that is to be replaced
  /// @param former its status
  /// @exception Failure if the replacement cannot be locked, or if the system does not tell what
  ///            is at the path
  LockHandover(const std::string& path, const FileStatus& former, const OpenFile& replacement);
  ~LockHandover() = default;
  LockHandover(const LockHandover&) = delete;
  LockHandover& operator=(const LockHandover&) = delete;

  /// Whether this process has a lock on the former file.
  bool HasLock() const { return lock_ != nullptr; }

  /// The replacement is in place.
  /// @return whether it has the lock now
  bool Complete() noexcept;

 private:
  const std::lock_guard<std::mutex> guard_;
  FileLock* lock_;                  ///< Null if this process has no lock on the former file.
  std::unique_ptr<OpenFile> file_;  ///< Null where the lock stays as it is.
};

}  // namespace projectdb::files
