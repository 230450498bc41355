#include <stdexcept>

#include <winsock2.h>

#include "testing/loopback_listener.h"

namespace test_support {
namespace {

SOCKET OpenSocket() {
  WSADATA data;
  if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no sockets");
  const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, 0);
  if (socket == INVALID_SOCKET) throw std::runtime_error("no socket");
  return socket;
}

}  // namespace

ListeningSocket::ListeningSocket() : socket_(OpenSocket()) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(socket_, generic, size) != 0 || ::listen(socket_, 16) != 0 ||
      ::getsockname(socket_, generic, &size) != 0) {
    closesocket(socket_);
    throw std::runtime_error("cannot listen");
  }
  port_ = ntohs(address.sin_port);
}

ListeningSocket::~ListeningSocket() {
  closesocket(socket_);
  WSACleanup();
}

bool ListeningSocket::Accept(int milliseconds) const {
  WSAPOLLFD ready{socket_, POLLRDNORM, 0};
  if (WSAPoll(&ready, 1, milliseconds) <= 0) return false;
  const SOCKET connection = ::accept(socket_, nullptr, nullptr);
  if (connection == INVALID_SOCKET) return false;
  closesocket(connection);
  return true;
}

}  // namespace test_support
