#include "save/temporary_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/random.h>
#include <unistd.h>

#include "save/system_calls.h"

namespace projectdb::files {
namespace {

std::string UnforeseeableName() {
  std::array<std::uint64_t, 2> number{};
  RequireSuccess(CallSystem("getentropy", ::getentropy, number.data(), sizeof(number)));
  return fmt::format(".kel_save_{:016x}{:016x}", number[0], number[1]);
}

int FlushToDisk(int descriptor) {
  int result = 0;
  do {
    result = CallSystem("fsync", ::fsync, descriptor);
  } while (result != 0 && errno == EINTR);
  return result;
}

}  // namespace

Directory::Directory(std::filesystem::path path)
    : path_(std::move(path)),
      descriptor_(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

void Directory::Flush() const {
  // EINVAL: the file system has no such operation.
  if (FlushToDisk(descriptor()) != 0 && errno != EINVAL) ThrowSystemFailure();
}

TemporaryFile::TemporaryFile(const Directory& directory, mode_t mode)
    : directory_(directory),
      name_(UnforeseeableName()),
      descriptor_(CallSystem("openat", ::openat, directory.descriptor(), name_.c_str(),
                             O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {}

TemporaryFile::~TemporaryFile() {
  if (!stays_) ::unlinkat(directory_.descriptor(), name_.c_str(), 0);
}

void TemporaryFile::Flush() const { RequireSuccess(FlushToDisk(descriptor_.number())); }

void TemporaryFile::RenameTo(const std::filesystem::path& name) {
  const int directory = directory_.descriptor();
  RequireSuccess(
      CallSystem("renameat", ::renameat, directory, name_.c_str(), directory, name.c_str()));
  stays_ = true;
}

}  // namespace projectdb::files
