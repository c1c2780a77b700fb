// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "core/base/SystemClock.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

using std::chrono_literals::operator""ms;

class SystemClockTest : public ::testing::Test {
 protected:
  // The event loop has then dealt with every timer of up to this delay that was started before.
  void passTime(std::chrono::milliseconds span) {
    bool passed = false;
    clock.callAfter(span, &context, [&passed] { passed = true; });
    ASSERT_TRUE(runEventsUntil([&passed] { return passed; }));
  }

  SystemClock clock;
  QObject context;
};

TEST_F(SystemClockTest, NeverGoesBack) {
  const auto before = clock.now();
  passTime(5ms);
  EXPECT_GE(clock.now() - before, 5ms);
}

TEST_F(SystemClockTest, KnowsTheCalendar) {
  EXPECT_LE(qAbs(clock.wallTime().msecsTo(QDateTime::currentDateTime())), 60'000);
}

TEST_F(SystemClockTest, CallsLaterAndNeverFromWithinTheCall) {
  int calls = 0;
  clock.callAfter(0ms, &context, [&calls] { ++calls; });
  EXPECT_EQ(calls, 0);
  passTime(2ms);
  EXPECT_EQ(calls, 1);
  passTime(5ms);
  EXPECT_EQ(calls, 1);
}

TEST_F(SystemClockTest, CallsInTheOrderOfTheirTimes) {
  std::vector<int> order;
  clock.callAfter(20ms, &context, [&order] { order.push_back(2); });
  clock.callAfter(5ms, &context, [&order] { order.push_back(1); });
  passTime(30ms);
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(SystemClockTest, CallsEveryPeriodUntilCancelled) {
  int calls = 0;
  const Clock::TimerId timer = clock.callEvery(1ms, &context, [&calls] { ++calls; });
  ASSERT_TRUE(runEventsUntil([&calls] { return calls >= 3; }));
  clock.cancel(timer);
  const int before = calls;
  passTime(5ms);
  EXPECT_EQ(calls, before);
}

TEST_F(SystemClockTest, MayBeCancelledFromWithinItsOwnAction) {
  int calls = 0;
  Clock::TimerId timer = Clock::kNoTimer;
  timer = clock.callEvery(1ms, &context, [&] {
    ++calls;
    clock.cancel(timer);
  });
  passTime(10ms);
  EXPECT_EQ(calls, 1);
}

TEST_F(SystemClockTest, ForgetsACancelledDelay) {
  int calls = 0;
  const Clock::TimerId timer = clock.callAfter(1ms, &context, [&calls] { ++calls; });
  clock.cancel(timer);
  clock.cancel(timer);
  clock.cancel(Clock::kNoTimer);
  passTime(5ms);
  EXPECT_EQ(calls, 0);
}

TEST_F(SystemClockTest, CallsNothingOnceTheContextIsGone) {
  int calls = 0;
  auto owner = std::make_unique<QObject>();
  clock.callAfter(1ms, owner.get(), [&calls] { ++calls; });
  clock.callEvery(1ms, owner.get(), [&calls] { ++calls; });
  owner.reset();
  passTime(10ms);
  EXPECT_EQ(calls, 0);
}

TEST_F(SystemClockTest, MayStartAnotherTimerFromWithinAnAction) {
  bool second = false;
  clock.callAfter(0ms, &context, [&] { clock.callAfter(0ms, &context, [&second] { second = true; }); });
  EXPECT_TRUE(runEventsUntil([&second] { return second; }));
}

}  // namespace
}  // namespace ambrel
