// SPDX-License-Identifier: Apache-2.0
#include "core/platform/Pipe.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace ambrel {
namespace {

Failure lastFailure() {
  return {QString::fromStdString(std::generic_category().message(errno))};
}

// A copy of `end` beyond the standard descriptors; not open when the system has none left.
PipeEnd beyondStandard(PipeEnd end) {
  if (end.descriptor() > STDERR_FILENO) return end;
  return PipeEnd(::fcntl(end.descriptor(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

PipeEnd& PipeEnd::operator=(PipeEnd&& other) noexcept {
  if (this != &other) {
    close();
    _descriptor = std::exchange(other._descriptor, -1);
  }
  return *this;
}

void PipeEnd::close() {
  if (isOpen()) ::close(std::exchange(_descriptor, -1));
}

void PipeEnd::stopWaiting() {
  ::fcntl(_descriptor, F_SETFL, ::fcntl(_descriptor, F_GETFL) | O_NONBLOCK);
}

Result<Pipe> makePipe() {
  int ends[2] = {-1, -1};
  if (!openPipe(ends)) return lastFailure();
  Pipe pipe{PipeEnd(ends[0]), PipeEnd(ends[1])};
  pipe.readEnd = beyondStandard(std::move(pipe.readEnd));
  pipe.writeEnd = beyondStandard(std::move(pipe.writeEnd));
  if (!pipe.readEnd.isOpen() || !pipe.writeEnd.isOpen()) return lastFailure();
  return pipe;
}

}  // namespace ambrel
