// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>

namespace ambrel {

using HardwareAddress = std::array<std::uint8_t, 6>;

// Six hexadecimal fields separated by colons, each taken modulo 256; what follows them does not matter.
std::optional<HardwareAddress> parseHardwareAddress(const QString& text);

// The payload that wakes a sleeping machine: six bytes 0xFF, then its address sixteen times.
QByteArray wakePacket(const HardwareAddress& address);

// Where wake packets go: to every machine on the local network, on the port that nothing listens to.
struct WakeDestination {
  QString address = QStringLiteral("255.255.255.255");
  quint16 port = 9;
};

// Sends one wake packet over IPv4 without waiting; whether all of it went out.
bool sendWakeOnLANToMAC(const QString& text, const WakeDestination& destination = {});

}  // namespace ambrel
