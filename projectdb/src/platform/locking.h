#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "base/failure.h"
#include "platform/file_status.h"
#include "platform/open_file.h"

/// How a system locks a file against other processes and other threads.
namespace projectdb::files {

using LockClock = std::chrono::steady_clock;

/// The file system has no locks, or none to give.
class NoLocks : public Failure {
 public:
  using Failure::Failure;
};

/// Waits for the lock of the file that is at the path now, and takes it. By then another file may
/// be there.
/// @param end of the wait; for ever if not given
/// @return what has the lock for as long as it is open
/// @exception NoLocks as the name says
/// @exception Failure if the path names no regular file that can be opened and locked, or if the
///            wait took too long
std::unique_ptr<OpenFile> LockFile(const std::string& path,
                                   std::optional<LockClock::time_point> end);

/// The status of what has the lock of a file if somebody has it; nothing if there is none.
/// @exception Failure if the system does not tell
std::optional<FileStatus> StatusOfLocked(const std::string& path);

/// Locks the file that is to replace a locked one and that nobody else knows yet.
/// @return null where the lock of a file stays when another takes its place
/// @exception Failure if it cannot be locked
std::unique_ptr<OpenFile> LockReplacement(const OpenFile& replacement);

}  // namespace projectdb::files
