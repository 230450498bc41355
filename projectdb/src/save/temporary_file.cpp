#include "save/temporary_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/random.h>
#include <unistd.h>

#include "base/system_calls.h"

namespace projectdb::files {
namespace {

constexpr std::string_view kNamePrefix = ".kel_save_";
constexpr std::size_t kNameSize = kNamePrefix.size() + 32;

std::string UnforeseeableName() {
  std::array<std::uint64_t, 2> number{};
  RequireSuccess(CallSystem("getentropy", ::getentropy, number.data(), sizeof(number)));
  return fmt::format("{}{:016x}{:016x}", kNamePrefix, number[0], number[1]);
}

bool IsTemporaryName(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return name.size() == kNameSize && name.substr(0, kNamePrefix.size()) == kNamePrefix &&
         name.find_first_not_of(kDigits, kNamePrefix.size()) == std::string_view::npos;
}

struct CloseDirectory {
  void operator()(DIR* stream) const { ::closedir(stream); }
};

// Nobody may take the file for their own between the look at its lock and its removal: its maker
// waits for the lock, and then sees that the file is gone.
void RemoveIfAbandoned(const Directory& directory, const char* name) {
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int number = CallSystem("openat", ::openat, directory.descriptor(), name, kFlags);
  if (number < 0) return;
  const FileDescriptor file(number);
  if (S_ISREG(file.Status().st_mode) &&
      CallSystem("flock", ::flock, file.number(), LOCK_EX | LOCK_NB) == 0) {
    CallSystemOnce("unlinkat", ::unlinkat, directory.descriptor(), name, 0);
  }
}

int FlushToDisk(int descriptor) { return CallSystem("fsync", ::fsync, descriptor); }

}  // namespace

Directory::Directory(std::filesystem::path path)
    : path_(std::move(path)),
      descriptor_(CallSystem("open", ::open, path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

void Directory::Flush() const {
  // EINVAL: the file system has no such operation.
  if (FlushToDisk(descriptor()) != 0 && errno != EINVAL) ThrowSystemFailure();
}

TemporaryFile::TemporaryFile(const Directory& directory, mode_t mode) : TemporaryFile(directory) {
  // Somebody who removes abandoned files may take it for one before it is locked.
  do {
    Create(mode);
  } while (descriptor_->Status().st_nlink == 0);
}

void TemporaryFile::Create(mode_t mode) {
  name_ = UnforeseeableName();
  descriptor_.emplace(CallSystem("openat", ::openat, directory_.descriptor(), name_.c_str(),
                                 O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  // A file system that has no locks keeps abandoned files.
  CallSystem("flock", ::flock, descriptor_->number(), LOCK_EX);
}

TemporaryFile::~TemporaryFile() {
  if (!descriptor_ || stays_) return;
  CallSystemOnce("unlinkat", ::unlinkat, directory_.descriptor(), name_.c_str(), 0);
}

void TemporaryFile::Flush() const { RequireSuccess(FlushToDisk(descriptor_->number())); }

void TemporaryFile::RenameTo(const std::filesystem::path& name) {
  const int directory = directory_.descriptor();
  RequireSuccess(
      CallSystemOnce("renameat", ::renameat, directory, name_.c_str(), directory, name.c_str()));
  stays_ = true;
}

// The temporary name goes with this object.
bool TemporaryFile::LinkTo(const std::filesystem::path& name) {
  const int directory = directory_.descriptor();
  const int result =
      CallSystemOnce("linkat", ::linkat, directory, name_.c_str(), directory, name.c_str(), 0);
  if (result == 0) return true;
  if (errno == EEXIST) return false;
  // The file system has no second names.
  if (errno != EPERM && errno != EOPNOTSUPP) ThrowSystemFailure();
  RenameTo(name);
  return true;
}

void TemporaryFile::Unlock() const { CallSystem("flock", ::flock, descriptor_->number(), LOCK_UN); }

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
