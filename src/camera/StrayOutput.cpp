// SPDX-License-Identifier: Apache-2.0
#include "camera/StrayOutput.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace ambrel::camera {

StrayOutput::StrayOutput() {
  _realOutput = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  std::array<int, 2> ends{-1, -1};
  if (pipe(ends.data()) != 0) return;
  _readEnd = ends[0];
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    // A print must never wait for us: we may be the thread that prints. What does not fit is lost.
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  dup2(ends[1], STDOUT_FILENO);
  dup2(ends[1], STDERR_FILENO);
  close(ends[1]);
}

StrayOutput::~StrayOutput() {
  if (_realOutput < 0) return;
  std::fflush(nullptr);
  dup2(_realOutput, STDOUT_FILENO);
  dup2(_realOutput, STDERR_FILENO);
  close(_realOutput);
  if (_readEnd >= 0) close(_readEnd);
}

void StrayOutput::drain(const std::function<void(std::string_view)>& line) {
  std::array<char, 4096> bytes;
  ssize_t count = 0;
  while ((count = read(_readEnd, bytes.data(), bytes.size())) > 0) {
    _framer.feed({bytes.data(), static_cast<std::size_t>(count)}, line);
  }
}

}  // namespace ambrel::camera
