#pragma once

#include <exception>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace test_support {

/// Denies the process a file or directory for as long as it lives: takes all permissions off it
/// and, since they do not bind root, gives up root's rights meanwhile.
class Denied {
 public:
  explicit Denied(std::filesystem::path path)
      : path_(std::move(path)), former_(std::filesystem::status(path_).permissions()) {
    std::filesystem::permissions(path_, std::filesystem::perms::none);
    dropped_ = geteuid() == 0 && seteuid(kNobody) == 0;
  }
  ~Denied() {
    if (dropped_ && seteuid(0) != 0) std::terminate();
    std::filesystem::permissions(path_, former_);
  }
  Denied(const Denied&) = delete;
  Denied& operator=(const Denied&) = delete;

  /// Whether it worked: on some systems root cannot give up its rights.
  bool effective() const { return faccessat(AT_FDCWD, path_.c_str(), R_OK, AT_EACCESS) != 0; }

 private:
  static constexpr uid_t kNobody = 65534;

  std::filesystem::path path_;
  std::filesystem::perms former_;
  bool dropped_ = false;
};

}  // namespace test_support
