// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "protocol/LineFramer.h"

namespace ambrel::camera {

// Keeps the streams that the application talks through from the camera library. The application reads
// standard output and standard error as one stream of lines, and a print of the library in the middle of one
// would break it; and the library closes standard input with a session.
class StandardStreams {
 public:
  // From here on the three standard descriptors are others: an empty input, and outputs that drain() reads.
  StandardStreams();
  ~StandardStreams();
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;

  // Those that this process was started with.
  int input() const { return _input; }
  int output() const { return _output; }
  // Has something to read when something was printed.
  int readEnd() const { return _readEnd; }
  // Hands on what was printed, line by line.
  void drain(const std::function<void(std::string_view line)>& line);

 private:
  int _input = -1;
  int _output = -1;
  int _readEnd = -1;
  protocol::LineFramer _framer;
};

}  // namespace ambrel::camera
