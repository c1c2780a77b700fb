// SPDX-License-Identifier: Apache-2.0
#include "camera/StandardStreams.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "camera/Descriptors.h"

namespace ambrel::camera {

StandardStreams::StandardStreams() {
  _input = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  _output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  close(STDIN_FILENO);
  occupyStandardInput();
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

StandardStreams::~StandardStreams() {
  std::fflush(nullptr);
  dup2(_input, STDIN_FILENO);
  dup2(_output, STDOUT_FILENO);
  dup2(_output, STDERR_FILENO);
  for (const int fd : {_input, _output, _readEnd}) {
    if (fd >= 0) close(fd);
  }
}

void StandardStreams::drain(const std::function<void(std::string_view)>& line) {
  std::array<char, 4096> bytes;
  ssize_t count = 0;
  while ((count = read(_readEnd, bytes.data(), bytes.size())) > 0) {
    _framer.feed({bytes.data(), static_cast<std::size_t>(count)}, line);
  }
}

}  // namespace ambrel::camera
