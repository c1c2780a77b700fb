// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Packets.h"

namespace ambrel::simulator {
namespace {

Bytes header(std::uint32_t length, std::uint32_t type) {
  return ByteWriter().u32(length).u32(type).take();
}

TEST(PacketReader, TakesAPacketApart) {
  PacketReader reader;
  reader.append(encode_packet(PacketType::initEventRequest, Bytes{7, 0, 0, 0}));
  const auto packet = reader.next();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::initEventRequest);
  EXPECT_EQ(packet->body, (Bytes{7, 0, 0, 0}));
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.buffered(), 0U);
}

TEST(PacketReader, JoinsAPacketThatComesByteByByte) {
  PacketReader reader;
  const Bytes bytes = encode_packet(PacketType::ping, Bytes{1, 2});
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
    reader.append(ByteView(bytes).subspan(i, 1));
    EXPECT_FALSE(reader.next()) << i;
  }
  reader.append(ByteView(bytes).last(1));
  EXPECT_TRUE(reader.next());
}

TEST(PacketReader, CutsManyPacketsOutOfOneBlock) {
  PacketReader reader;
  Bytes block;
  for (std::uint8_t i = 0; i < 100; ++i) {
    const Bytes packet = encode_packet(PacketType::data, Bytes(2000, i));
    block.insert(block.end(), packet.begin(), packet.end());
  }
  reader.append(block);
  for (std::uint8_t i = 0; i < 100; ++i) {
    const auto packet = reader.next();
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->body, Bytes(2000, i));
  }
  EXPECT_FALSE(reader.next());
}

TEST(PacketReader, TakesThePacketOfTheLargestSize) {
  PacketReader reader;
  reader.append(
      encode_packet(PacketType::data, Bytes(PacketReader::kLargestPacket - PacketReader::kHeaderBytes)));
  EXPECT_TRUE(reader.next());
}

TEST(PacketReader, BreaksAtALengthThatCannotBe) {
  for (const std::uint32_t length :
       {0U, 7U, static_cast<std::uint32_t>(PacketReader::kLargestPacket) + 1, ~0U}) {
    PacketReader reader;
    reader.append(header(length, 1));
    EXPECT_FALSE(reader.next()) << length;
    EXPECT_TRUE(reader.broken()) << length;
    reader.append(encode_packet(PacketType::ping, {}));
    EXPECT_FALSE(reader.next()) << length;
    EXPECT_EQ(reader.buffered(), 0U) << length;
  }
}

TEST(Packets, GreetsWithANumberAndAClosedName) {
  const Bytes ack = encode_init_ack(5, "R6");
  ByteReader reader(ack);
  EXPECT_EQ(reader.u32(), ack.size());
  EXPECT_EQ(reader.u32(), 2U);
  EXPECT_EQ(reader.u32(), 5U);
  const ByteView name = reader.rest().subspan(16);
  EXPECT_EQ(Bytes(name.begin(), name.end()), (Bytes{'R', 0, '6', 0, 0, 0, 0, 0, 1, 0}));
}

TEST(Packets, RefusesWithAReason) {
  EXPECT_EQ(encode_init_fail(InitFailure::busy), (Bytes{12, 0, 0, 0, 5, 0, 0, 0, 2, 0, 0, 0}));
}

TEST(Packets, RespondsWithCodeTransactionAndParameters) {
  const std::uint32_t parameters[] = {0x11223344};
  EXPECT_EQ(encode_response(Response::ok, 9, parameters),
            (Bytes{18, 0, 0, 0, 7, 0, 0, 0, 0x01, 0x20, 9, 0, 0, 0, 0x44, 0x33, 0x22, 0x11}));
}

TEST(Packets, SendsNoDataAsStartAndEnd) {
  PacketReader reader;
  reader.append(encode_data_phase(3, {}));
  EXPECT_EQ(reader.next()->body, (Bytes{3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  const auto end = reader.next();
  ASSERT_TRUE(end);
  EXPECT_EQ(end->type, PacketType::endData);
  EXPECT_EQ(end->body.size(), 4U);
}

TEST(Packets, SendsMuchDataInBlocksThatMakeUpTheWhole) {
  Bytes data(700'000);
  for (std::size_t i = 0; i < data.size(); ++i) {
    data[i] = static_cast<std::uint8_t>(i / 1000);
  }
  PacketReader reader;
  reader.append(encode_data_phase(1, data));
  const auto start = reader.next();
  ASSERT_TRUE(start);
  EXPECT_EQ(start->type, PacketType::startData);
  ByteReader announced(start->body);
  announced.u32();
  EXPECT_EQ(announced.u64(), data.size());
  Bytes joined;
  PacketType last{};
  while (const auto packet = reader.next()) {
    last = packet->type;
    joined.insert(joined.end(), packet->body.begin() + 4, packet->body.end());
  }
  EXPECT_EQ(last, PacketType::endData);
  EXPECT_EQ(joined, data);
}

}  // namespace
}  // namespace ambrel::simulator
