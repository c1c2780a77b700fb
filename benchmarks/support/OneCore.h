// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sched.h>

#include "support/Goals.h"

namespace ambrel::bench {

// Keeps the thread, and processes that it starts, to the core that it is on: cores of a virtual machine may
// differ in speed by half, and what is compared must not meet different ones.
class OneCore {
 public:
  OneCore() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
    require(::sched_getaffinity(0, sizeof _all, &_all) == 0 && ::sched_setaffinity(0, sizeof one, &one) == 0,
            "not kept to one core");
  }
  ~OneCore() { ::sched_setaffinity(0, sizeof _all, &_all); }
  OneCore(const OneCore&) = delete;
  OneCore& operator=(const OneCore&) = delete;

 private:
  cpu_set_t _all;
};

}  // namespace ambrel::bench
