// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "camera/Descriptors.h"
#include "camera/GphotoCamera.h"
#include "camera/HostIdentity.h"

// Everything behind an open session is tested against the simulated camera.
namespace ambrel::camera {
namespace {

class GphotoCamera : public ::testing::Test {
 protected:
  camera::GphotoCamera at(const std::string& port) {
    return {port, hostIdentity(), watchdog, [](const std::string&) {}};
  }
  // A port of loopback that nobody listens on.
  static std::string closedPort() {
    const int server = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    EXPECT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), length), 0);
    EXPECT_EQ(getsockname(server, reinterpret_cast<sockaddr*>(&address), &length), 0);
    close(server);
    const std::string port = std::to_string(ntohs(address.sin_port));
    return "ptpip:127.0.0.1:" + port + ":" + port;
  }

  Watchdog watchdog{{}, [](const std::string& reason) { FAIL() << reason; }};
};

TEST_F(GphotoCamera, FindsACameraAtANamedPort) {
  const std::string port = closedPort();
  camera::GphotoCamera camera = at(port);
  ASSERT_TRUE(camera.load());
  const Outcome<std::string> found = camera.find();
  ASSERT_TRUE(found);
  EXPECT_EQ(found.value(), "PTP/IP Camera at " + port);
}

TEST_F(GphotoCamera, DoesNotFindACameraAtAPortThatMakesNoSense) {
  camera::GphotoCamera camera = at("carrier-pigeon:1");
  ASSERT_TRUE(camera.load());
  const Outcome<std::string> found = camera.find();
  ASSERT_FALSE(found);
  EXPECT_EQ(found.failure().kind, Failure::Kind::NotFound);
}

TEST_F(GphotoCamera, SaysThatNobodyAnswersAndLeavesNoSocketOpen) {
  const std::set<int> before = openInternetSockets();
  camera::GphotoCamera camera = at(closedPort());
  ASSERT_TRUE(camera.load());
  ASSERT_TRUE(camera.find());
  const Outcome<> opened = camera.open(SaveMode::Both);
  ASSERT_FALSE(opened);
  EXPECT_EQ(opened.failure().kind, Failure::Kind::NotFound);
  camera.close();
  EXPECT_EQ(openInternetSockets(), before);
}

TEST_F(GphotoCamera, MayBeClosedWithoutASession) {
  camera::GphotoCamera camera = at("");
  camera.close();
  camera.close();
}

}  // namespace
}  // namespace ambrel::camera
