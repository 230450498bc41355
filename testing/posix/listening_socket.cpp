#include <cerrno>
#include <system_error>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "testing/loopback_listener.h"

namespace test_support {
namespace {

int OpenSocket() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (socket < 0) throw std::system_error(errno, std::generic_category(), "no socket");
  return socket;
}

}  // namespace

ListeningSocket::ListeningSocket() : socket_(static_cast<std::uintptr_t>(OpenSocket())) {
  const int socket = static_cast<int>(socket_);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(socket, generic, size) != 0 || ::listen(socket, 16) != 0 ||
      ::getsockname(socket, generic, &size) != 0) {
    const std::error_code error(errno, std::generic_category());
    ::close(socket);
    throw std::system_error(error, "cannot listen");
  }
  port_ = ntohs(address.sin_port);
}

ListeningSocket::~ListeningSocket() { ::close(static_cast<int>(socket_)); }

bool ListeningSocket::Accept(int milliseconds) const {
  const int socket = static_cast<int>(socket_);
  pollfd ready{socket, POLLIN, 0};
  if (::poll(&ready, 1, milliseconds) <= 0) return false;
  const int connection = ::accept(socket, nullptr, nullptr);
  if (connection < 0) return false;
  ::close(connection);
  return true;
}

}  // namespace test_support
