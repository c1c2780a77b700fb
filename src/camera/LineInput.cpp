// SPDX-License-Identifier: Apache-2.0
#include "camera/LineInput.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace ambrel::camera {

void LineInput::alsoServe(int fd, std::function<void()> serve) {
  _served.push_back({fd, std::move(serve)});
}

LineSource::Next LineInput::next(std::chrono::milliseconds timeout) {
  if (_lines.empty() && !_ended) wait(timeout);
  if (!_lines.empty()) {
    Next next{Kind::Line, std::move(_lines.front())};
    _lines.pop_front();
    return next;
  }
  return {_ended ? Kind::End : Kind::Nothing};
}

void LineInput::wait(std::chrono::milliseconds timeout) {
  const auto until = now() + timeout;
  while (true) {
    std::vector<pollfd> waited{{_fd, POLLIN, 0}};
    for (const int fd : _ending)
      waited.push_back({fd, POLLIN, 0});
    for (const Served& served : _served)
      waited.push_back({served.fd, POLLIN, 0});
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now());
    const int count = poll(waited.data(), waited.size(), static_cast<int>(std::max(left.count(), 0L)));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    for (std::size_t i = 0; i < _ending.size(); ++i) {
      if (waited[1 + i].revents != 0) _ended = true;
    }
    for (std::size_t i = 0; i < _served.size(); ++i) {
      if (waited[1 + _ending.size() + i].revents != 0) _served[i].serve();
    }
    if (waited[0].revents != 0) readSome();
    if (_ended || !_lines.empty()) return;
  }
}

void LineInput::readSome() {
  std::array<char, 4096> bytes;
  const ssize_t count = read(_fd, bytes.data(), bytes.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) {
    _ended = true;
    return;
  }
  _framer.feed({bytes.data(), static_cast<std::size_t>(count)}, [this](std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!line.empty()) _lines.emplace_back(line);
  });
}

}  // namespace ambrel::camera
