// SPDX-License-Identifier: Apache-2.0
#include <QUdpSocket>
#include <gtest/gtest.h>

#include "core/backup/WakeOnLan.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;

TEST(WakeOnLan, ReadsSixHexadecimalFields) {
  EXPECT_EQ(parseHardwareAddress("00:1a:2B:ff:80:7f"), (HardwareAddress{0x00, 0x1a, 0x2b, 0xff, 0x80, 0x7f}));
  EXPECT_EQ(parseHardwareAddress("0:1:2:a:b:c"), (HardwareAddress{0, 1, 2, 10, 11, 12}));
}

TEST(WakeOnLan, TakesTheLowByteOfALongerField) {
  EXPECT_EQ(parseHardwareAddress("100:1ff:2:3:4:5"), (HardwareAddress{0x00, 0xff, 2, 3, 4, 5}));
}

TEST(WakeOnLan, DoesNotMindWhatFollows) {
  EXPECT_EQ(parseHardwareAddress("1:2:3:4:5:6:7 on en0"), (HardwareAddress{1, 2, 3, 4, 5, 6}));
}

TEST(WakeOnLan, RefusesAnAddressWithAFieldMissing) {
  for (const QString text : {"", "1:2:3:4:5", "1:2:3:4:5:", "1:2::4:5:6", "1-2-3-4-5-6", "no:1:2:3:4:5"}) {
    EXPECT_FALSE(parseHardwareAddress(text)) << text.toStdString();
    EXPECT_FALSE(sendWakeOnLANToMAC(text, {"127.0.0.1", 9})) << text.toStdString();
  }
}

TEST(WakeOnLan, BuildsThePacketOfSixFilledBytesAndSixteenAddresses) {
  const QByteArray packet = wakePacket({0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e});
  EXPECT_EQ(packet.size(), 102);
  EXPECT_EQ(packet.left(6), QByteArray(6, '\xff'));
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(packet.mid(6 + 6 * i, 6), QByteArray("\x00\x1a\x2b\x3c\x4d\x5e", 6)) << i;
}

TEST(WakeOnLan, IsMeantForEveryMachineOnTheLocalNetwork) {
  EXPECT_EQ(WakeDestination().address, "255.255.255.255");
  EXPECT_EQ(WakeDestination().port, 9);
}

TEST(WakeOnLan, SendsOnePacketWhole) {
  QUdpSocket receiver;
  ASSERT_TRUE(receiver.bind(QHostAddress::LocalHost, 0));
  EXPECT_TRUE(sendWakeOnLANToMAC("1:2:3:4:5:6", {"127.0.0.1", receiver.localPort()}));
  ASSERT_TRUE(runEventsUntil([&] { return receiver.hasPendingDatagrams(); }));
  QByteArray packet(200, '\0');
  packet.resize(static_cast<qsizetype>(receiver.readDatagram(packet.data(), packet.size())));
  EXPECT_EQ(packet, wakePacket({1, 2, 3, 4, 5, 6}));
  EXPECT_FALSE(receiver.hasPendingDatagrams());
}

TEST(WakeOnLan, SaysWhenThePacketDidNotGoOut) {
  EXPECT_FALSE(sendWakeOnLANToMAC("1:2:3:4:5:6", {"127.0.0.1", 0}));
}
