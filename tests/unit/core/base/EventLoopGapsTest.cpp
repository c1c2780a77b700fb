// SPDX-License-Identifier: Apache-2.0
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include "core/base/EventLoopGaps.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

using namespace std::chrono_literals;

void keepTheThreadBusy(qint64 milliseconds) {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < milliseconds) {
  }
}

TEST(EventLoopGaps, TellsOfAGapInWhichNoEventsWereServed) {
  EventLoopGaps gaps;
  keepTheThreadBusy(40);
  ASSERT_TRUE(runEventsUntil([&] { return !gaps.lateFrames().empty(); }, 10s));
  EXPECT_GE(gaps.lateFrames().front().lengthMs, 40);
  EXPECT_GE(gaps.longestGapMs(), 40);
  EXPECT_TRUE(gaps.report().startsWith(QStringLiteral("beats "))) << gaps.report().toStdString();
  EXPECT_TRUE(gaps.report().contains(QStringLiteral("\nat 0.0 ms: "))) << gaps.report().toStdString();
}

TEST(EventLoopGaps, ForgetsWhatWasBeforeItsRestart) {
  EventLoopGaps gaps;
  keepTheThreadBusy(40);
  ASSERT_TRUE(runEventsUntil([&] { return !gaps.lateFrames().empty(); }, 10s));
  gaps.restart();
  EXPECT_TRUE(gaps.lateFrames().empty());
  EXPECT_EQ(gaps.longestGapMs(), 0);
  EXPECT_EQ(gaps.report(), QStringLiteral("beats 0, longest gap 0.0 ms, later than 16 ms: 0\n"));
}

}  // namespace
}  // namespace ambrel
