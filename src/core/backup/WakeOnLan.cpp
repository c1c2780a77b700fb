// SPDX-License-Identifier: Apache-2.0
#include "core/backup/WakeOnLan.h"

#include <QHostAddress>
#include <QUdpSocket>
#include <cstdlib>

namespace ambrel {
namespace {

constexpr int kRepetitions = 16;

}  // namespace

std::optional<HardwareAddress> parseHardwareAddress(const QString& text) {
  const QByteArray bytes = text.toUtf8();
  const char* rest = bytes.constData();
  HardwareAddress address = {};
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (i > 0 && *rest++ != ':') return std::nullopt;
    char* end = nullptr;
    const unsigned long field = std::strtoul(rest, &end, 16);
    if (end == rest) return std::nullopt;
    address[i] = static_cast<std::uint8_t>(field & 0xFF);
    rest = end;
  }
  return address;
}

QByteArray wakePacket(const HardwareAddress& address) {
  const QByteArray bytes(reinterpret_cast<const char*>(address.data()), address.size());
  return QByteArray(address.size(), '\xFF') + bytes.repeated(kRepetitions);
}

bool sendWakeOnLANToMAC(const QString& text, const WakeDestination& destination) {
  const std::optional<HardwareAddress> address = parseHardwareAddress(text);
  if (!address) return false;
  const QByteArray packet = wakePacket(*address);
  QUdpSocket socket;  // allows broadcasts by itself
  return socket.writeDatagram(packet, QHostAddress(destination.address), destination.port) == packet.size();
}

}  // namespace ambrel
