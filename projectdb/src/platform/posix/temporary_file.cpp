#include "platform/temporary_file.h"

#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/posix/posix_system.h"
#include "platform/temporary_name.h"

namespace projectdb::files {
namespace {

struct CloseDirectory {
  // Nothing is lost if that fails.
  void operator()(DIR* stream) const {
    ErrorOfFilter({"closedir", -1});
    ::closedir(stream);
  }
};

// Nobody may take the file for their own between the look at its lock and its removal: its maker
// waits for the lock, and then sees that the file is gone.
void RemoveIfAbandoned(const Directory& directory, const char* name) {
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int number = CallSystem("openat", ::openat, DescriptorOf(directory.file()), name, kFlags);
  if (number < 0) return;
  const OpenFile file(number);
  if (file.Status().IsRegular() &&
      CallSystem("flock", ::flock, DescriptorOf(file), LOCK_EX | LOCK_NB) == 0) {
    CallSystemOnce("unlinkat", ::unlinkat, DescriptorOf(directory.file()), name, 0);
  }
}

int FlushToDisk(int descriptor) { return CallSystem("fsync", ::fsync, descriptor); }

}  // namespace

Directory::Directory(std::filesystem::path path)
    : path_(std::move(path)),
      file_(RequireSuccess(
          CallSystem("open", ::open, path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))) {}

void Directory::Flush() const {
  // EINVAL: the file system has no such operation.
  if (FlushToDisk(DescriptorOf(file_)) != 0 && errno != EINVAL) ThrowSystemFailure();
}

TemporaryFile::TemporaryFile(const Directory& directory, const std::filesystem::path* former)
    : TemporaryFile(directory) {
  // Somebody who removes abandoned files may take it for one before it is locked.
  do {
    Create(former);
  } while (file_->Status().names == 0);
}

void TemporaryFile::Create(const std::filesystem::path* former) {
  constexpr mode_t kForAnybody = 0666;
  constexpr mode_t kForOwner = 0600;
  const mode_t mode = former ? kForOwner : kForAnybody;
  name_ = UnforeseeableName();
  file_.emplace(
      RequireSuccess(CallSystem("openat", ::openat, DescriptorOf(directory_.file()), name_.c_str(),
                                O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode)));
  // A file system that has no locks keeps abandoned files.
  CallSystem("flock", ::flock, DescriptorOf(*file_), LOCK_EX);
}

TemporaryFile::~TemporaryFile() {
  if (!file_ || stays_) return;
  CallSystemOnce("unlinkat", ::unlinkat, DescriptorOf(directory_.file()), name_.c_str(), 0);
}

void TemporaryFile::Flush() const { RequireSuccess(FlushToDisk(DescriptorOf(*file_))); }

void TemporaryFile::RenameTo(const std::filesystem::path& name) {
  const int directory = DescriptorOf(directory_.file());
  RequireSuccess(
      CallSystemOnce("renameat", ::renameat, directory, name_.c_str(), directory, name.c_str()));
  stays_ = true;
}

// The temporary name goes with this object.
bool TemporaryFile::LinkTo(const std::filesystem::path& name) {
  const int directory = DescriptorOf(directory_.file());
  const int result =
      CallSystemOnce("linkat", ::linkat, directory, name_.c_str(), directory, name.c_str(), 0);
  if (result == 0) return true;
  if (errno == EEXIST) return false;
  // The file system has no second names.
  if (errno != EPERM && errno != EOPNOTSUPP) ThrowSystemFailure();
  RenameTo(name);
  return true;
}

void TemporaryFile::Unlock() const { CallSystem("flock", ::flock, DescriptorOf(*file_), LOCK_UN); }

void RemoveAbandonedFiles(const Directory& directory) {
  // The standard library's iterator ends the program if memory runs short.
  const std::unique_ptr<DIR, CloseDirectory> stream(
      CallSystemOnce("opendir", ::opendir, directory.path().c_str()));
  const auto read = [&stream] { return CallSystemOnce("readdir", ::readdir, stream.get()); };
  while (const dirent* entry = stream ? read() : nullptr) {
    if (IsTemporaryName(entry->d_name)) RemoveIfAbandoned(directory, &entry->d_name[0]);
  }
}

}  // namespace projectdb::files
