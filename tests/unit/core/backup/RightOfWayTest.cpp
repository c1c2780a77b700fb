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
  rightOfWay->photoAnnounced();
  EXPECT_FALSE(copiesMayGo());
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photoArrived();
  EXPECT_FALSE(copiesMayGo());
  rightOfWay->photosAreFiled();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, HoldsCopiesBackForAPhotoThatNobodyHasAnnounced) {
  rightOfWay->photoArrived();
  EXPECT_FALSE(copiesMayGo());
  rightOfWay->photosAreFiled();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, GoesOnHoldingCopiesBackWhileTheNextPhotoIsOnItsWay) {
  rightOfWay->photoAnnounced();
  rightOfWay->photoArrived();
  rightOfWay->photoAnnounced();
  rightOfWay->photosAreFiled();
  EXPECT_FALSE(copiesMayGo());
  rightOfWay->photoArrived();
  rightOfWay->photosAreFiled();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LetsCopiesGoAfterBothFilesOfAnExposure) {
  rightOfWay->photoAnnounced();
  rightOfWay->photoArrived();
  rightOfWay->photoArrived();
  rightOfWay->photosAreFiled();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LetsCopiesGoAfterAWhileWhenNothingComesAndWaitsForItNoMore) {
  rightOfWay->photoAnnounced();
  clock.advance(RightOfWay::kLongest);
  EXPECT_TRUE(copiesMayGo());
  clock.advance(RightOfWay::kLongest);
  rightOfWay->photoArrived();
  rightOfWay->photosAreFiled();
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, HoldsCopiesBackNoLongerForFurtherPhotos) {
  rightOfWay->photoAnnounced();
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photoAnnounced();
  clock.advance(1ms);
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LeavesCopiesAsMuchTimeAsItHasTakenFromThem) {
  rightOfWay->photoAnnounced();
  clock.advance(RightOfWay::kLongest);
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photoAnnounced();
  EXPECT_TRUE(copiesMayGo());
  clock.advance(1ms);
  rightOfWay->photoAnnounced();
  EXPECT_FALSE(copiesMayGo());
}

TEST_F(RightOfWayTest, GivesThePhotoAfterAnEarlyOneItsWholeTime) {
  rightOfWay->photoArrived();
  clock.advance(RightOfWay::kLongest - 1ms);
  rightOfWay->photosAreFiled();
  rightOfWay->photoArrived();
  clock.advance(RightOfWay::kLongest - 1ms);
  EXPECT_FALSE(copiesMayGo());
  clock.advance(1ms);
  EXPECT_TRUE(copiesMayGo());
}

TEST_F(RightOfWayTest, LeavesNobodyWaitingWhenItGoes) {
  rightOfWay->photoAnnounced();
  rightOfWay.reset();
  EXPECT_TRUE(copiesMayGo());
}
