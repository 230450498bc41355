#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace test_support {

/// A socket that listens on a port of the loopback interface.
class ListeningSocket {
 public:
  ListeningSocket();
  ~ListeningSocket();
  ListeningSocket(const ListeningSocket&) = delete;
  ListeningSocket& operator=(const ListeningSocket&) = delete;

  int port() const { return port_; }

  /// Waits so long for a connection and closes it at once. @return whether there was one
  bool Accept(int milliseconds) const;

 private:
  std::uintptr_t socket_;
  int port_ = 0;
};

/// Listens on a port of the loopback interface, closes every connection at once and counts them.
class LoopbackListener {
 public:
  LoopbackListener() {
    thread_ = std::thread([this] {
      while (!stop_) Accept(kPollMilliseconds);
      // What was connected before the stop waits in the queue.
      while (Accept(0)) {
      }
    });
  }
  ~LoopbackListener() { Stop(); }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  /// "127.0.0.1:" and the port.
  std::string authority() const { return "127.0.0.1:" + std::to_string(socket_.port()); }

  /// Stops listening. @return the number of connections that there were
  int Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    return connections_;
  }

 private:
  static constexpr int kPollMilliseconds = 5;

  bool Accept(int milliseconds) {
    const bool is_connected = socket_.Accept(milliseconds);
    if (is_connected) ++connections_;
    return is_connected;
  }

  ListeningSocket socket_;
  std::atomic<int> connections_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace test_support
