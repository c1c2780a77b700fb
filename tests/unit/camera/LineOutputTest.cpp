// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

#include "camera/LineOutput.h"

namespace ambrel::camera {
namespace {

using protocol::Message;

class LineOutput : public ::testing::Test {
 protected:
  // Every read takes exactly what one write gave.
  static std::array<int, 2> newPackets() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()), 0);
    return ends;
  }
  ~LineOutput() override {
    for (const int fd : ends)
      close(fd);
  }
  std::string read() {
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(ends[0], bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
  }

  std::array<int, 2> ends = newPackets();
  camera::LineOutput output{ends[1]};
};

TEST_F(LineOutput, WritesEachMessageAsOneLineInOneCall) {
  output.say({Message::Kind::Downloaded, "/photos/IMG_0001.JPG"});
  output.say({Message::Kind::Ready});
  EXPECT_EQ(read(), "DOWNLOADED|/photos/IMG_0001.JPG\n");
  EXPECT_EQ(read(), "READY|OK\n");
}

TEST_F(LineOutput, NeverMakesTwoLinesOfOneMessage) {
  output.say({Message::Kind::Log, std::string("one\ntwo\r\nthree\0four", 19)});
  EXPECT_EQ(read(), "LOG|one two  three four\n");
}

TEST_F(LineOutput, GivesUpOnAReaderThatIsGone) {
  std::signal(SIGPIPE, SIG_IGN);
  close(ends[0]);
  output.say({Message::Kind::Ready});
  ends[0] = open("/dev/null", O_RDONLY);
}

TEST_F(LineOutput, TriesOnlyForAsLongAsItMay) {
  fcntl(ends[1], F_SETFL, O_NONBLOCK);
  while (write(ends[1], "x", 1) == 1) {
  }
  output.trySay({Message::Kind::Ready}, std::chrono::milliseconds(1));
  std::string got;
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  for (std::string piece = read(); !piece.empty(); piece = read())
    got += piece;
  EXPECT_EQ(got.find("READY"), std::string::npos);
}

TEST_F(LineOutput, TriesWithSuccessWhenThereIsRoom) {
  output.trySay({Message::Kind::Ready}, std::chrono::milliseconds(1));
  EXPECT_EQ(read(), "READY|OK\n");
}

}  // namespace
}  // namespace ambrel::camera
