// SPDX-License-Identifier: Apache-2.0
// The wake packet as another machine on the network sees it: broadcast, in a network of the test's own, which
// nothing leaves.
#include <QByteArray>
#include <algorithm>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <iterator>
#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/backup/WakeOnLan.h"

using namespace ambrel;

namespace {

enum Outcome { kSeen = 0, kNoNetwork = 10, kNoReceiver, kNotSent, kNotSeen, kWrongPacket, kSecondPacket };

// Brings the loopback interface of this namespace up and makes it the way to everywhere.
bool makeNetwork() {
  const int control = socket(AF_INET, SOCK_DGRAM, 0);
  char loopback[] = "lo";
  ifreq interface = {};
  std::copy(std::begin(loopback), std::end(loopback), std::begin(interface.ifr_name));
  interface.ifr_flags = IFF_UP | IFF_RUNNING;
  rtentry route = {};
  route.rt_dst.sa_family = AF_INET;
  route.rt_genmask.sa_family = AF_INET;
  route.rt_flags = RTF_UP;
  route.rt_dev = loopback;
  const bool made = ioctl(control, SIOCSIFFLAGS, &interface) == 0 && ioctl(control, SIOCADDRT, &route) == 0;
  close(control);
  return made;
}

Outcome sendAndReceive() {
  const int receiver = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0);
  sockaddr_in place = {};
  place.sin_family = AF_INET;
  place.sin_port = htons(9);
  place.sin_addr.s_addr = INADDR_ANY;
  const int yes = 1;
  setsockopt(receiver, SOL_SOCKET, SO_BROADCAST, &yes, sizeof yes);
  if (bind(receiver, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) return kNoReceiver;
  if (!sendWakeOnLANToMAC("0:1a:2b:3c:4d:5e")) return kNotSent;
  QByteArray packet(500, '\0');
  const ssize_t count = recv(receiver, packet.data(), static_cast<std::size_t>(packet.size()), 0);
  if (count < 0) return kNotSeen;
  packet.resize(count);
  if (count != 102 || packet != wakePacket({0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e})) return kWrongPacket;
  char more = 0;
  return recv(receiver, &more, 1, 0) < 0 ? kSeen : kSecondPacket;
}

}  // namespace

TEST(WakePacket, IsSeenOnceAndWholeByAMachineOnTheNetwork) {
  const pid_t child = fork();
  if (child == 0) {
    // Before anything is sent: without a namespace of its own the packet would go out for real.
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0 || !makeNetwork()) _exit(kNoNetwork);
    _exit(sendAndReceive());
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kNoNetwork) {
    GTEST_SKIP() << "SKIPPED: this machine lets a test make no network namespace, so no packet was sent.";
  }
  EXPECT_EQ(WEXITSTATUS(status), kSeen);
}
