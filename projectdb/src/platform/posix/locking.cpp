#include "platform/locking.h"

#include <algorithm>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

#include "platform/posix/posix_system.h"

namespace projectdb::files {
namespace {

constexpr std::chrono::milliseconds kShortestPause{1};
constexpr std::chrono::milliseconds kLongestPause{50};

int OpenForLocking(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) ThrowSystemFailure(EINVAL);
  // Not to wait for the other end of a pipe.
  constexpr int kFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  // A network file system locks only what is open for writing.
  int number = CallSystem("open", ::open, path.c_str(), O_RDWR | kFlags);
  const bool is_denied = errno == EACCES || errno == EPERM || errno == EROFS || errno == EISDIR;
  if (number < 0 && is_denied) {
    number = CallSystem("open", ::open, path.c_str(), O_RDONLY | kFlags);
  }
  return RequireSuccess(number);
}

std::unique_ptr<OpenFile> OpenRegularFile(const std::string& path) {
  auto file = std::make_unique<OpenFile>(OpenForLocking(path));
  const FileStatus status = file->Status();
  if (status.kind == FileStatus::Kind::kDirectory) ThrowSystemFailure(EISDIR);
  if (!status.IsRegular()) throw Failure("not a regular file");
  return file;
}

[[noreturn]] void ThrowLockingFailure() {
  const bool has_locks = errno != ENOLCK && errno != EOPNOTSUPP && errno != ENOSYS;
  if (has_locks) ThrowSystemFailure();
  throw NoLocks(std::generic_category().message(errno));
}

bool TryLock(const OpenFile& file) {
  if (CallSystem("flock", ::flock, DescriptorOf(file), LOCK_EX | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK) ThrowLockingFailure();
  return false;
}

void WaitForLock(const OpenFile& file) {
  if (CallSystem("flock", ::flock, DescriptorOf(file), LOCK_EX) != 0) ThrowLockingFailure();
}

// The system has no wait that ends after a time.
void WaitForLock(const OpenFile& file, LockClock::time_point end) {
  std::chrono::milliseconds pause = kShortestPause;
  while (!TryLock(file)) {
    if (LockClock::now() >= end) throw Failure("it is locked by others");
    std::this_thread::sleep_for(pause);
    pause = std::min(2 * pause, kLongestPause);
  }
}

}  // namespace

std::unique_ptr<OpenFile> LockFile(const std::string& path,
                                   std::optional<LockClock::time_point> end) {
  std::unique_ptr<OpenFile> file = OpenRegularFile(path);
  if (end) {
    WaitForLock(*file, *end);
  } else {
    WaitForLock(*file);
  }
  return file;
}

std::optional<FileStatus> StatusOfLocked(const std::string& path) { return FindStatus(path); }

std::unique_ptr<OpenFile> LockReplacement(const OpenFile& replacement) {
  auto file = std::make_unique<OpenFile>(
      RequireSuccess(CallSystem("fcntl", ::fcntl, DescriptorOf(replacement), F_DUPFD_CLOEXEC, 0)));
  if (!TryLock(*file)) throw Failure("the new file is locked by others");
  return file;
}

}  // namespace projectdb::files
