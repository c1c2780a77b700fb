// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <memory>
#include <thread>

#include "core/base/Doorbell.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

using namespace std::chrono_literals;

TEST(Doorbell, IsAnsweredOnceForEachRingOnTheThreadThatMadeIt) {
  int answers = 0;
  std::thread::id answeredOn;
  Doorbell doorbell([&] {
    ++answers;
    answeredOn = std::this_thread::get_id();
  });
  std::thread([&] {
    for (int ring = 0; ring < 3; ++ring)
      doorbell.ring();
  }).join();
  EXPECT_EQ(answers, 0);
  EXPECT_TRUE(runEventsUntil([&] { return answers == 3; }, 10s));
  EXPECT_EQ(answeredOn, std::this_thread::get_id());
}

TEST(Doorbell, IsNotAnsweredOnceItIsGone) {
  int answers = 0;
  auto doorbell = std::make_unique<Doorbell>([&] { ++answers; });
  doorbell->ring();
  doorbell.reset();
  bool later = false;
  Doorbell next([&] { later = true; });
  next.ring();
  EXPECT_TRUE(runEventsUntil([&] { return later; }, 10s));
  EXPECT_EQ(answers, 0);
}

}  // namespace
}  // namespace ambrel
