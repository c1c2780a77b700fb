// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#include "camera/LineSource.h"

namespace ambrel::camera {

// Writes messages to a file descriptor, each as one line in one write call: what reads the other end never
// meets half a line. May be used from several threads, as a pipe takes a line as a whole.
class LineOutput : public MessageSink {
 public:
  explicit LineOutput(int fd) : _fd(fd) {}

  void say(const protocol::Message& message) override;
  // The same, but gives up when the reader takes nothing for this long.
  void trySay(const protocol::Message& message, std::chrono::milliseconds patience);

 private:
  int _fd;
};

}  // namespace ambrel::camera
