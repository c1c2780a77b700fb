// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/CommandChannel.h"

namespace ambrel::simulator {
namespace {

class CommandChannelTest : public ::testing::Test {
 protected:
  bool give(PacketType type, const Bytes& body) { return _channel.handle({type, body}, _out); }
  bool request(Operation operation, std::uint32_t transaction, std::uint32_t dataPhase = 1) {
    return give(PacketType::commandRequest, ByteWriter()
                                                .u32(dataPhase)
                                                .u16(static_cast<std::uint16_t>(operation))
                                                .u32(transaction)
                                                .u32(1)
                                                .take());
  }
  bool startData(std::uint64_t size) {
    return give(PacketType::startData, ByteWriter().u32(1).u64(size).take());
  }
  // The packets that were answered since the last call.
  std::vector<Packet> answers() {
    PacketReader reader;
    reader.append(_out);
    _out.clear();
    std::vector<Packet> packets;
    while (auto packet = reader.next()) {
      packets.push_back(std::move(*packet));
    }
    EXPECT_EQ(reader.buffered(), 0U);
    return packets;
  }
  Response lastResponse() {
    const std::vector<Packet> packets = answers();
    EXPECT_FALSE(packets.empty());
    EXPECT_EQ(packets.back().type, PacketType::commandResponse);
    return static_cast<Response>(ByteReader(packets.back().body).u16());
  }

  CameraModel _camera{{1, 16, 16}};
  CommandChannel _channel{_camera};
  Bytes _out;
};

TEST_F(CommandChannelTest, EchoesTheTransaction) {
  EXPECT_TRUE(request(Operation::openSession, 77));
  const auto packets = answers();
  ASSERT_EQ(packets.size(), 1U);
  ByteReader reader(packets[0].body);
  reader.u16();
  EXPECT_EQ(reader.u32(), 77U);
}

TEST_F(CommandChannelTest, SendsDataBeforeTheResponse) {
  EXPECT_TRUE(request(Operation::getDeviceInfo, 1));
  const auto packets = answers();
  ASSERT_EQ(packets.size(), 3U);
  EXPECT_EQ(packets[0].type, PacketType::startData);
  EXPECT_EQ(packets[1].type, PacketType::endData);
  EXPECT_EQ(packets[2].type, PacketType::commandResponse);
}

TEST_F(CommandChannelTest, SendsNoDataWithAnError) {
  EXPECT_TRUE(request(Operation::getStorageIds, 1));
  EXPECT_EQ(answers().size(), 1U);
}

TEST_F(CommandChannelTest, CollectsTheHostsDataBeforeItAnswers) {
  request(Operation::openSession, 0);
  answers();
  EXPECT_TRUE(request(Operation::eosSetDevicePropValueEx, 1, 2));
  EXPECT_TRUE(startData(12));
  const Bytes value = ByteWriter().u32(12).u32(0xD11C).u32(kDestinationHost).take();
  EXPECT_TRUE(give(PacketType::data, ByteWriter().u32(1).raw(ByteView(value).first(5)).take()));
  EXPECT_TRUE(answers().empty());
  EXPECT_TRUE(give(PacketType::endData, ByteWriter().u32(1).raw(ByteView(value).subspan(5)).take()));
  EXPECT_EQ(lastResponse(), Response::ok);
  EXPECT_EQ(_camera.destination(), kDestinationHost);
}

TEST_F(CommandChannelTest, EndsAtTooMuchData) {
  request(Operation::eosSetDevicePropValueEx, 1, 2);
  EXPECT_FALSE(startData(CommandChannel::kLargestHostData + 1));
}

TEST_F(CommandChannelTest, EndsAtMoreDataThanWasAnnounced) {
  request(Operation::eosSetDevicePropValueEx, 1, 2);
  EXPECT_TRUE(startData(1));
  const Bytes block = ByteWriter().u32(1).raw(Bytes(CommandChannel::kLargestHostData / 2)).take();
  EXPECT_TRUE(give(PacketType::data, block));
  EXPECT_TRUE(give(PacketType::data, block));
  EXPECT_FALSE(give(PacketType::data, block));
}

TEST_F(CommandChannelTest, EndsAtDataThatNobodyAskedFor) {
  EXPECT_FALSE(startData(4));
  EXPECT_FALSE(give(PacketType::endData, Bytes(8)));
}

TEST_F(CommandChannelTest, EndsAtASecondRequestWithinTheFirst) {
  request(Operation::eosSetDevicePropValueEx, 1, 2);
  EXPECT_FALSE(request(Operation::openSession, 2));
}

TEST_F(CommandChannelTest, EndsAtAPacketThatIsTooShortOrMakesNoSense) {
  EXPECT_FALSE(give(PacketType::commandRequest, Bytes(9)));
  EXPECT_FALSE(give(PacketType::initCommandRequest, Bytes(24)));
  EXPECT_FALSE(give(static_cast<PacketType>(99), {}));
}

TEST_F(CommandChannelTest, ForgetsARequestThatTheHostCancels) {
  request(Operation::eosSetDevicePropValueEx, 1, 2);
  EXPECT_TRUE(give(PacketType::cancel, Bytes(4)));
  EXPECT_TRUE(request(Operation::openSession, 2));
  EXPECT_EQ(lastResponse(), Response::ok);
}

TEST_F(CommandChannelTest, AnswersAPing) {
  EXPECT_TRUE(give(PacketType::ping, {}));
  const auto packets = answers();
  ASSERT_EQ(packets.size(), 1U);
  EXPECT_EQ(packets[0].type, PacketType::pong);
  EXPECT_TRUE(give(PacketType::pong, {}));
}

}  // namespace
}  // namespace ambrel::simulator
