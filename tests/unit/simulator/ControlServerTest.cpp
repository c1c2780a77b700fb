// SPDX-License-Identifier: Apache-2.0
#include <arpa/inet.h>
#include <array>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

#include "simulator/ControlServer.h"

namespace ambrel::simulator {
namespace {

class ControlServerTest : public ::testing::Test {
 protected:
  // Serves until nothing more happens.
  void serve() {
    std::vector<pollfd> polled;
    for (;;) {
      polled.clear();
      _control.watch(polled);
      if (::poll(polled.data(), polled.size(), _shutter.busy() ? 0 : 20) <= 0 && !_shutter.busy()) return;
      _control.serve(polled);
      _shutter.proceed(Shutter::Clock::now());
    }
  }
  static void write(const Descriptor& to, std::string_view text) {
    ASSERT_EQ(::write(to.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  static std::string read(const Descriptor& from) {
    std::array<char, 65536> block;
    const ssize_t count = ::recv(from.get(), block.data(), block.size(), MSG_DONTWAIT);
    return count > 0 ? std::string(block.data(), static_cast<std::size_t>(count)) : std::string();
  }
  Descriptor connect() {
    Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(_control.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return socket;
  }
  // A pair of sockets in place of standard input and output; ours is returned.
  Descriptor attach() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    _attached.reset(ends[1]);
    _control.attach(ends[1], ends[1]);
    return Descriptor(ends[0]);
  }

  CameraModel _camera{{1, 16, 16}};
  Shutter _shutter{_camera};
  PtpIpServer _server{_camera};
  Commands _commands{_camera, _shutter, _server};
  ControlServer _control{_commands};
  Descriptor _attached;
};

TEST_F(ControlServerTest, AnswersTheAttachedInput) {
  const Descriptor operatorEnd = attach();
  write(operatorEnd, "shoot\ncard in=0\n");
  serve();
  EXPECT_EQ(read(operatorEnd), "ok first=1 last=1 files=1\nok\n");
  EXPECT_FALSE(_control.inputEnded());
}

TEST_F(ControlServerTest, AnswersEachConnectionForItself) {
  ASSERT_TRUE(_control.listen(0));
  const Descriptor one = connect();
  const Descriptor two = connect();
  write(one, "photos\n");
  write(two, "dance\n");
  serve();
  EXPECT_EQ(read(one), "ok photos=0\n");
  EXPECT_EQ(read(two), "error unknown command dance\n");
}

TEST_F(ControlServerTest, AnswersInOrderAlthoughABurstTakesItsTime) {
  const Descriptor operatorEnd = attach();
  write(operatorEnd, "shoot n=3\nphotos\n");
  serve();
  const std::string answers = read(operatorEnd);
  EXPECT_TRUE(answers.starts_with("ok first=1 last=3 files=3\nphoto name=")) << answers;
  EXPECT_TRUE(answers.ends_with("ok photos=3\n")) << answers;
}

TEST_F(ControlServerTest, AnswersEverythingBeforeItEndsWithItsInput) {
  const Descriptor operatorEnd = attach();
  write(operatorEnd, "shoot n=2\nstatus\n");
  ::shutdown(operatorEnd.get(), SHUT_WR);
  serve();
  EXPECT_TRUE(read(operatorEnd).find("ok power=1") != std::string::npos);
  EXPECT_TRUE(_control.inputEnded());
}

TEST_F(ControlServerTest, OutlivesAConnectionThatEnds) {
  ASSERT_TRUE(_control.listen(0));
  {
    const Descriptor gone = connect();
    write(gone, "shoot n=3\n");
  }
  serve();
  EXPECT_EQ(_camera.shots(), 3U);
  EXPECT_FALSE(_control.inputEnded());
  EXPECT_TRUE(_control.allAnswered());
  const Descriptor next = connect();
  write(next, "photos\n");
  serve();
  EXPECT_TRUE(read(next).ends_with("ok photos=3\n"));
}

TEST_F(ControlServerTest, JoinsALineFromItsPieces) {
  const Descriptor operatorEnd = attach();
  write(operatorEnd, "sho");
  serve();
  EXPECT_EQ(read(operatorEnd), "");
  write(operatorEnd, "ot\n");
  serve();
  EXPECT_EQ(read(operatorEnd), "ok first=1 last=1 files=1\n");
}

TEST_F(ControlServerTest, SendsALongListInPieces) {
  const Descriptor operatorEnd = attach();
  write(operatorEnd, "shoot n=300\n");
  serve();
  read(operatorEnd);
  write(operatorEnd, "photos\n");
  serve();
  const std::string list = read(operatorEnd);
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 301);
  EXPECT_TRUE(list.ends_with("ok photos=300\n"));
}

}  // namespace
}  // namespace ambrel::simulator
