// SPDX-License-Identifier: Apache-2.0
// What broken and hostile hosts do to the simulated camera: it must neither fall over, nor grow, nor keep a
// proper host from its seat.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "simulator/Packets.h"
#include "simulator/Sha256.h"
#include "support/PtpIpHost.h"
#include "support/SimulatedCamera.h"

using ambrel::initCommandRequest;
using ambrel::LoopbackConnection;
using ambrel::PtpIpHost;
using ambrel::SimulatedCamera;
using ambrel::simulator::ByteReader;
using ambrel::simulator::Bytes;
using ambrel::simulator::ByteView;
using ambrel::simulator::ByteWriter;
using ambrel::simulator::encode_packet;
using ambrel::simulator::Operation;
using ambrel::simulator::PacketType;
using ambrel::simulator::Response;
using ambrel::simulator::sha256_hex;

namespace {

constexpr int kRounds = 400;

class Robustness : public ::testing::Test {
 protected:
  void SetUp() override { _camera.command("shoot size=100000"); }

  // A whole session as a proper host has it, with a photo that must come back right.
  void expectProperSession() {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession());
    const auto handles = host.request(Operation::getObjectHandles, {0x00010001, 0x3801, 0x90000010});
    ASSERT_TRUE(handles);
    ASSERT_EQ(handles->code, Response::ok);
    ByteReader reader(handles->data);
    ASSERT_GE(reader.u32(), 1U);
    const auto photo = host.request(Operation::getObject, {reader.u32()});
    ASSERT_TRUE(photo);
    EXPECT_EQ(sha256_hex(photo->data), _camera.photos()[0].sha256);
    const auto closed = host.request(Operation::closeSession);
    EXPECT_TRUE(closed && closed->code == Response::ok);
  }

  std::size_t descriptors() const {
    const auto folder = std::filesystem::path("/proc") / std::to_string(_camera.pid()) / "fd";
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
  }
  // The camera notices the end of a connection when it next looks; any answer proves that it has looked.
  bool descriptorsComeBackTo(std::size_t count) {
    for (int look = 0; look < 1000; ++look) {
      _camera.command("status");
      if (descriptors() <= count) return true;
    }
    return false;
  }

  Bytes noise(std::size_t size) {
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(_random()); });
    return bytes;
  }
  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(_random() % limit); }

  // A packet that is right in its frame but not in what it says, or in its length, or not whole.
  Bytes oddPacket() {
    Bytes packet = encode_packet(static_cast<PacketType>(below(16)), noise(below(64)));
    switch (below(5)) {
      case 0:
        packet.resize(below(static_cast<std::uint32_t>(packet.size())));
        break;
      case 1:
        return ByteWriter()
            .u32(static_cast<std::uint32_t>(_random()))
            .u32(below(16))
            .raw(noise(below(64)))
            .take();
      case 2: {
        // A plausible request: a real operation with any parameters.
        const auto operation = static_cast<std::uint16_t>((below(2) == 0 ? 0x1001 : 0x9101) + below(0x60));
        ByteWriter body;
        body.u32(1 + below(2)).u16(operation).u32(below(100)).raw(noise(std::size_t{4} * below(6)));
        return encode_packet(PacketType::commandRequest, body.bytes());
      }
      default:
        break;
    }
    return packet;
  }

  SimulatedCamera _camera{{"--jpeg-size", "160x120"}};
  std::mt19937 _random{20260101};
};

TEST_F(Robustness, OutlivesHostsThatGreetWithNoise) {
  const std::size_t before = descriptors();
  for (int round = 0; round < kRounds; ++round) {
    LoopbackConnection host(_camera.port());
    ASSERT_TRUE(host.connected());
    host.send(noise(below(4096)));
    if (below(2) == 0) host.reset();
  }
  expectProperSession();
  EXPECT_TRUE(descriptorsComeBackTo(before));
}

TEST_F(Robustness, OutlivesHostsThatSendOddPacketsInASession) {
  const std::size_t before = descriptors();
  for (int round = 0; round < kRounds; ++round) {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession()) << "round " << round;
    for (std::uint32_t packet = below(20); packet > 0; --packet) {
      host.command().send(oddPacket());
    }
    if (below(4) == 0) host.event().send(oddPacket());
    if (below(4) == 0) host.command().packet(5);
    if (below(2) == 0) host.command().reset();
  }
  // Odd packets may have taken photos, changed settings and deleted files, as any host may.
  EXPECT_TRUE(descriptorsComeBackTo(before));
  EXPECT_EQ(_camera.command("shoot").rfind("ok", 0), 0U);
  PtpIpHost host(_camera.port());
  ASSERT_TRUE(host.openSession());
  EXPECT_TRUE(host.request(Operation::getDeviceInfo));
}

TEST_F(Robustness, OutlivesPacketsThatClaimToBeEndless) {
  const std::size_t before = descriptors();
  for (const std::uint32_t length : {0U, 1U, 7U, 0x100001U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession());
    host.command().send(ByteWriter().u32(length).u32(6).bytes());
    EXPECT_TRUE(host.command().waitClosed()) << length;
  }
  expectProperSession();
  EXPECT_TRUE(descriptorsComeBackTo(before));
}

TEST_F(Robustness, OutlivesHostsThatLeaveWithinATransfer) {
  _camera.command("shoot n=1 size=5000000");
  const std::size_t before = descriptors();
  for (int round = 0; round < 50; ++round) {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession()) << "round " << round;
    const Bytes body = ByteWriter().u32(1).u16(0x1009).u32(2).u32(0x91900002).take();
    host.command().send(encode_packet(PacketType::commandRequest, body));
    ASSERT_TRUE(host.command().packet());
    if (below(2) == 0) host.command().reset();
  }
  expectProperSession();
  EXPECT_TRUE(descriptorsComeBackTo(before));
}

TEST_F(Robustness, AnswersOthersWhileOneHostDoesNotRead) {
  _camera.command("shoot n=1 size=16000000");
  PtpIpHost host(_camera.port());
  ASSERT_TRUE(host.openSession());
  const Bytes body = ByteWriter().u32(1).u16(0x1009).u32(2).u32(0x91900002).take();
  host.command().send(encode_packet(PacketType::commandRequest, body));
  EXPECT_EQ(_camera.command("status").rfind("ok power=1 cable=1 card=1 host=1", 0), 0U);
  LoopbackConnection second(_camera.port());
  second.send(initCommandRequest());
  const auto packet = second.packet();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::initFail);
}

TEST_F(Robustness, LetsTheNextHostInAsSoonAsTheFirstIsGone) {
  for (int round = 0; round < 200; ++round) {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession()) << "round " << round;
    if (round % 2 == 0) host.command().reset();
  }
}

TEST_F(Robustness, StaysTheSameSizeOverManyCuts) {
  const std::size_t before = descriptors();
  for (int round = 0; round < 100; ++round) {
    PtpIpHost host(_camera.port());
    ASSERT_TRUE(host.openSession()) << "round " << round;
    _camera.command("cable in=0 how=" + std::string(round % 2 == 0 ? "close" : "reset"));
    EXPECT_TRUE(host.command().waitClosed());
    EXPECT_FALSE(LoopbackConnection(_camera.port()).connected());
    _camera.command("cable in=1");
  }
  expectProperSession();
  EXPECT_TRUE(descriptorsComeBackTo(before));
}

}  // namespace
