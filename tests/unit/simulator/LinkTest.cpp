// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Link.h"

namespace ambrel::simulator {
namespace {

using std::chrono::milliseconds;

// Some moment; only differences matter.
const Link::Clock::time_point kStart{std::chrono::hours(1)};

TEST(Link, LetsEverythingThroughAtFirst) {
  Link link;
  EXPECT_GT(link.allowance(kStart), 1'000'000'000U);
  EXPECT_EQ(link.wait(kStart), Link::Clock::duration::zero());
  EXPECT_FALSE(link.takeDueCut());
}

TEST(Link, CarriesItsRateOverASecond) {
  Link link;
  link.setRate(1'000'000);
  std::size_t sent = 0;
  for (milliseconds passed{0}; passed < milliseconds(1000); ++passed) {
    while (const std::size_t bytes = link.allowance(kStart + passed)) {
      link.noteSent(bytes, kStart + passed);
      sent += bytes;
    }
  }
  EXPECT_GE(sent, 1'000'000U);
  EXPECT_LE(sent, 1'015'000U);
}

TEST(Link, SaysHowLongASlowLinkNeeds) {
  Link link;
  link.setRate(1000);
  link.noteSent(100, kStart);
  EXPECT_EQ(link.allowance(kStart), 0U);
  EXPECT_GT(link.wait(kStart), milliseconds(90));
  EXPECT_LE(link.wait(kStart), milliseconds(100));
  EXPECT_EQ(link.wait(kStart + milliseconds(100)), milliseconds(0));
  EXPECT_GT(link.allowance(kStart + milliseconds(100)), 0U);
}

TEST(Link, LetsAtLeastOneByteThroughHoweverSlow) {
  Link link;
  link.setRate(1);
  EXPECT_EQ(link.allowance(kStart), 1U);
}

TEST(Link, IsFastAgainWhenTheRateIsTakenAway) {
  Link link;
  link.setRate(1);
  link.noteSent(1000, kStart);
  link.setRate(0);
  EXPECT_GT(link.allowance(kStart), 1'000'000U);
}

TEST(Link, CutsAtOnceWhenNothingMoreIsToPass) {
  Link link;
  link.cutAfter(0, Cut::reset);
  EXPECT_EQ(link.takeDueCut(), Cut::reset);
  EXPECT_FALSE(link.takeDueCut()) << "once";
}

TEST(Link, CutsAfterExactlySoManyBytes) {
  Link link;
  link.cutAfter(100, Cut::freeze);
  EXPECT_EQ(link.allowance(kStart), 100U);
  link.noteSent(60, kStart);
  EXPECT_FALSE(link.takeDueCut());
  EXPECT_EQ(link.allowance(kStart), 40U);
  link.noteSent(40, kStart);
  EXPECT_EQ(link.allowance(kStart), 0U);
  EXPECT_EQ(link.takeDueCut(), Cut::freeze);
  EXPECT_GT(link.allowance(kStart), 100U);
}

TEST(Link, ForgetsACutThatIsTakenBack) {
  Link link;
  link.cutAfter(10, Cut::close);
  link.cancelCut();
  link.noteSent(10, kStart);
  EXPECT_FALSE(link.takeDueCut());
}

}  // namespace
}  // namespace ambrel::simulator
