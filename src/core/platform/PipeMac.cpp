// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include "core/platform/Pipe.h"

namespace ambrel {

// The system has no call that does both; a program started in between by another thread inherits the ends.
bool openPipe(int (&ends)[2]) {
  if (::pipe(ends) != 0) return false;
  for (const int end : ends)
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
}

}  // namespace ambrel
