// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "camera/Descriptors.h"

namespace ambrel::camera {
namespace {

bool isOpen(int fd) {
  return fcntl(fd, F_GETFD) >= 0;
}

TEST(Descriptors, CountInternetSocketsAndNothingElse) {
  const std::set<int> before = openInternetSockets();
  const int internet = socket(AF_INET, SOCK_STREAM, 0);
  const int internet6 = socket(AF_INET6, SOCK_STREAM, 0);
  const int local = socket(AF_UNIX, SOCK_STREAM, 0);
  const int file = open("/dev/null", O_RDONLY);
  std::set<int> expected = before;
  expected.insert(internet);
  if (internet6 >= 0) expected.insert(internet6);
  EXPECT_EQ(openInternetSockets(), expected);
  for (const int fd : {internet, internet6, local, file})
    close(fd);
}

TEST(Descriptors, CloseTheSocketsThatAreNotKept) {
  const int kept = socket(AF_INET, SOCK_STREAM, 0);
  const std::set<int> ours = openInternetSockets();
  const int left = socket(AF_INET, SOCK_STREAM, 0);
  closeInternetSocketsBut(ours);
  EXPECT_TRUE(isOpen(kept));
  EXPECT_FALSE(isOpen(left));
  close(kept);
}

// Two ends of a connection over loopback; whatever is open is closed at the end.
class Connection : public ::testing::Test {
 protected:
  Connection() {
    server = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* where = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(server, where, length), 0);
    EXPECT_EQ(listen(server, 1), 0);
    EXPECT_EQ(getsockname(server, where, &length), 0);
    client = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(connect(client, where, length), 0);
  }
  ~Connection() override { closeInternetSocketsBut(ours); }

  std::set<int> ours = openInternetSockets();
  int server = -1;
  int client = -1;
};

TEST_F(Connection, IsEndedUnderACallThatWaitsForIt) {
  endInternetSocketsBut(ours);
  char byte = 0;
  // Ended or reset, as the system likes; but at once.
  EXPECT_LE(read(client, &byte, 1), 0);
  EXPECT_TRUE(isOpen(client));
}

TEST_F(Connection, ShowsHowManyBytesCameIn) {
  const std::uint64_t before = internetBytesReceived();
  const int peer = accept(server, nullptr, nullptr);
  EXPECT_EQ(internetBytesReceived(), before);
  ASSERT_EQ(write(client, "seven b", 7), 7);
  char byte = 0;
  ASSERT_EQ(read(peer, &byte, 1), 1);
  // What has arrived counts, whether or not it was read.
  EXPECT_EQ(internetBytesReceived(), before + 7);
}

TEST(Descriptors, OccupyStandardInputOnlyWhenItIsFree) {
  const int saved = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  occupyStandardInput();
  char byte = 0;
  EXPECT_EQ(read(STDIN_FILENO, &byte, 1), 0);
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  dup2(ends[0], STDIN_FILENO);
  occupyStandardInput();
  ASSERT_EQ(write(ends[1], "x", 1), 1);
  EXPECT_EQ(read(STDIN_FILENO, &byte, 1), 1);
  if (saved >= 0) dup2(saved, STDIN_FILENO);
  for (const int fd : {saved, ends[0], ends[1]})
    close(fd);
}

}  // namespace
}  // namespace ambrel::camera
