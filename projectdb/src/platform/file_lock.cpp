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

// Null if this process has no lock on the file.
FileLock* FindLock(const FileStatus& file) {
  const std::vector<FileLock*>& locks = Registry();
  const auto lock = std::find_if(locks.begin(), locks.end(),
                                 [&file](const FileLock* each) { return each->IsOn(file); });
  return lock == locks.end() ? nullptr : *lock;
}

}  // namespace

FileLock::FileLock(const std::string& path, std::optional<std::chrono::milliseconds> longest_wait)
    : file_(LockFile(path, longest_wait)) {
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  Registry().push_back(this);
}

FileLock::~FileLock() {
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  std::vector<FileLock*>& locks = Registry();
  locks.erase(std::find(locks.begin(), locks.end(), this));
}

bool FileLock::IsOn(const FileStatus& file) const { return file.IsSameFile(file_->Status()); }

bool IsLockedHere(const std::string& path) {
  const std::optional<FileStatus> file = StatusOfLocked(path);
  const std::lock_guard<std::mutex> guard(RegistryMutex());
  return file && FindLock(*file);
}

LockHandover::LockHandover(const FileStatus& former, const OpenFile& replacement)
    : guard_(RegistryMutex()), lock_(nullptr) {
  FileLock* const lock = FindLock(former);
  if (!lock) return;
  file_ = LockReplacement(replacement);
  lock_ = lock;
}

bool LockHandover::Complete() noexcept {
  if (!lock_) return false;
  lock_->file_.swap(file_);
  return true;
}

}  // namespace projectdb::files
