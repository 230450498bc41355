#pragma once

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

namespace fuzz {

/// A file that is held in memory and has a path: a symbolic link that leads to it.
class MemoryFile {
 public:
  explicit MemoryFile(std::string path) : path_(std::move(path)) {
    descriptor_ = ::memfd_create("project", MFD_CLOEXEC);
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(descriptor_), path_);
  }
  ~MemoryFile() { ::close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const std::string& path() const { return path_; }

  void Write(std::string_view bytes) {
    const bool written =
        ::ftruncate(descriptor_, 0) == 0 &&
        ::pwrite(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    if (!written) throw std::system_error(errno, std::generic_category(), "memory file");
  }

  std::string Read() const {
    std::string bytes(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
    if (::pread(descriptor_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
      throw std::system_error(errno, std::generic_category(), "memory file");
    }
    return bytes;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
};

}  // namespace fuzz
