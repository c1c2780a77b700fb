// SPDX-License-Identifier: Apache-2.0
#include "simulator/Sockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace ambrel::simulator {

namespace {

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

void setOption(const Descriptor& socket, int level, int name, int value) {
  ::setsockopt(socket.get(), level, name, &value, sizeof value);
}

// Neither blocking nor inherited by a child.
void setFlags(const Descriptor& socket) {
  ::fcntl(socket.get(), F_SETFL, O_NONBLOCK);
  ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
}

}  // namespace

Descriptor bind_loopback(std::uint16_t port) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  if (!socket.valid()) return socket;
  setFlags(socket);
  setOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
  const sockaddr_in address = loopback(port);
  if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) socket.reset();
  return socket;
}

bool start_listening(const Descriptor& socket) {
  constexpr int kBacklog = 128;
  return ::listen(socket.get(), kBacklog) == 0;
}

std::uint16_t port_of(const Descriptor& socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

Descriptor accept_connection(const Descriptor& listener) {
  Descriptor socket(::accept(listener.get(), nullptr, nullptr));
  if (!socket.valid()) return socket;
  setFlags(socket);
  setOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
  return socket;
}

void reset_on_close(const Descriptor& socket) {
  const linger abrupt{1, 0};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt);
}

}  // namespace ambrel::simulator
