// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/PtpIpServer.h"
#include "support/PtpIpHost.h"

namespace ambrel::simulator {
namespace {

class PtpIpServerTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(_server.listen(0)); }

  void serve() { _server.serve(Link::Clock::now()); }
  PtpIpHost host() {
    return PtpIpHost(_server.port(), [this] { serve(); });
  }
  LoopbackConnection connection() {
    return LoopbackConnection(_server.port(), [this] { serve(); });
  }
  // Takes a photo of the size and returns its handle.
  std::uint32_t shoot(std::size_t size) {
    ShotOrder order;
    order.size = size;
    EXPECT_EQ(_camera.shoot(order), "");
    return _camera.children(0x90000010).back()->handle;
  }
  void freesTheSeat() {
    PtpIpHost next = host();
    EXPECT_TRUE(next.openSession());
    EXPECT_TRUE(next.request(Operation::getStorageIds));
  }

  CameraModel _camera{{1, 160, 120}};
  PtpIpServer _server{_camera};
};

TEST_F(PtpIpServerTest, LetsAHostInAndAnswersIt) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  EXPECT_TRUE(_server.hasHost());
  const auto reply = first.request(Operation::getStorageIds);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->code, Response::ok);
  EXPECT_EQ(reply->data, ByteWriter().u32(1).u32(0x00010001).take());
}

TEST_F(PtpIpServerTest, TellsWhichHostItLetIn) {
  EXPECT_EQ(_server.hostId(), "");
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  std::string expected;
  for (int i = 0; i < 16; ++i)
    expected += "42";
  EXPECT_EQ(_server.hostId(), expected);
}

TEST_F(PtpIpServerTest, GivesALargePhotoWhole) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  const std::uint32_t handle = shoot(5'000'000);
  const auto reply = first.request(Operation::getObject, {handle});
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->data, *_camera.bytes(handle));
}

TEST_F(PtpIpServerTest, RefusesASecondHostWithInitFail) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  LoopbackConnection second = connection();
  second.send(initCommandRequest());
  const auto packet = second.packet();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::initFail);
  EXPECT_EQ(packet->body, (Bytes{2, 0, 0, 0}));
  EXPECT_TRUE(second.waitClosed());
  EXPECT_TRUE(first.request(Operation::getStorageIds)) << "the first one is not disturbed";
}

TEST_F(PtpIpServerTest, FreesTheSeatWhenEitherConnectionEnds) {
  for (const bool command : {true, false}) {
    PtpIpHost first = host();
    ASSERT_TRUE(first.openSession());
    (command ? first.command() : first.event()).close();
    freesTheSeat();
  }
}

TEST_F(PtpIpServerTest, FreesTheSeatWhenAConnectionIsTornDown) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  first.command().reset();
  freesTheSeat();
}

TEST_F(PtpIpServerTest, FreesTheSeatInTheMiddleOfATransfer) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  const std::uint32_t handle = shoot(20'000'000);
  const Bytes request =
      ByteWriter().u32(1).u16(static_cast<std::uint16_t>(Operation::getObject)).u32(2).u32(handle).take();
  first.command().send(encode_packet(PacketType::commandRequest, request));
  ASSERT_TRUE(first.command().packet());
  first.command().close();
  first.event().close();
  freesTheSeat();
}

TEST_F(PtpIpServerTest, FreesTheSeatOfAHostThatBreaksTheProtocol) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  first.command().send(ByteWriter().u32(3).u32(6).bytes());
  EXPECT_TRUE(first.command().waitClosed());
  EXPECT_TRUE(first.event().waitClosed());
  freesTheSeat();
}

TEST_F(PtpIpServerTest, EmptiesTheHostsMemoryWhenTheHostIsGone) {
  {
    PtpIpHost first = host();
    ASSERT_TRUE(first.openSession());
    ASSERT_TRUE(
        first.send(Operation::eosSetDevicePropValueEx, ByteWriter().u32(12).u32(0xD11C).u32(4).bytes()));
    EXPECT_EQ(_camera.destination(), kDestinationHost);
  }
  serve();
  EXPECT_EQ(_camera.destination(), kDestinationCard);
  EXPECT_FALSE(_server.hasHost());
}

TEST_F(PtpIpServerTest, RefusesAnEventConnectionOfNoHost) {
  LoopbackConnection stray = connection();
  stray.send(initEventRequest(1));
  const auto packet = stray.packet();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::initFail);
  EXPECT_TRUE(stray.waitClosed());
}

TEST_F(PtpIpServerTest, RefusesAWrongNumberAndASecondEventConnection) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  for (const std::uint32_t number : {1U, 2U, 99U}) {
    LoopbackConnection second = connection();
    second.send(initEventRequest(number));
    const auto packet = second.packet();
    ASSERT_TRUE(packet) << number;
    EXPECT_EQ(packet->type, PacketType::initFail) << number;
  }
  EXPECT_TRUE(first.request(Operation::getStorageIds));
}

TEST_F(PtpIpServerTest, RefusesAGreetingThatIsTooShort) {
  LoopbackConnection stray = connection();
  stray.send(encode_packet(PacketType::initCommandRequest, Bytes(21)));
  const auto packet = stray.packet();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::initFail);
  freesTheSeat();
}

TEST_F(PtpIpServerTest, LetsAHostInPastManyThatSayNothing) {
  std::vector<LoopbackConnection> silent;
  for (int i = 0; i < 60; ++i) {
    silent.push_back(connection());
    serve();
  }
  freesTheSeat();
}

TEST_F(PtpIpServerTest, LosesTheHostOnADropButStaysReachable) {
  for (const Cut how : {Cut::close, Cut::reset}) {
    PtpIpHost first = host();
    ASSERT_TRUE(first.openSession());
    _server.cut(0, how, false);
    EXPECT_TRUE(first.command().waitClosed());
    EXPECT_TRUE(first.event().waitClosed());
    freesTheSeat();
  }
}

TEST_F(PtpIpServerTest, CutsATransferAfterExactlySoManyBytes) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  const std::uint32_t handle = shoot(3'000'000);
  constexpr std::size_t kBytes = 20 + (262'144 + 12) * 4;  // the start and four blocks of data
  _server.cut(kBytes, Cut::close, true);
  const Bytes request =
      ByteWriter().u32(1).u16(static_cast<std::uint16_t>(Operation::getObject)).u32(2).u32(handle).take();
  first.command().send(encode_packet(PacketType::commandRequest, request));
  std::size_t received = 0;
  while (const auto packet = first.command().packet()) {
    received += packet->body.size() + PacketReader::kHeaderBytes;
  }
  EXPECT_EQ(received, kBytes);
  EXPECT_FALSE(connection().connected());
  EXPECT_FALSE(_server.reachable());
  ASSERT_TRUE(_server.plugIn());
  freesTheSeat();
}

TEST_F(PtpIpServerTest, GoesSilentWhenFrozenAndOnWhenThawed) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  _server.cut(0, Cut::freeze, true);
  serve();
  first.command().send(encode_packet(PacketType::ping, {}));
  EXPECT_FALSE(first.command().packet(20));
  EXPECT_FALSE(_server.reachable());
  ASSERT_TRUE(_server.plugIn());
  const auto packet = first.command().packet();
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->type, PacketType::pong);
}

TEST_F(PtpIpServerTest, LetsTheNextHostInAfterAFreezeThatTheFirstGaveUp) {
  {
    PtpIpHost first = host();
    ASSERT_TRUE(first.openSession());
    _server.cut(0, Cut::freeze, true);
    serve();
  }
  ASSERT_TRUE(_server.plugIn());
  freesTheSeat();
}

TEST_F(PtpIpServerTest, SlowsDownToItsRate) {
  PtpIpHost first = host();
  ASSERT_TRUE(first.openSession());
  const std::uint32_t handle = shoot(200'000);
  _server.link().setRate(1'000'000);
  const auto before = Link::Clock::now();
  const auto reply = first.request(Operation::getObject, {handle});
  const auto taken = Link::Clock::now() - before;
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->data, *_camera.bytes(handle));
  EXPECT_GT(taken, std::chrono::milliseconds(150));
}

TEST_F(PtpIpServerTest, RefusesAPortThatIsTaken) {
  PtpIpServer second(_camera);
  EXPECT_FALSE(second.listen(_server.port()));
}

}  // namespace
}  // namespace ambrel::simulator
