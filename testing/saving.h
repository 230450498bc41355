#pragma once

#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "testing/files.h"
#include "testing/saves.h"

/// What files are beside their content, and limits on them.
namespace test_support {

/// @param path of a file, or of a link to one
inline struct stat StatusOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) throw std::runtime_error("no status of " + path);
  return status;
}

inline mode_t ModeOf(const std::string& path) { return StatusOf(path).st_mode & 07777U; }

inline void SetMode(const std::string& path, mode_t mode) {
  if (::chmod(path.c_str(), mode) != 0) throw std::runtime_error("cannot change " + path);
}

/// When a file was used and changed last.
class FileTimes {
 public:
  explicit FileTimes(std::string path) : path_(std::move(path)), status_(StatusOf(path_)) {}

  void Restore() const {
    const timespec times[] = {status_.st_atim, status_.st_mtim};
    if (::utimensat(AT_FDCWD, path_.c_str(), times, 0) != 0) {
      throw std::runtime_error("cannot change " + path_);
    }
  }

 private:
  std::string path_;
  struct stat status_;
};

inline bool IsSameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/// A file as it is: the same one, with the same content and the same permissions, since the same
/// time.
struct FileState {
  explicit FileState(const std::string& path) : status(StatusOf(path)), bytes(ReadFile(path)) {}
  bool operator==(const FileState& other) const {
    return status.st_ino == other.status.st_ino && status.st_mode == other.status.st_mode &&
           status.st_uid == other.status.st_uid && status.st_gid == other.status.st_gid &&
           IsSameTime(status.st_mtim, other.status.st_mtim) &&
           IsSameTime(status.st_ctim, other.status.st_ctim) && bytes == other.bytes;
  }

  struct stat status;
  std::string bytes;
};

inline void PrintTo(const FileState& state, std::ostream* out) {
  *out << "inode " << state.status.st_ino << ", mode 0" << std::oct << state.status.st_mode
       << std::dec << ", owner " << state.status.st_uid << ", group " << state.status.st_gid << ", "
       << state.bytes.size() << " bytes";
}

/// Runs work while the process may have so many files open.
template <typename Work>
std::string WithOpenFileLimit(rlim_t files, Work work) {
  rlimit former{};
  ::getrlimit(RLIMIT_NOFILE, &former);
  rlimit limit = former;
  limit.rlim_cur = files;
  ::setrlimit(RLIMIT_NOFILE, &limit);
  std::string result = work();
  ::setrlimit(RLIMIT_NOFILE, &former);
  return result;
}

}  // namespace test_support
