// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <gtest/gtest.h>
#include <signal.h>

#include "core/platform/QuitSignals.h"

using namespace ambrel;

namespace {

int requestsAfter(std::initializer_list<int> numbers) {
  QuitSignals quitSignals;
  int requests = 0;
  QObject::connect(&quitSignals, &QuitSignals::quitRequested, &quitSignals, [&] { ++requests; });
  for (const int number : numbers) {
    ::raise(number);
    QCoreApplication::processEvents();
  }
  return requests;
}

TEST(QuitSignals, AsksToQuitOnTheEventLoop) {
  EXPECT_EQ(requestsAfter({SIGTERM}), 1);
  EXPECT_EQ(requestsAfter({SIGINT}), 1);
  EXPECT_EQ(requestsAfter({SIGHUP}), 1);
}

TEST(QuitSignals, AsksAgainAtEachSignal) {
  EXPECT_EQ(requestsAfter({SIGTERM, SIGINT}), 2);
}

TEST(QuitSignalsDeathTest, LeavesTheDefaultBehindWhenItGoes) {
  { const QuitSignals quitSignals; }
  EXPECT_EXIT(::raise(SIGTERM), ::testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
