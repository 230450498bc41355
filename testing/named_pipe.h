#pragma once

#include <cerrno>
#include <chrono>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test_support {

/// A named pipe. Nobody who waits for its other end waits forever.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& path) : path_(path) {
    if (::mkfifo(path_.c_str(), 0600) != 0) {
      throw std::system_error(errno, std::generic_category(), "mkfifo");
    }
  }

  /// Runs an action that may open the pipe, while bytes are written to it once, and frees both
  /// sides if the action waits for an end that nobody opens.
  /// @param bytes what is written; with "" nobody opens the pipe for writing
  /// @return whether the action came to its end by itself
  bool RunWith(const std::string& bytes, const std::function<void()>& action) const {
    auto writing = std::async(std::launch::async, [&] {
      if (!bytes.empty()) std::ofstream(path_, std::ios::binary) << bytes;
    });
    auto running = std::async(std::launch::async, action);
    const bool ended = running.wait_for(kPatience) == std::future_status::ready;
    while (running.wait_for(kRetry) != std::future_status::ready) OpenAndClose(O_WRONLY);
    while (writing.wait_for(kRetry) != std::future_status::ready) OpenAndClose(O_RDONLY);
    running.get();
    return ended;
  }

 private:
  static constexpr std::chrono::seconds kPatience{10};
  static constexpr std::chrono::milliseconds kRetry{5};

  void OpenAndClose(int mode) const {
    const int file = ::open(path_.c_str(), mode | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) ::close(file);
  }

  std::string path_;
};

}  // namespace test_support
