#pragma once

#include <atomic>
#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test_support {

/// Listens on a port of the loopback interface, closes every connection at once and counts them.
class LoopbackListener {
 public:
  LoopbackListener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (socket_ < 0 || ::bind(socket_, generic, size) != 0 || ::listen(socket_, 16) != 0 ||
        ::getsockname(socket_, generic, &size) != 0) {
      const std::error_code error(errno, std::generic_category());
      if (socket_ >= 0) ::close(socket_);
      throw std::system_error(error, "cannot listen");
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] {
      while (!stop_) Accept(kPollMilliseconds);
      // What was connected before the stop waits in the queue.
      while (Accept(0)) {
      }
    });
  }
  ~LoopbackListener() {
    Stop();
    ::close(socket_);
  }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  /// "127.0.0.1:" and the port.
  std::string authority() const { return "127.0.0.1:" + std::to_string(port_); }

  /// Stops listening. @return the number of connections that there were
  int Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    return connections_;
  }

 private:
  static constexpr int kPollMilliseconds = 5;

  bool Accept(int milliseconds) {
    pollfd ready{socket_, POLLIN, 0};
    if (::poll(&ready, 1, milliseconds) <= 0) return false;
    const int connection = ::accept(socket_, nullptr, nullptr);
    if (connection < 0) return false;
    ::close(connection);
    ++connections_;
    return true;
  }

  int socket_;
  int port_ = 0;
  std::atomic<int> connections_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace test_support
