#include "platform/open_file.h"

#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/posix_system.h"

namespace projectdb::files {

namespace {

// The system closes a file even if it tells of a failure, such as of a write that it has put off
// until then.
int CloseFile(int descriptor) {
  const int error = ErrorOfFilter({"close", descriptor});
  const int result = ::close(descriptor);
  if (error == 0) return result;
  errno = error;
  return -1;
}

}  // namespace

OpenFile::~OpenFile() {
  if (handle_ != kNone) CloseFile(DescriptorOf(*this));
}

bool OpenFile::Close() { return CloseFile(static_cast<int>(std::exchange(handle_, kNone))) == 0; }

FileStatus OpenFile::Status() const {
  struct stat status {};
  RequireSuccess(CallSystem("fstat", ::fstat, DescriptorOf(*this), &status));
  return StatusFrom(status);
}

// A pipe gives what there is.
std::size_t OpenFile::Read(unsigned char* target, std::size_t most) const {
  std::size_t size = 0;
  while (size < most) {
    const ssize_t count =
        CallSystem("read", ::read, DescriptorOf(*this), target + size, most - size);
    if (count < 0) ThrowSystemFailure();
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  return size;
}

OpenFile OpenForReading(const std::string& path) {
  return OpenFile(
      RequireSuccess(CallSystem("open", ::open, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)));
}

OpenFile OpenForWriting(const std::string& path) {
  return OpenFile(RequireSuccess(CallSystem("open", ::open, path.c_str(), O_WRONLY | O_CLOEXEC)));
}

}  // namespace projectdb::files
