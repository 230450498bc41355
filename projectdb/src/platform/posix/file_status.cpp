#include "platform/file_status.h"

#include "platform/posix/posix_system.h"

namespace projectdb::files {
namespace {

FileStatus::Kind KindFrom(mode_t mode) {
  if (S_ISREG(mode)) return FileStatus::Kind::kRegular;
  return S_ISDIR(mode) ? FileStatus::Kind::kDirectory : FileStatus::Kind::kOther;
}

std::int64_t Nanoseconds(const timespec& time) {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  return static_cast<std::int64_t>(time.tv_sec) * kPerSecond + time.tv_nsec;
}

}  // namespace

FileStatus StatusFrom(const struct stat& status) {
  constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
  return {KindFrom(status.st_mode),
          status.st_dev,
          status.st_ino,
          status.st_nlink,
          static_cast<std::uint64_t>(status.st_size),
          Nanoseconds(status.st_mtim),
          status.st_mode & kPermissions,
          status.st_uid,
          status.st_gid};
}

std::optional<FileStatus> FindStatus(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) return std::nullopt;
  struct stat status {};
  if (CallSystem("stat", ::stat, path.c_str(), &status) == 0) return StatusFrom(status);
  if (errno != ENOENT && errno != ENOTDIR) ThrowSystemFailure();
  return std::nullopt;
}

}  // namespace projectdb::files
