// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

#include "protocol/Messages.h"

namespace ambrel::camera {

// Where commands come from, and the only place where the worker waits for anything but the camera.
class LineSource {
 public:
  enum class Kind { Nothing, Line, End };
  struct Next {
    Kind kind = Kind::Nothing;
    std::string line = {};
  };

  virtual ~LineSource() = default;
  // The next line, or Nothing when none came within the wait; End for ever after the last one.
  virtual Next next(std::chrono::milliseconds wait) = 0;
  // Monotonic.
  virtual std::chrono::steady_clock::time_point now() const = 0;
};

// Where messages go.
class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void say(const protocol::Message& message) = 0;
};

}  // namespace ambrel::camera
