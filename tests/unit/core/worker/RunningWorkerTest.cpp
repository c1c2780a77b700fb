// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QDir>
#include <gtest/gtest.h>

#include "core/worker/RunningWorker.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

class RunningWorkerTest : public ::testing::Test {
 protected:
  RunningWorkerTest() {
    QObject::connect(&process, &RunningWorker::lineArrived, [this](const QByteArray& line) {
      ++lines;
      last = line;
    });
    QObject::connect(&process, &RunningWorker::ended, [this] { ++ends; });
  }
  void start(const QStringList& behaviours) {
    ASSERT_TRUE(process
                    .start({QStringLiteral(AMBREL_NOISY_WORKER), behaviours, QDir::tempPath(),
                            QProcessEnvironment::systemEnvironment()})
                    .ok());
  }

  RunningWorker process;
  int lines = 0;
  int ends = 0;
  QByteArray last;
};

TEST_F(RunningWorkerTest, RunsFromItsStartToItsEnd) {
  EXPECT_FALSE(process.isRunning());
  start({"say", "a"});
  EXPECT_TRUE(process.isRunning());
  ASSERT_TRUE(runEventsUntil([this] { return ends > 0; }));
  EXPECT_FALSE(process.isRunning());
  EXPECT_EQ(last, "a\n");
  EXPECT_EQ(ends, 1);
}

TEST_F(RunningWorkerTest, ReadsWhatIsLeftInThePipeAfterTheEnd) {
  start({"repeat", "4000", "line "});
  ASSERT_TRUE(process.waitForEnd(std::chrono::seconds(20)));  // reads nothing
  EXPECT_EQ(lines, 0);
  EXPECT_EQ(ends, 0);
  ASSERT_TRUE(runEventsUntil([this] { return ends > 0; }));
  EXPECT_EQ(lines, 4000);
}

TEST_F(RunningWorkerTest, LetsTheEventLoopRunWhileItIsFlooded) {
  int othersTurns = 0;
  QObject::connect(&process, &RunningWorker::lineArrived, [] {
    const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(50);
    while (std::chrono::steady_clock::now() < until) {
    }  // a receiver that takes its time
  });
  start({"repeat", "10000", "line "});
  while (ends == 0) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ++othersTurns;
  }
  EXPECT_EQ(lines, 10'000);
  EXPECT_GE(othersTurns, 20) << "half a second of work must come in many pieces";
}

TEST_F(RunningWorkerTest, ReportsItsTimeAsUp) {
  start({"hang"});
  EXPECT_FALSE(process.waitForEnd(std::chrono::milliseconds(1)));
  process.kill();
  EXPECT_TRUE(process.waitForEnd(std::chrono::seconds(20)));
}

}  // namespace
}  // namespace ambrel
