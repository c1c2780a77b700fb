// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Records.h"
#include "simulator/CameraModel.h"
#include "simulator/Sha256.h"

namespace ambrel::simulator {
namespace {

class CameraModelTest : public ::testing::Test {
 protected:
  std::vector<Record> events() { return read_records(_camera.takeEvents()).value(); }
  void listen() {
    _camera.setEventMode(true);
    events();
  }
  bool setDestination(std::uint32_t destination) {
    return _camera.setProperty(static_cast<std::uint32_t>(Property::captureDestination),
                               ByteWriter().u32(destination).bytes());
  }
  void shootToHost() {
    setDestination(kDestinationHost);
    _camera.setHostCapacity();
    events();
  }
  ShotOrder order(ShotKind kind) {
    ShotOrder wanted;
    wanted.kind = kind;
    return wanted;
  }
  // Handles of the photos in the first folder of the card.
  std::vector<std::uint32_t> filesOnCard() {
    std::vector<std::uint32_t> handles;
    for (const StoredObject* root : _camera.children(0)) {
      for (const StoredObject* folder : _camera.children(root->handle)) {
        for (const StoredObject* file : _camera.children(folder->handle)) {
          handles.push_back(file->handle);
        }
      }
    }
    return handles;
  }

  CameraModel _camera{{1, 160, 120}};
};

TEST_F(CameraModelTest, BeginsWithACardAndAnEmptyFolder) {
  EXPECT_TRUE(_camera.card());
  EXPECT_EQ(_camera.storage(), 0x00010001U);
  EXPECT_EQ(_camera.destination(), kDestinationCard);
  ASSERT_EQ(_camera.children(0).size(), 1U);
  EXPECT_EQ(_camera.children(0)[0]->name, "DCIM");
  const auto folders = _camera.children(_camera.children(0)[0]->handle);
  ASSERT_EQ(folders.size(), 1U);
  EXPECT_EQ(folders[0]->name, "100CANON");
  EXPECT_TRUE(filesOnCard().empty());
}

TEST_F(CameraModelTest, RecordsAJpegOnTheCard) {
  EXPECT_EQ(_camera.shoot({}), "");
  const auto files = filesOnCard();
  ASSERT_EQ(files.size(), 1U);
  const StoredObject* file = _camera.object(files[0]);
  EXPECT_EQ(file->name, "IMG_0001.JPG");
  EXPECT_EQ(file->format, ObjectFormat::jpeg);
  const TakenPhoto& taken = _camera.album().photos()[0];
  EXPECT_EQ(taken.place, Place::card);
  EXPECT_EQ(taken.size, file->size);
  EXPECT_EQ(taken.sha256, sha256_hex(*_camera.bytes(files[0])));
}

TEST_F(CameraModelTest, GivesBothFilesOfAPairTheSameNumber) {
  EXPECT_EQ(_camera.shoot(order(ShotKind::pair)), "");
  ShotOrder rawFirst = order(ShotKind::pair);
  rawFirst.rawFirst = true;
  EXPECT_EQ(_camera.shoot(rawFirst), "");
  const auto& photos = _camera.album().photos();
  ASSERT_EQ(photos.size(), 4U);
  EXPECT_EQ(photos[0].name, "IMG_0001.JPG");
  EXPECT_EQ(photos[1].name, "IMG_0001.CR3");
  EXPECT_EQ(photos[2].name, "IMG_0002.CR3");
  EXPECT_EQ(photos[3].name, "IMG_0002.JPG");
  EXPECT_EQ(_camera.shots(), 2U);
}

TEST_F(CameraModelTest, TakesTheSizesThatAreAskedFor) {
  ShotOrder wanted = order(ShotKind::pair);
  wanted.size = 200'000;
  wanted.rawSize = 300'000;
  EXPECT_EQ(_camera.shoot(wanted), "");
  EXPECT_EQ(_camera.album().photos()[0].size, 200'000U);
  EXPECT_EQ(_camera.album().photos()[1].size, 300'000U);
}

TEST_F(CameraModelTest, TakesNothingWhereThePhotoDoesNotFitItsSize) {
  listen();
  ShotOrder tiny = order(ShotKind::pair);
  tiny.rawSize = 10;
  EXPECT_NE(_camera.shoot(tiny), "");
  EXPECT_EQ(_camera.shots(), 0U);
  EXPECT_TRUE(_camera.album().photos().empty());
  EXPECT_TRUE(events().empty());
}

TEST_F(CameraModelTest, AnnouncesAPhotoBetweenBusyAndIdle) {
  listen();
  _camera.shoot({});
  const auto records = events();
  ASSERT_GE(records.size(), 3U);
  EXPECT_EQ(records.front().type, RecordType::cameraStatus);
  EXPECT_EQ(records.front().number(), 1U);
  EXPECT_EQ(records[1].type, RecordType::objectAdded);
  EXPECT_EQ(records[1].number(), filesOnCard()[0]);
  EXPECT_EQ(records.back().type, RecordType::cameraStatus);
  EXPECT_EQ(records.back().number(), 0U);
  EXPECT_TRUE(events().empty()) << "each event is told once";
}

TEST_F(CameraModelTest, TellsNothingBeforeEventsAreAskedFor) {
  _camera.shoot({});
  EXPECT_TRUE(events().empty());
}

TEST_F(CameraModelTest, BeginsEventsWithEveryProperty) {
  _camera.setEventMode(true);
  const auto records = events();
  EXPECT_EQ(last_value(Property::captureDestination, records), kDestinationCard);
  EXPECT_GT(last_value(Property::availableShots, records).value_or(0), 0U);
  EXPECT_TRUE(last_value(Property::evfOutput, records));
  EXPECT_EQ(records_of(RecordType::availableListChanged, records).size(), 4U);
  EXPECT_EQ(records.size(), records_of(RecordType::propertyChanged, records).size() + 4);
}

TEST_F(CameraModelTest, KeepsSilentAboutTheCardWhenTold) {
  listen();
  _camera.setSilent(true);
  _camera.shoot({});
  EXPECT_TRUE(records_of(RecordType::objectAdded, events()).empty());
  EXPECT_EQ(filesOnCard().size(), 1U);
}

TEST_F(CameraModelTest, WaitsForRoomBeforeItShootsToTheHost) {
  listen();
  EXPECT_TRUE(setDestination(kDestinationHost));
  EXPECT_EQ(last_value(Property::availableShots, events()), 0U);
  EXPECT_NE(_camera.shoot({}), "");
  _camera.setHostCapacity();
  EXPECT_GT(last_value(Property::availableShots, events()).value_or(0), 0U);
  EXPECT_EQ(_camera.shoot({}), "");
}

TEST_F(CameraModelTest, OffersAPhotoInTheHostsMemoryUntilItsTransferIsComplete) {
  listen();
  shootToHost();
  _camera.shoot({});
  const auto offers = records_of(RecordType::requestTransfer, events());
  ASSERT_EQ(offers.size(), 1U);
  const std::uint32_t handle = offers[0].number();
  EXPECT_EQ(_camera.bytes(handle)->size(), _camera.album().photos()[0].size);
  EXPECT_EQ(_camera.album().photos()[0].place, Place::host);
  EXPECT_TRUE(filesOnCard().empty());
  EXPECT_TRUE(_camera.completeTransfer(handle));
  EXPECT_EQ(_camera.bytes(handle), nullptr);
  EXPECT_FALSE(_camera.completeTransfer(handle));
}

TEST_F(CameraModelTest, GoesBackToTheCardWhenTheHostIsGone) {
  listen();
  shootToHost();
  _camera.shoot({});
  const std::uint32_t handle = records_of(RecordType::requestTransfer, events())[0].number();
  _camera.endSession();
  EXPECT_EQ(_camera.destination(), kDestinationCard);
  EXPECT_EQ(_camera.bytes(handle), nullptr);
  EXPECT_TRUE(events().empty());
  EXPECT_EQ(_camera.shoot({}), "");
  EXPECT_EQ(_camera.album().photos()[1].place, Place::card);
}

TEST_F(CameraModelTest, HasNothingToOfferWithoutItsCard) {
  listen();
  _camera.shoot({});
  const std::uint32_t handle = filesOnCard()[0];
  _camera.setCard(false);
  const auto records = events();
  EXPECT_EQ(records_of(RecordType::storeRemoved, records).size(), 1U);
  EXPECT_EQ(last_value(Property::availableShots, records), 0U);
  EXPECT_EQ(_camera.storage() & 0xFFFF, 0U);
  EXPECT_EQ(_camera.cardCapacity(), 0U);
  EXPECT_EQ(_camera.object(handle), nullptr);
  EXPECT_TRUE(_camera.children(0).empty());
  EXPECT_NE(_camera.shoot({}), "");
  const auto lists = records_of(RecordType::availableListChanged, records);
  ASSERT_EQ(lists.size(), 1U);
  EXPECT_EQ(lists[0].number(2), 1U) << "one destination is left";
  EXPECT_EQ(lists[0].number(3), kDestinationHost);
}

TEST_F(CameraModelTest, HasItsPhotosAgainWithItsCard) {
  listen();
  _camera.shoot({});
  _camera.setCard(false);
  _camera.setCard(true);
  EXPECT_EQ(filesOnCard().size(), 1U);
  EXPECT_EQ(records_of(RecordType::storeAdded, events()).size(), 1U);
  _camera.setCard(true);
  EXPECT_TRUE(events().empty()) << "nothing changed";
}

TEST_F(CameraModelTest, ShootsToTheHostWithoutACard) {
  _camera.setCard(false);
  shootToHost();
  EXPECT_EQ(_camera.shoot({}), "");
}

TEST_F(CameraModelTest, LosesRoomOnTheCardWithEachPhoto) {
  const std::uint64_t before = _camera.cardFree();
  _camera.shoot({});
  EXPECT_EQ(before - _camera.cardFree(), _camera.album().photos()[0].size);
}

TEST_F(CameraModelTest, SetsNumbersTextsAndStructures) {
  listen();
  EXPECT_TRUE(_camera.setProperty(0xD103, ByteWriter().u32(0x50).bytes()));
  EXPECT_EQ(last_value(Property::iso, events()), 0x50U);
  EXPECT_TRUE(_camera.setProperty(0xD103, ByteWriter().u32(0x50).bytes()));
  EXPECT_TRUE(events().empty()) << "the same value is no change";
  EXPECT_TRUE(_camera.setProperty(0xD1D0, ByteWriter().cString("Jo").u32(9).bytes()));
  const auto records = events();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].body, ByteWriter().u32(0xD1D0).cString("Jo").take());
  EXPECT_TRUE(_camera.setProperty(0xD120, Bytes(20, 1)));
}

TEST_F(CameraModelTest, RefusesPropertiesAndValuesThatItDoesNotKnow) {
  EXPECT_FALSE(_camera.setProperty(0xDEAD, ByteWriter().u32(1).bytes()));
  EXPECT_FALSE(_camera.setProperty(0xD103, Bytes{1, 2}));
  EXPECT_FALSE(_camera.setProperty(0xD120, Bytes(19)));
  EXPECT_FALSE(_camera.announceProperty(0xDEAD));
}

TEST_F(CameraModelTest, AnnouncesAPropertyOnceMoreWhenAsked) {
  listen();
  EXPECT_TRUE(_camera.announceProperty(0xD115));
  EXPECT_EQ(events().size(), 1U);
}

TEST_F(CameraModelTest, IsBusyAsOftenAsTold) {
  _camera.setBusy(2, std::nullopt);
  EXPECT_TRUE(_camera.takeBusy(Operation::getObject));
  EXPECT_TRUE(_camera.takeBusy(Operation::eosGetEvent));
  EXPECT_FALSE(_camera.takeBusy(Operation::getObject));
}

TEST_F(CameraModelTest, IsBusyForOneOperationOnly) {
  _camera.setBusy(1, Operation::getObject);
  EXPECT_FALSE(_camera.takeBusy(Operation::eosGetEvent));
  EXPECT_TRUE(_camera.takeBusy(Operation::getObject));
  EXPECT_FALSE(_camera.takeBusy(Operation::getObject));
}

TEST_F(CameraModelTest, DeletesAPhotoOnlyByAHostsOrderAndRemembersIt) {
  listen();
  _camera.shoot({});
  const std::uint32_t handle = filesOnCard()[0];
  events();
  EXPECT_TRUE(_camera.remove(handle));
  EXPECT_FALSE(_camera.remove(handle));
  EXPECT_TRUE(filesOnCard().empty());
  EXPECT_TRUE(_camera.album().photos()[0].deleted);
  EXPECT_EQ(records_of(RecordType::objectRemoved, events()).size(), 1U);
}

TEST_F(CameraModelTest, NeitherDeletesNorReadsAFolder) {
  const std::uint32_t folder = _camera.children(0)[0]->handle;
  EXPECT_FALSE(_camera.remove(folder));
  EXPECT_EQ(_camera.bytes(folder), nullptr);
  EXPECT_FALSE(_camera.thumbnail(folder));
}

TEST_F(CameraModelTest, CountsWhoAskedForTheLastByte) {
  _camera.shoot({});
  _camera.noteAsked(filesOnCard()[0]);
  _camera.noteAsked(0xDEAD);
  EXPECT_EQ(_camera.album().photos()[0].asked, 1U);
}

TEST_F(CameraModelTest, HoldsBoundedEventsForAHostThatNeverAsks) {
  listen();
  for (int i = 0; i < 400'000; ++i) {
    _camera.announceProperty(0xD103);
  }
  EXPECT_LE(_camera.takeEvents().size(), (std::size_t{4} << 20) + 8);
}

TEST(CameraModel, BeginsTheNextFolderAfterFile9999) {
  CameraModel camera({1, 16, 16, 9999});
  EXPECT_EQ(camera.shoot({}), "");
  EXPECT_EQ(camera.shoot({}), "");
  const auto folders = camera.children(camera.children(0)[0]->handle);
  ASSERT_EQ(folders.size(), 2U);
  EXPECT_EQ(folders[0]->name, "100CANON");
  EXPECT_EQ(folders[1]->name, "101CANON");
  EXPECT_EQ(camera.album().photos()[0].name, "IMG_9999.JPG");
  EXPECT_EQ(camera.album().photos()[1].name, "IMG_0001.JPG");
  EXPECT_EQ(camera.children(folders[1]->handle).size(), 1U);
}

}  // namespace
}  // namespace ambrel::simulator
