// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "core/base/ThreadPriority.h"

using namespace ambrel;

namespace {

int priorityOfThisThread() {
  return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)));
}

}  // namespace

TEST(ThreadPriority, LowersThatOfTheCallingThreadAlone) {
  const int before = priorityOfThisThread();
  int lowered = before;
  std::thread([&lowered] {
    lowerThreadPriority();
    lowered = priorityOfThisThread();
  }).join();
  EXPECT_GE(lowered, 10);
  EXPECT_EQ(priorityOfThisThread(), before);
}
