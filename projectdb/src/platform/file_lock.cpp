#include "platform/file_lock.h"

#include <algorithm>
#include <vector>

#include "platform/locking.h"

namespace projectdb::files {
namespace {

std::mutex& RegistryMutex() {
  static std::mutex mutex;
  return mutex;
}

// The locks that this process has.
std::vector<FileLock*>& Registry() {
  static std::vector<FileLock*> locks;
  return locks;
}

// Null if this process has no lock on the file, or if there is none.
FileLock* FindLock(const std::optional<FileStatus>& file) {
  const std::vector<FileLock*>& locks = Registry();
  const auto lock = std::find_if(locks.begin(), locks.end(), [&file](const FileLock* each) {
    return file && each->IsOn(*file);
  });
  return lock == locks.end() ? nullptr : *lock;
}

// Nothing for a wait for ever.
std::optional<LockClock::time_point> EndOfWait(
    std::optional<std::chrono::milliseconds> longest_wait) {
  // The clock ends some time; nobody waits so long.
  constexpr std::chrono::hours kForEver{24 * 365 * 100};
  if (!longest_wait || *longest_wait > kForEver) return std::nullopt;
  return LockClock::now() + std::max(*longest_wait, std::chrono::milliseconds::zero());
}

}  // namespace

FileLock::FileLock(const std::string& path, std::optional<std::chrono::milliseconds> longest_wait) {
  const std::optional<LockClock::time_point> end = EndOfWait(longest_wait);
  for (;;) {
    file_ = LockFile(path, end);
    const std::lock_guard<std::mutex> guard(RegistryMutex());
    // The file may have been replaced meanwhile, also by a thread of this process that found no
    // lock to take over.
    const std::optional<FileStatus> locked = StatusOfLocked(path);
    if (locked && IsOn(*locked)) {
      Registry().push_back(this);
      return;
    }
    file_.reset();
  }
}

FileLock::~FileLock() {
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  std::vector<FileLock*>& locks = Registry();
  locks.erase(std::find(locks.begin(), locks.end(), this));
}

bool FileLock::IsOn(const FileStatus& file) const { return file.IsSameFile(file_->Status()); }

bool IsLockedHere(const std::string& path) {
  // No thread takes a lock over to another file between the two looks.
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  return FindLock(StatusOfLocked(path)) != nullptr;
}

LockHandover::LockHandover(const std::string& path, const FileStatus& former,
                           const OpenFile& replacement)
    : guard_(RegistryMutex()), lock_(FindLock(former)) {
  // What has the lock need not be the file itself.
  if (!lock_) lock_ = FindLock(StatusOfLocked(path));
  if (lock_) file_ = LockReplacement(replacement);
}

bool LockHandover::Complete() noexcept {
  if (!file_) return false;
  lock_->file_.swap(file_);
  return true;
}

}  // namespace projectdb::files
