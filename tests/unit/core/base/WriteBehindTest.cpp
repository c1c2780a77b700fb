// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <gtest/gtest.h>
#include <latch>

#include "core/base/WriteBehind.h"

namespace ambrel {
namespace {

TEST(WriteBehind, WorksOnAThreadOfItsOwn) {
  std::thread::id worker;
  WriteBehind behind([&] { worker = std::this_thread::get_id(); });
  behind.request();
  behind.finish();
  EXPECT_NE(worker, std::thread::id());
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(WriteBehind, DoesNothingUnlessAsked) {
  std::atomic<int> runs = 0;
  {
    WriteBehind behind([&] { ++runs; });
    behind.finish();
  }
  EXPECT_EQ(runs, 0);
}

TEST(WriteBehind, MakesOneMoreRunOfAllRequestsThatArriveWhileItIsBusy) {
  std::atomic<int> runs = 0;
  std::latch started(1);
  std::latch mayEnd(1);
  WriteBehind behind([&] {
    if (++runs > 1) return;
    started.count_down();
    mayEnd.wait();
  });
  behind.request();
  started.wait();
  for (int i = 0; i < 5; ++i)
    behind.request();
  mayEnd.count_down();
  behind.finish();
  EXPECT_EQ(runs, 2);
}

TEST(WriteBehind, IsWaitedForNoLongerThanAsked) {
  std::latch mayEnd(1);
  WriteBehind behind([&] { mayEnd.wait(); });
  EXPECT_TRUE(behind.finishWithin(std::chrono::milliseconds(0)));
  behind.request();
  EXPECT_FALSE(behind.finishWithin(std::chrono::milliseconds(1)));
  mayEnd.count_down();
  EXPECT_TRUE(behind.finishWithin(std::chrono::minutes(5)));
}

TEST(WriteBehind, CompletesWhatWasRequestedBeforeItEnds) {
  std::atomic<int> runs = 0;
  {
    WriteBehind behind([&] { ++runs; });
    behind.request();
  }
  EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace ambrel
