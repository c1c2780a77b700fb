// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "camera/CaptureLedger.h"

namespace ambrel::camera {
namespace {

const std::string kFolder = "/store_00010001/DCIM/100CANON";

CameraFile onCard(const std::string& name, std::uint64_t size = 1000) {
  return {kFolder, name, size};
}
CameraFile inMemory(const std::string& name) {
  return {"/", name, 1000};
}

TEST(CaptureLedger, CountsEverySingleAsAnExposure) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0001.JPG")));
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0002.JPG")));
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0000.jpg")));
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0001.jpg")));
}

TEST(CaptureLedger, CountsAPairOnTheCardOnceInEitherOrder) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0001.JPG")));
  EXPECT_FALSE(ledger.beginsExposure(onCard("IMG_0001.CR3")));
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0002.CR3")));
  EXPECT_FALSE(ledger.beginsExposure(onCard("IMG_0002.JPG")));
}

TEST(CaptureLedger, CountsPairsOfABurstThatComeInterleaved) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0001.JPG")));
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0002.JPG")));
  EXPECT_FALSE(ledger.beginsExposure(onCard("IMG_0001.CR3")));
  EXPECT_FALSE(ledger.beginsExposure(onCard("IMG_0002.CR3")));
}

TEST(CaptureLedger, CountsAPairInHostMemoryOnceThoughItsNamesDiffer) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0000.cr3")));
  EXPECT_FALSE(ledger.beginsExposure(inMemory("capt0001.jpg")));
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0002.cr3")));
  EXPECT_FALSE(ledger.beginsExposure(inMemory("capt0003.jpg")));
}

TEST(CaptureLedger, DoesNotPairAcrossTheEndOfAnExposureInHostMemory) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0000.jpg")));
  ledger.captureComplete();
  EXPECT_TRUE(ledger.beginsExposure(inMemory("capt0001.cr3")));
}

TEST(CaptureLedger, PairsOnTheCardAcrossTheEndOfTheExposure) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.beginsExposure(onCard("IMG_0001.JPG")));
  ledger.captureComplete();
  EXPECT_FALSE(ledger.beginsExposure(onCard("IMG_0001.CR3")));
}

TEST(CaptureLedger, FindsOnTheCardOnlyWhatCameSinceTheStart) {
  CaptureLedger ledger;
  ledger.startFrom({onCard("IMG_0001.JPG"), onCard("IMG_0002.JPG")});
  const std::vector<CameraFile> found =
      ledger.unannounced({onCard("IMG_0001.JPG"), onCard("IMG_0002.JPG"), onCard("IMG_0003.JPG")});
  EXPECT_EQ(found, std::vector<CameraFile>{onCard("IMG_0003.JPG")});
}

TEST(CaptureLedger, FindsAPhotoOnTheCardOnce) {
  CaptureLedger ledger;
  EXPECT_EQ(ledger.unannounced({onCard("IMG_0001.JPG")}).size(), 1u);
  EXPECT_TRUE(ledger.unannounced({onCard("IMG_0001.JPG")}).empty());
}

TEST(CaptureLedger, DoesNotFindOnTheCardWhatWasAnnounced) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.announced(onCard("IMG_0001.JPG")));
  EXPECT_TRUE(ledger.unannounced({onCard("IMG_0001.JPG")}).empty());
}

TEST(CaptureLedger, KnowsAnAnnouncementThatComesAfterTheLookAtTheCard) {
  CaptureLedger ledger;
  ledger.unannounced({onCard("IMG_0001.JPG")});
  EXPECT_FALSE(ledger.announced(onCard("IMG_0001.JPG")));
}

TEST(CaptureLedger, TakesANameThatIsAnnouncedAgainForAnotherPhoto) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.announced(onCard("IMG_0001.JPG")));
  EXPECT_TRUE(ledger.announced(onCard("IMG_0001.JPG")));
  EXPECT_TRUE(ledger.announced(inMemory("capt0000.jpg")));
  EXPECT_TRUE(ledger.announced(inMemory("capt0000.jpg")));
}

TEST(CaptureLedger, FindsAPhotoWhoseNumberWasUsedBefore) {
  CaptureLedger ledger;
  ledger.startFrom({onCard("IMG_0001.JPG"), onCard("IMG_0002.JPG")});
  ledger.startFrom({onCard("IMG_0001.JPG")});
  EXPECT_EQ(ledger.unannounced({onCard("IMG_0001.JPG"), onCard("IMG_0002.JPG")}),
            std::vector<CameraFile>{onCard("IMG_0002.JPG")});
}

TEST(CaptureLedger, LeavesFilmsOnTheCard) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.unannounced({onCard("MVI_0001.MP4")}).empty());
}

TEST(CaptureLedger, StillKnowsWhatALookHasShownAfterAnotherStart) {
  CaptureLedger ledger;
  ledger.unannounced({onCard("IMG_0001.JPG")});
  ledger.startFrom({onCard("IMG_0001.JPG"), onCard("IMG_0002.JPG")});
  EXPECT_FALSE(ledger.announced(onCard("IMG_0001.JPG")));
}

TEST(CaptureLedger, CountsALongBurstOfPairsThatIsAnnouncedOneKindFirst) {
  CaptureLedger ledger;
  const auto name = [](int i, const char* kind) { return "IMG_" + std::to_string(1000 + i) + kind; };
  for (int i = 0; i < 200; ++i)
    EXPECT_TRUE(ledger.beginsExposure(onCard(name(i, ".CR3"))));
  for (int i = 0; i < 200; ++i)
    EXPECT_FALSE(ledger.beginsExposure(onCard(name(i, ".JPG"))));
}

TEST(CaptureLedger, TellsFilesOfTheSameNameInTwoFoldersApart) {
  CaptureLedger ledger;
  EXPECT_TRUE(ledger.announced({kFolder, "IMG_0001.JPG", 1000}));
  EXPECT_EQ(ledger.unannounced({{"/store_00010001/DCIM/101CANON", "IMG_0001.JPG", 1000}}).size(), 1u);
}

TEST(CaptureLedger, KnowsNothingOfAnotherCard) {
  CaptureLedger ledger;
  ledger.startFrom({onCard("IMG_0001.JPG")});
  ledger.forgetCard();
  EXPECT_EQ(ledger.unannounced({onCard("IMG_0001.JPG")}).size(), 1u);
}

}  // namespace
}  // namespace ambrel::camera
