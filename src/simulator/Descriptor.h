// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>
#include <utility>

namespace ambrel::simulator {

// Owns one file descriptor and closes it.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : _fd(fd) {}
  Descriptor(Descriptor&& other) noexcept : _fd(std::exchange(other._fd, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    reset(std::exchange(other._fd, -1));
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const { return _fd; }
  bool valid() const { return _fd >= 0; }
  void reset(int fd = -1) {
    if (_fd >= 0) ::close(_fd);
    _fd = fd;
  }

 private:
  int _fd = -1;
};

}  // namespace ambrel::simulator
