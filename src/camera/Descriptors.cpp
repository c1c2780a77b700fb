// SPDX-License-Identifier: Apache-2.0
#include "camera/Descriptors.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#if defined(__linux__)
// The C library's own header lacks the counters.
#include <linux/tcp.h>
#include <netinet/in.h>
#else
#include <netinet/tcp.h>
#endif

namespace ambrel::camera {

std::set<int> openInternetSockets() {
  std::set<int> sockets;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/dev/fd", error), end; !error && entry != end;
       entry.increment(error)) {
    const int fd = std::atoi(entry->path().filename().c_str());
    sockaddr_storage address = {};
    socklen_t length = sizeof address;
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) continue;
    if (address.ss_family == AF_INET || address.ss_family == AF_INET6) sockets.insert(fd);
  }
  return sockets;
}

void closeInternetSocketsBut(const std::set<int>& kept) {
  for (const int fd : openInternetSockets()) {
    if (kept.count(fd) == 0) close(fd);
  }
}

void endInternetSocketsBut(const std::set<int>& kept) {
  for (const int fd : openInternetSockets()) {
    if (kept.count(fd) == 0) shutdown(fd, SHUT_RDWR);
  }
}

std::uint64_t internetBytesReceived() {
  std::uint64_t total = 0;
  for (const int fd : openInternetSockets()) {
#if defined(__linux__)
    tcp_info info = {};
    socklen_t length = sizeof info;
    if (getsockopt(fd, IPPROTO_TCP, TCP_INFO, &info, &length) == 0) total += info.tcpi_bytes_received;
#elif defined(__APPLE__)
    tcp_connection_info info = {};
    socklen_t length = sizeof info;
    if (getsockopt(fd, IPPROTO_TCP, TCP_CONNECTION_INFO, &info, &length) == 0) total += info.tcpi_rxbytes;
#endif
  }
  return total;
}

void occupyStandardInput() {
  if (fcntl(STDIN_FILENO, F_GETFD) >= 0) return;
  // The lowest free descriptor is taken, which is this one.
  const int fd = open("/dev/null", O_RDONLY);
  if (fd > STDIN_FILENO) close(fd);
}

}  // namespace ambrel::camera
