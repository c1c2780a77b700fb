// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

#include "core/base/Result.h"

namespace ambrel {

// One end of a pipe, closed with its owner.
class PipeEnd {
 public:
  PipeEnd() = default;
  explicit PipeEnd(int descriptor) : _descriptor(descriptor) {}
  PipeEnd(PipeEnd&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}
  PipeEnd& operator=(PipeEnd&& other) noexcept;
  PipeEnd(const PipeEnd&) = delete;
  PipeEnd& operator=(const PipeEnd&) = delete;
  ~PipeEnd() { close(); }

  bool isOpen() const { return _descriptor >= 0; }
  int descriptor() const { return _descriptor; }  // -1 when closed
  void close();
  // Reading from an empty pipe and writing to a full one fail at once from now on.
  void stopWaiting();

 private:
  int _descriptor = -1;
};

struct Pipe {
  PipeEnd readEnd;
  PipeEnd writeEnd;
};

// Neither end is inherited by a program that is started, or is one of the three standard descriptors: a child
// that is about to run its program can give itself any end as any of those.
Result<Pipe> makePipe();

// The system's own call for the above, as far as it goes: both ends are close-on-exec. Whether it succeeded.
bool openPipe(int (&ends)[2]);

}  // namespace ambrel
