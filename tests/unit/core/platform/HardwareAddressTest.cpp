// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/platform/HardwareAddress.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

const QByteArray kNeighbours =
    "192.168.1.1 dev eth0 lladdr 00:11:22:33:44:55 REACHABLE\n"
    "192.168.1.20 dev eth0 lladdr a0:b1:c2:d3:e4:f5 STALE\n"
    "192.168.1.21 dev eth0  FAILED\n"
    "fe80::1 dev wlan0 lladdr 66:77:88:99:aa:bb router DELAY\n";

}  // namespace

TEST(HardwareAddress, ReadsWhatArpSays) {
  EXPECT_EQ(hardwareAddressInArp("nas (192.168.1.20) at 0:1a:2b:3c:4d:5e on en0 ifscope [ethernet]\n"),
            QString("0:1a:2b:3c:4d:5e"));
  EXPECT_EQ(hardwareAddressInArp("nas (192.168.1.20) at (incomplete) on en0\n"), std::nullopt);
  EXPECT_EQ(hardwareAddressInArp("nas at 0:1:2:3:4:5"), std::nullopt);  // no blank after it
  EXPECT_EQ(hardwareAddressInArp("nas at 0:1:2:3:4 on en0"), std::nullopt);
  EXPECT_EQ(hardwareAddressInArp(""), std::nullopt);
}

TEST(HardwareAddress, ReadsTheTableOfNeighbours) {
  EXPECT_EQ(hardwareAddressInNeighbours(kNeighbours, {"192.168.1.20"}), QString("a0:b1:c2:d3:e4:f5"));
  EXPECT_EQ(hardwareAddressInNeighbours(kNeighbours, {"192.168.1.21", "fe80::1"}),
            QString("66:77:88:99:aa:bb"));
}

TEST(HardwareAddress, IsUnknownForAMachineThatIsNoNeighbour) {
  EXPECT_EQ(hardwareAddressInNeighbours(kNeighbours, {"192.168.1.2"}), std::nullopt);
  EXPECT_EQ(hardwareAddressInNeighbours(kNeighbours, {"192.168.1.21"}), std::nullopt);
  EXPECT_EQ(hardwareAddressInNeighbours(kNeighbours, {}), std::nullopt);
  EXPECT_EQ(hardwareAddressInNeighbours("", {"192.168.1.20"}), std::nullopt);
}

TEST(HardwareAddress, IsUnknownForThisMachineItself) {
  EXPECT_EQ(hardwareAddressOf("127.0.0.1"), std::nullopt);
}
