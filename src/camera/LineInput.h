// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "camera/LineSource.h"
#include "protocol/LineFramer.h"

namespace ambrel::camera {

// Lines from a file descriptor, with other descriptors that are watched while waiting.
class LineInput : public LineSource {
 public:
  explicit LineInput(int fd) : _fd(fd) {}

  // `serve` is called from next() whenever `fd` has something to read; it must take it.
  void alsoServe(int fd, std::function<void()> serve);
  // The input counts as ended as soon as `fd` has something to read.
  void endOn(int fd) { _ending.push_back(fd); }

  Next next(std::chrono::milliseconds wait) override;
  std::chrono::steady_clock::time_point now() const override { return std::chrono::steady_clock::now(); }

 private:
  struct Served {
    int fd;
    std::function<void()> serve;
  };
  void wait(std::chrono::milliseconds timeout);
  void readSome();

  int _fd;
  bool _ended = false;
  protocol::LineFramer _framer;
  std::deque<std::string> _lines;
  std::vector<Served> _served;
  std::vector<int> _ending;
};

}  // namespace ambrel::camera
