// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "protocol/LineFramer.h"

namespace ambrel::camera {

// Catches what the camera library prints by itself. The application reads standard output and standard error
// as one stream of lines, and a print in the middle of one would break it.
class StrayOutput {
 public:
  // Takes standard output and standard error away from everybody else.
  StrayOutput();
  ~StrayOutput();
  StrayOutput(const StrayOutput&) = delete;
  StrayOutput& operator=(const StrayOutput&) = delete;

  // The standard output that this process was started with.
  int realOutput() const { return _realOutput; }
  // Has something to read when something was printed.
  int readEnd() const { return _readEnd; }
  // Hands on what was printed, line by line.
  void drain(const std::function<void(std::string_view line)>& line);

 private:
  int _realOutput = -1;
  int _readEnd = -1;
  protocol::LineFramer _framer;
};

}  // namespace ambrel::camera
