// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "camera/CardLookout.h"

namespace ambrel::camera {
namespace {

using std::chrono::milliseconds;
using Step = CardLookout::Step;

CardLookout::Time at(int ms) {
  return CardLookout::Time{} + milliseconds(ms);
}

class CardLookoutTest : public ::testing::Test {
 protected:
  CardLookoutTest() { lookout.begin(1000, at(0)); }
  CardLookout lookout;
};

TEST_F(CardLookoutTest, LooksWhenAnExposureWasNotAnnounced) {
  lookout.exposureOver(at(100));
  EXPECT_EQ(lookout.due(at(599)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(600)), Step::Look);
  EXPECT_EQ(lookout.due(at(601)), Step::Nothing) << "once";
}

TEST_F(CardLookoutTest, DoesNotLookWhenTheExposureWasAnnouncedBefore) {
  lookout.announced(at(90));
  lookout.exposureOver(at(100));
  EXPECT_EQ(lookout.due(at(600)), Step::Nothing);
}

TEST_F(CardLookoutTest, DoesNotLookWhenTheAnnouncementComesWithinTheDelay) {
  lookout.exposureOver(at(100));
  lookout.announced(at(300));
  EXPECT_EQ(lookout.due(at(600)), Step::Nothing);
}

TEST_F(CardLookoutTest, TakesAnAnnouncementForOneExposureOnly) {
  lookout.announced(at(90));
  lookout.exposureOver(at(100));
  lookout.exposureOver(at(200));
  EXPECT_EQ(lookout.due(at(700)), Step::Look);
}

TEST_F(CardLookoutTest, AsksForRoomAfterEachTwoQuietSeconds) {
  EXPECT_EQ(lookout.due(at(1999)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(2000)), Step::AskRoom);
  EXPECT_EQ(lookout.due(at(2001)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(4000)), Step::AskRoom);
}

TEST_F(CardLookoutTest, CountsQuietFromTheLastAnnouncement) {
  lookout.announced(at(1500));
  EXPECT_EQ(lookout.due(at(3499)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(3500)), Step::AskRoom);
}

TEST_F(CardLookoutTest, LooksWhenThereIsLessRoomAfterADelayForTheAnnouncement) {
  EXPECT_EQ(lookout.roomIs(999, at(2000)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(2499)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(2500)), Step::Look);
}

TEST_F(CardLookoutTest, StaysCalmWhileTheRoomIsTheSame) {
  EXPECT_EQ(lookout.due(at(2000)), Step::AskRoom);
  EXPECT_EQ(lookout.roomIs(1000, at(2000)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(3999)), Step::Nothing);
}

TEST_F(CardLookoutTest, StartsAfreshWhenThereIsMoreRoom) {
  EXPECT_EQ(lookout.roomIs(1001, at(2000)), Step::StartAfresh);
}

TEST_F(CardLookoutTest, TakesTheFirstRoomAfterAPhotoAsItIs) {
  lookout.announced(at(100));
  EXPECT_EQ(lookout.due(at(2100)), Step::AskRoom);
  EXPECT_EQ(lookout.roomIs(900, at(2100)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(2600)), Step::Nothing);
  EXPECT_EQ(lookout.roomIs(899, at(4100)), Step::Nothing);
  EXPECT_EQ(lookout.due(at(4600)), Step::Look);
}

}  // namespace
}  // namespace ambrel::camera
