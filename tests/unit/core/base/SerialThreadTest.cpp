// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "core/base/SerialThread.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

constexpr auto kLongEnough = 30s;  // never waited for in full by a test that passes

void processEventsUntil(const std::function<bool()>& reached) {
  while (!reached())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

}  // namespace

TEST(SerialThread, DoesItsJobsInTheOrderGiven) {
  SerialThread thread;
  std::vector<int> done;
  for (int i = 0; i < 100; ++i)
    thread.add([i, &done](SerialThread::Line&) { done.push_back(i); });
  ASSERT_TRUE(thread.finish(kLongEnough));
  ASSERT_EQ(done.size(), 100U);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(done[static_cast<std::size_t>(i)], i);
}

TEST(SerialThread, DoesWhatAJobAsksForOnTheMainThreadFromTheEventLoop) {
  SerialThread thread;
  const std::thread::id mainThread = std::this_thread::get_id();
  bool askedThere = false;
  bool toldThere = false;
  bool finished = false;
  thread.add([&](SerialThread::Line& line) {
    const bool answered = line.ask([&] { askedThere = std::this_thread::get_id() == mainThread; });
    line.tell([&, answered] {
      toldThere = std::this_thread::get_id() == mainThread;
      finished = answered;
    });
  });
  processEventsUntil([&] { return finished; });
  EXPECT_TRUE(askedThere);
  EXPECT_TRUE(toldThere);
}

TEST(SerialThread, FinishServesTheJobsWithoutAnEventLoop) {
  SerialThread thread;
  std::vector<int> served;
  for (int i = 0; i < 20; ++i) {
    thread.add([i, &served](SerialThread::Line& line) {
      EXPECT_TRUE(line.ask([&] { served.push_back(i); }));
      line.tell([i, &served] { served.push_back(100 + i); });
    });
  }
  ASSERT_TRUE(thread.finish(kLongEnough));
  ASSERT_EQ(served.size(), 40U);
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(served[2 * i], static_cast<int>(i));
    EXPECT_EQ(served[2 * i + 1], 100 + static_cast<int>(i));
  }
}

TEST(SerialThread, OtherEventsComeBetweenTheRequestsOfABurst) {
  QObject mainSide;
  SerialThread thread;
  std::vector<char> order;
  std::promise<void> allTold;
  thread.add([&](SerialThread::Line& line) {
    line.tell([&] { order.push_back('a'); });
    QMetaObject::invokeMethod(
        &mainSide, [&] { order.push_back('x'); }, Qt::QueuedConnection);
    line.tell([&] { order.push_back('b'); });
    allTold.set_value();
  });
  allTold.get_future().wait();
  processEventsUntil([&] { return order.size() == 3; });
  EXPECT_EQ(order, (std::vector<char>{'a', 'x', 'b'}));
}

TEST(SerialThread, FinishWithNothingToDoReturnsAtOnce) {
  SerialThread thread;
  EXPECT_TRUE(thread.finish(0ms));
}

TEST(SerialThread, FinishGivesUpAfterItsLimitAndTheThreadIsLeftBehind) {
  auto release = std::make_shared<std::promise<void>>();
  std::promise<void> begun;
  std::promise<bool> abandoned;
  {
    SerialThread thread;
    thread.add([hold = release->get_future().share(), &begun, &abandoned](SerialThread::Line& line) {
      begun.set_value();
      hold.wait();
      abandoned.set_value(line.isAbandoned() && !line.ask([] { FAIL() << "nobody listens any more"; }));
    });
    begun.get_future().wait();
    EXPECT_FALSE(thread.finish(1ms));
  }
  release->set_value();
  EXPECT_TRUE(abandoned.get_future().get());
}

TEST(SerialThread, DestructionRefusesWhatAJobIsWaitingFor) {
  std::promise<void> asking;
  std::promise<bool> answered;
  {
    SerialThread thread;
    thread.add([&](SerialThread::Line& line) {
      asking.set_value();
      answered.set_value(line.ask([] { FAIL() << "the main thread never serves this"; }));
    });
    asking.get_future().wait();
  }
  EXPECT_FALSE(answered.get_future().get());
}

TEST(SerialThread, JobsThatHaveNotBegunAreDroppedAtDestruction) {
  std::promise<void> begun;
  bool secondRan = false;
  {
    SerialThread thread;
    thread.add([&](SerialThread::Line& line) {
      begun.set_value();
      EXPECT_FALSE(line.ask([] {}));
    });
    thread.add([&](SerialThread::Line&) { secondRan = true; });
    begun.get_future().wait();
  }
  EXPECT_FALSE(secondRan);
}

TEST(SerialThread, WhatAJobToldIsForgottenAtDestruction) {
  bool told = false;
  std::promise<void> ended;
  {
    SerialThread thread;
    thread.add([&](SerialThread::Line& line) {
      line.tell([&] { told = true; });
      ended.set_value();
    });
    ended.get_future().wait();
  }
  QCoreApplication::processEvents();
  EXPECT_FALSE(told);
}
