// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/backup/RightOfWay.h"
#include "support/TestClock.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

class RightOfWayTest : public ::testing::Test {
 protected:
  bool copiesMayGo() const { return gate->isOpen(); }

  TestClock clock;
  std::unique_ptr<RightOfWay> rightOfWay = std::make_unique<RightOfWay>(clock);
  const std::shared_ptr<const Gate> gate = rightOfWay->gate();
};

}  // namespace

TEST_F(RightOfWayTest, HoldsCopiesBackFromTheAnnouncementOfAPhotoUntilItIsFiled) {
  EXPECT_TRUE(copiesMayGo());
  rightOfWay->photoComes();
  EXPECT_FALSE(copiesMayGo());
  clock.advance(RightOfWay::kLongest - 1ms);
  EXPECT_FALSE(copiesMayGo());
  rightOfWay->photosAreIn();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LetsCopiesGoAfterAWhileWhenNothingComes) {
  rightOfWay->photoComes();
  clock.advance(RightOfWay::kLongest);
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, HoldsCopiesBackNoLongerForFurtherPhotos) {
  rightOfWay->photoComes();
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photoComes();
  clock.advance(1ms);
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LeavesCopiesAsMuchTimeAsItHasTakenFromThem) {
  rightOfWay->photoComes();
  clock.advance(RightOfWay::kLongest);
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photoComes();
  EXPECT_TRUE(copiesMayGo());
  clock.advance(1ms);
  rightOfWay->photoComes();
  EXPECT_FALSE(copiesMayGo());
}

TEST_F(RightOfWayTest, GivesThePhotoAfterAnEarlyOneItsWholeTime) {
  rightOfWay->photoComes();
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photosAreIn();
  rightOfWay->photoComes();
  clock.advance(RightOfWay::kLongest - 1ms);
  EXPECT_FALSE(copiesMayGo());
  clock.advance(1ms);
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LeavesNobodyWaitingWhenItGoes) {
  rightOfWay->photoComes();
  rightOfWay.reset();
  EXPECT_TRUE(copiesMayGo());
}
