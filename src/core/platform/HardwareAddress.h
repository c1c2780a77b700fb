// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace ambrel {

// The hardware address of a machine on the local network as the system writes it: hexadecimal bytes of one or
// two digits, colons between them. Asks the machine for a sign of life first; takes seconds.
std::optional<QString> hardwareAddressOf(const QString& host);

// The first hardware address that the output of the system's tool gives: after "at" as arp writes it, or, on
// a line that begins with one of the network addresses, after "lladdr" as ip does.
std::optional<QString> hardwareAddressInArp(const QByteArray& output);
std::optional<QString> hardwareAddressInNeighbours(const QByteArray& output, const QStringList& addresses);

}  // namespace ambrel
