#include "save/file_lock.h"

#include <algorithm>
#include <cerrno>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>

#include "base/file_status.h"
#include "base/system_calls.h"

namespace projectdb::files {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kShortestPause{1};
constexpr std::chrono::milliseconds kLongestPause{50};
// The clock ends some time; nobody waits so long.
constexpr std::chrono::hours kForEver{24 * 365 * 100};

std::mutex& RegistryMutex() {
  static std::mutex mutex;
  return mutex;
}

// The locks that this process has.
std::vector<FileLock*>& Registry() {
  static std::vector<FileLock*> locks;
  return locks;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

int OpenForLocking(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) ThrowSystemFailure(EINVAL);
  // Not to wait for the other end of a pipe.
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  return CallSystem("open", ::open, path.c_str(), kFlags);
}

std::unique_ptr<FileDescriptor> OpenRegularFile(const std::string& path) {
  auto descriptor = std::make_unique<FileDescriptor>(OpenForLocking(path));
  const struct stat status = descriptor->Status();
  if (S_ISDIR(status.st_mode)) ThrowSystemFailure(EISDIR);
  if (!S_ISREG(status.st_mode)) throw Failure("not a regular file");
  return descriptor;
}

bool TryLock(const FileDescriptor& descriptor) {
  if (CallSystem("flock", ::flock, descriptor.number(), LOCK_EX | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK) ThrowSystemFailure();
  return false;
}

void WaitForLock(const FileDescriptor& descriptor) {
  RequireSuccess(CallSystem("flock", ::flock, descriptor.number(), LOCK_EX));
}

// The system has no wait that ends after a time.
void WaitForLock(const FileDescriptor& descriptor, Clock::time_point end) {
  std::chrono::milliseconds pause = kShortestPause;
  while (!TryLock(descriptor)) {
    if (Clock::now() >= end) throw Failure("it is locked by others");
    std::this_thread::sleep_for(pause);
    pause = std::min(2 * pause, kLongestPause);
  }
}

bool IsNamed(const FileDescriptor& descriptor, const std::string& path) {
  const std::optional<struct stat> named = FindStatus(path);
  return named && IsSameFile(*named, descriptor.Status());
}

std::unique_ptr<FileDescriptor> LockedFile(const std::string& path,
                                           std::optional<std::chrono::milliseconds> longest_wait) {
  if (longest_wait > kForEver) longest_wait = std::nullopt;
  const auto end = Clock::now() + longest_wait.value_or(std::chrono::milliseconds::zero());
  for (;;) {
    std::unique_ptr<FileDescriptor> descriptor = OpenRegularFile(path);
    if (longest_wait) {
      WaitForLock(*descriptor, end);
    } else {
      WaitForLock(*descriptor);
    }
    // Who had the lock may have replaced the file meanwhile; the lock went with the new one.
    if (IsNamed(*descriptor, path)) return descriptor;
  }
}

}  // namespace

FileLock::FileLock(const std::string& path, std::optional<std::chrono::milliseconds> longest_wait)
    : descriptor_(LockedFile(path, longest_wait)) {
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  Registry().push_back(this);
}

FileLock::~FileLock() {
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  std::vector<FileLock*>& locks = Registry();
  locks.erase(std::find(locks.begin(), locks.end(), this));
}

bool FileLock::IsOn(const struct stat& file) const {
  return IsSameFile(file, descriptor_->Status());
}

namespace {

// Null if this process has no lock on the file.
FileLock* FindLock(const struct stat& file) {
  const std::vector<FileLock*>& locks = Registry();
  const auto lock = std::find_if(locks.begin(), locks.end(),
                                 [&file](const FileLock* each) { return each->IsOn(file); });
  return lock == locks.end() ? nullptr : *lock;
}

}  // namespace

bool IsLockedHere(const std::string& path) {
  const std::optional<struct stat> file = FindStatus(path);
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  return file && FindLock(*file);
}

LockHandover::LockHandover(const struct stat& former, const FileDescriptor& replacement)
    : guard_(RegistryMutex()), lock_(nullptr) {
  FileLock* const lock = FindLock(former);
  if (!lock) return;
  descriptor_ = std::make_unique<FileDescriptor>(
      CallSystem("fcntl", ::fcntl, replacement.number(), F_DUPFD_CLOEXEC, 0));
  if (!TryLock(*descriptor_)) throw Failure("the new file is locked by others");
  lock_ = lock;
}

bool LockHandover::Complete() noexcept {
  if (!lock_) return false;
  lock_->descriptor_.swap(descriptor_);
  return true;
}

}  // namespace projectdb::files
