#include "testing/file_state.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

#include "testing/saving.h"

namespace test_support {
namespace {

constexpr std::int64_t kNanoseconds = 1'000'000'000;

std::int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kNanoseconds + time.tv_nsec; }

}  // namespace

std::string FileStatusText(const std::string& path) {
  const struct stat status = StatusOf(path);
  std::ostringstream text;
  text << "inode " << status.st_ino << ", mode 0" << std::oct << status.st_mode << std::dec
       << ", owner " << status.st_uid << ", group " << status.st_gid << ", written "
       << Nanoseconds(status.st_mtim) << ", changed " << Nanoseconds(status.st_ctim);
  return text.str();
}

std::int64_t WriteTimeOf(const std::string& path) { return Nanoseconds(StatusOf(path).st_mtim); }

void SetWriteTime(const std::string& path, std::int64_t time) {
  const timespec times[] = {{0, UTIME_OMIT}, {time / kNanoseconds, time % kNanoseconds}};
  if (::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
    throw std::runtime_error("cannot change " + path);
  }
}

bool IsOpen(const std::string& path) {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return std::any_of(begin(descriptors), end(descriptors), [&path](const auto& descriptor) {
    std::error_code error;  // What is no file is not the file.
    return std::filesystem::equivalent(descriptor.path(), path, error);
  });
}

}  // namespace test_support
