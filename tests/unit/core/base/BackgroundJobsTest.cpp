// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <semaphore>
#include <thread>

#include "core/base/BackgroundJobs.h"
#include "support/EventLoop.h"

using namespace ambrel;
using namespace std::chrono_literals;

TEST(BackgroundJobs, WorksElsewhereAndRepliesOnTheMainThread) {
  BackgroundJobs jobs;
  std::thread::id worked;
  std::thread::id replied;
  jobs.start([&]() -> BackgroundJobs::Reply {
    worked = std::this_thread::get_id();
    return [&] { replied = std::this_thread::get_id(); };
  });
  ASSERT_TRUE(runEventsUntil([&] { return replied != std::thread::id(); }));
  EXPECT_NE(worked, std::this_thread::get_id());
  EXPECT_EQ(replied, std::this_thread::get_id());
}

TEST(BackgroundJobs, NeedsNoReply) {
  std::binary_semaphore done(0);
  BackgroundJobs jobs;
  jobs.start([&]() -> BackgroundJobs::Reply {
    done.release();
    return {};
  });
  done.acquire();
}

TEST(BackgroundJobs, LetsOneJobHangWithoutHoldingUpAnother) {
  std::binary_semaphore goOn(0);
  bool replied = false;
  BackgroundJobs jobs;
  jobs.start([&]() -> BackgroundJobs::Reply {
    goOn.acquire();
    return {};
  });
  jobs.start([&]() -> BackgroundJobs::Reply { return [&] { replied = true; }; });
  EXPECT_TRUE(runEventsUntil([&] { return replied; }));
  goOn.release();
}

TEST(BackgroundJobs, WaitsForAJobThatEndsSoon) {
  const auto ended = std::make_shared<std::atomic<bool>>(false);
  auto jobs = std::make_unique<BackgroundJobs>();
  jobs->start([ended]() -> BackgroundJobs::Reply {
    *ended = true;
    return {};
  });
  jobs.reset();
  EXPECT_TRUE(*ended);
}

TEST(BackgroundJobs, LeavesAJobBehindThatHangsAndDropsItsReply) {
  struct Shared {
    std::binary_semaphore goOn{0};
    std::binary_semaphore ended{0};
    std::atomic<bool> replied{false};
  };
  const auto shared = std::make_shared<Shared>();
  auto jobs = std::make_unique<BackgroundJobs>();
  jobs->start([shared]() -> BackgroundJobs::Reply {
    shared->goOn.acquire();
    shared->ended.release();
    return [shared] { shared->replied = true; };
  });
  const auto begun = std::chrono::steady_clock::now();
  jobs.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 2s);
  shared->goOn.release();
  shared->ended.acquire();
  QCoreApplication::processEvents();
  EXPECT_FALSE(shared->replied);
}
