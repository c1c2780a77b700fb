// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include "core/platform/Pipe.h"

namespace ambrel {

bool openPipe(int (&ends)[2]) {
  return ::pipe2(ends, O_CLOEXEC) == 0;
}

}  // namespace ambrel
