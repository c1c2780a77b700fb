// SPDX-License-Identifier: Apache-2.0
#include "camera/LineOutput.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace ambrel::camera {

void LineOutput::say(const protocol::Message& message) {
  std::string line = protocol::encode(message);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
  line.push_back('\n');
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = write(_fd, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    // Nobody reads any more; the end of the input will end us.
    if (written < 0) return;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

void LineOutput::trySay(const protocol::Message& message, std::chrono::milliseconds patience) {
  pollfd ready{_fd, POLLOUT, 0};
  if (poll(&ready, 1, static_cast<int>(patience.count())) == 1) say(message);
}

}  // namespace ambrel::camera
