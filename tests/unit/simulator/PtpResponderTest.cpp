// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Records.h"
#include "simulator/PtpResponder.h"

namespace ambrel::simulator {
namespace {

class PtpResponderTest : public ::testing::Test {
 protected:
  PtpReply ask(Operation operation, std::array<std::uint32_t, 5> parameters = {}, Bytes data = {}) {
    return _responder.perform({static_cast<std::uint16_t>(operation), 1, parameters, std::move(data)});
  }
  void open() { EXPECT_EQ(ask(Operation::openSession, {1}).code, Response::ok); }
  // Takes a photo of the size and returns its handle.
  std::uint32_t shoot(std::size_t size = 0) {
    ShotOrder order;
    order.size = size;
    EXPECT_EQ(_camera.shoot(order), "");
    const Bytes handles = ask(Operation::getObjectHandles, {0x00010001, 0x3801, 0x90000010}).data.value();
    return ByteReader(ByteView(handles).last(4)).u32();
  }

  CameraModel _camera{{1, 160, 120}};
  PtpResponder _responder{_camera};
};

TEST_F(PtpResponderTest, SaysWhoItIsBeforeASession) {
  EXPECT_EQ(ask(Operation::getDeviceInfo).code, Response::ok);
  EXPECT_EQ(ask(Operation::getStorageIds).code, Response::sessionNotOpen);
}

TEST_F(PtpResponderTest, OpensOneSession) {
  open();
  EXPECT_EQ(ask(Operation::openSession, {1}).code, Response::sessionAlreadyOpen);
  EXPECT_EQ(ask(Operation::closeSession).code, Response::ok);
  EXPECT_EQ(ask(Operation::closeSession).code, Response::sessionNotOpen);
}

TEST_F(PtpResponderTest, RefusesOperationsThatItDoesNotKnow) {
  open();
  EXPECT_EQ(ask(static_cast<Operation>(0x9999)).code, Response::operationNotSupported);
}

TEST_F(PtpResponderTest, KnowsEveryOperationThatItNames) {
  open();
  const Bytes info = ask(Operation::getDeviceInfo).data.value();
  ByteReader reader(ByteView(info).subspan(2 + 4 + 2 + 1 + 2));
  for (std::uint32_t left = reader.u32(); left > 0; --left) {
    const auto operation = static_cast<Operation>(reader.u16());
    if (operation == Operation::closeSession) continue;
    EXPECT_NE(ask(operation).code, Response::operationNotSupported) << static_cast<int>(operation);
  }
}

TEST_F(PtpResponderTest, NamesTheStorageAndItsRoom) {
  open();
  EXPECT_EQ(ask(Operation::getStorageIds).data, ByteWriter().u32(1).u32(0x00010001).take());
  EXPECT_EQ(ask(Operation::getStorageInfo, {0x00010001}).code, Response::ok);
  EXPECT_EQ(ask(Operation::getStorageInfo, {7}).code, Response::invalidStorage);
}

TEST_F(PtpResponderTest, AnswersForAnEmptySlotToo) {
  open();
  _camera.setCard(false);
  EXPECT_EQ(ask(Operation::eosGetStorageIds).data, ByteWriter().u32(1).u32(0x00020000).take());
  const PtpReply info = ask(Operation::eosGetStorageInfo, {0x00020000});
  ASSERT_EQ(info.code, Response::ok);
  EXPECT_EQ(ByteReader(ByteView(*info.data).subspan(6)).u64(), 0U) << "no capacity";
  EXPECT_EQ(ask(Operation::getObjectHandles, {0x00020000, 0, 0xFFFFFFFF}).code, Response::storeNotAvailable);
  EXPECT_EQ(ask(Operation::eosGetObjectInfoEx, {0x00020000, 0xFFFFFFFF}).code, Response::storeNotAvailable);
}

TEST_F(PtpResponderTest, ListsFoldersAndFiles) {
  open();
  shoot();
  EXPECT_EQ(ask(Operation::getObjectHandles, {0x00010001, 0, 0xFFFFFFFF}).data,
            ByteWriter().u32(1).u32(0x90000001).take());
  const Bytes root = ask(Operation::eosGetObjectInfoEx, {0x00010001, 0xFFFFFFFF, 0x100000}).data.value();
  EXPECT_EQ(root.size(), 4U + 56);
  const Bytes files = ask(Operation::eosGetObjectInfoEx, {0x00010001, 0x90000010, 0x100000}).data.value();
  EXPECT_EQ(files.size(), 4U + 56);
  EXPECT_EQ(ask(Operation::getObjectHandles, {0x00010001, 0xB108, 0x90000010}).data,
            ByteWriter().u32(0).take());
  EXPECT_EQ(ask(Operation::getObjectHandles, {5, 0, 0}).code, Response::invalidStorage);
  EXPECT_EQ(ask(Operation::eosGetObjectInfoEx, {5, 0, 0}).code, Response::invalidStorage);
}

TEST_F(PtpResponderTest, GivesAPhotoWholeAndInParts) {
  open();
  const std::uint32_t handle = shoot(100'000);
  const Bytes whole = ask(Operation::getObject, {handle}).data.value();
  EXPECT_EQ(whole, *_camera.bytes(handle));
  Bytes joined;
  while (joined.size() < whole.size()) {
    const auto offset = static_cast<std::uint32_t>(joined.size());
    const PtpReply part = ask(Operation::getPartialObject, {handle, offset, 30'000});
    ASSERT_EQ(part.code, Response::ok);
    EXPECT_EQ(part.parameters, std::vector<std::uint32_t>{static_cast<std::uint32_t>(part.data->size())});
    joined.insert(joined.end(), part.data->begin(), part.data->end());
  }
  EXPECT_EQ(joined, whole);
  EXPECT_EQ(_camera.album().photos()[0].asked, 2U);
}

TEST_F(PtpResponderTest, NeverAnswersAPartWithoutBytes) {
  open();
  const std::uint32_t handle = shoot(100'000);
  EXPECT_EQ(ask(Operation::getPartialObject, {handle, 100'000, 10}).code, Response::invalidParameter);
  EXPECT_EQ(ask(Operation::getPartialObject, {handle, 0xFFFFFFFF, 0xFFFFFFFF}).code,
            Response::invalidParameter);
  EXPECT_EQ(ask(Operation::getPartialObject, {handle, 0, 0}).code, Response::invalidParameter);
  EXPECT_EQ(_camera.album().photos()[0].asked, 0U);
}

TEST_F(PtpResponderTest, RefusesHandlesThatItDoesNotKnow) {
  open();
  for (const Operation operation :
       {Operation::getObjectInfo, Operation::getObject, Operation::getPartialObject, Operation::deleteObject,
        Operation::eosTransferComplete, Operation::eosSetObjectAttributes}) {
    EXPECT_EQ(ask(operation, {0xDEAD, 0, 1}).code, Response::invalidHandle) << static_cast<int>(operation);
  }
  EXPECT_EQ(ask(Operation::getThumb, {0xDEAD}).code, Response::noThumbnail);
  EXPECT_EQ(ask(Operation::getObject, {0x90000001}).code, Response::invalidHandle) << "a folder";
}

TEST_F(PtpResponderTest, GivesTheThumbnail) {
  open();
  const PtpReply reply = ask(Operation::getThumb, {shoot()});
  ASSERT_EQ(reply.code, Response::ok);
  EXPECT_EQ((*reply.data)[0], 0xFF);
  EXPECT_EQ((*reply.data)[1], 0xD8);
}

TEST_F(PtpResponderTest, SetsAProperty) {
  open();
  const Bytes data = ByteWriter().u32(12).u32(0xD11C).u32(kDestinationHost).take();
  EXPECT_EQ(ask(Operation::eosSetDevicePropValueEx, {}, data).code, Response::ok);
  EXPECT_EQ(_camera.destination(), kDestinationHost);
  EXPECT_EQ(ask(Operation::eosSetDevicePropValueEx, {}, Bytes(5)).code, Response::propertyNotSupported);
  EXPECT_EQ(ask(Operation::eosSetDevicePropValueEx).code, Response::propertyNotSupported);
}

TEST_F(PtpResponderTest, TellsEventsOnceTheyAreSwitchedOn) {
  open();
  EXPECT_EQ(ask(Operation::eosGetEvent).data, end_of_records());
  ask(Operation::eosSetEventMode, {1});
  EXPECT_GT(read_records(ask(Operation::eosGetEvent).data.value())->size(), 10U);
  EXPECT_EQ(ask(Operation::eosGetEvent).data, end_of_records());
  EXPECT_EQ(ask(Operation::eosRequestDevicePropValue, {0xD115}).code, Response::ok);
  EXPECT_EQ(read_records(ask(Operation::eosGetEvent).data.value())->size(), 1U);
}

TEST_F(PtpResponderTest, ReleasesTheShutterByOrderOfTheHost) {
  open();
  ask(Operation::eosRemoteReleaseOn, {1});
  EXPECT_EQ(_camera.shots(), 0U) << "half pressed";
  ask(Operation::eosRemoteReleaseOn, {2});
  EXPECT_EQ(_camera.shots(), 1U);
  ask(Operation::eosRemoteRelease);
  EXPECT_EQ(_camera.shots(), 2U);
  _camera.setCard(false);
  EXPECT_EQ(ask(Operation::eosRemoteRelease).code, Response::generalError);
}

TEST_F(PtpResponderTest, AnswersBusyWhenTold) {
  open();
  _camera.setBusy(1, Operation::eosGetEvent);
  EXPECT_EQ(ask(Operation::getStorageIds).code, Response::ok);
  EXPECT_EQ(ask(Operation::eosGetEvent).code, Response::deviceBusy);
  EXPECT_EQ(ask(Operation::eosGetEvent).code, Response::ok);
}

TEST_F(PtpResponderTest, DescribesPropertiesOrSaysThatItCannot) {
  open();
  EXPECT_EQ(ask(Operation::getDevicePropDesc, {0x5001}).code, Response::ok);
  EXPECT_EQ(ask(Operation::getDevicePropDesc, {0x5002}).code, Response::propertyNotSupported);
}

}  // namespace
}  // namespace ambrel::simulator
