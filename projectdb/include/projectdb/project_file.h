#pragma once

#include <chrono>
#include <memory>
#include <string>

#include <kel/export.h>

/// Project files that several programs change.
namespace projectdb {

namespace files {
class FileLock;
}

/// Keeps others who want the lock of a file away, in this process and in all others, for as long as
/// it lives. It keeps nobody from reading or writing the file who does not ask for the lock.
///
/// The lock is on the file itself, by whatever path or symbolic link it is reached, and goes over
/// to the new file when this process replaces it by ExportProjectDataDurably. The system gives it
/// back when the process ends, however that ends; nothing stays behind. A thread that asks for a
/// lock that it holds waits for ever. A child process that fork makes has a share in the lock.
///
/// Threads: each may take locks; one object belongs to one thread at a time.
class KEL_EXPORT ProjectFileLock {
 public:
  /// Waits until it has the lock.
  /// @param path native path of an existing regular file, which need not be writable
  /// @exception std::runtime_error "Failed locking XML file " + path + ": " + reason + "\n" if
  ///            there is none, or if it cannot be opened or locked
  /// @exception std::bad_alloc
  explicit ProjectFileLock(const std::string& path);

  /// Gives up after so long a wait, with a std::runtime_error as above.
  ProjectFileLock(const std::string& path, std::chrono::milliseconds longest_wait);

  ~ProjectFileLock();
  ProjectFileLock(const ProjectFileLock&) = delete;
  ProjectFileLock& operator=(const ProjectFileLock&) = delete;

 private:
  std::unique_ptr<files::FileLock> lock_;
};

}  // namespace projectdb
