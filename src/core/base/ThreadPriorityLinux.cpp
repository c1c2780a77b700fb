// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/base/ThreadPriority.h"

namespace ambrel {

void lowerThreadPriority() {
  constexpr int kBehindTheOthers = 10;
  // Here a thread has a priority of its own, named by the id that the system gives it.
  const auto thread = static_cast<id_t>(::syscall(SYS_gettid));
  ::setpriority(PRIO_PROCESS, thread, std::max(::getpriority(PRIO_PROCESS, thread), kBehindTheOthers));
}

}  // namespace ambrel
