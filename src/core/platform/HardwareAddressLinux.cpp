// SPDX-License-Identifier: Apache-2.0
#include <QHostInfo>

#include "core/platform/ChildProgram.h"
#include "core/platform/HardwareAddress.h"

namespace ambrel {
namespace {

constexpr std::chrono::seconds kPatience{5};

}  // namespace

std::optional<QString> hardwareAddressOf(const QString& host) {
  // Only fills the table of neighbours; its answer does not matter.
  (void)runProgram({QStringLiteral("ping"), {"-n", "-c", "1", "-w", "2", "--", host}}, kPatience);
  QStringList addresses;
  for (const QHostAddress& address : QHostInfo::fromName(host).addresses())
    addresses.append(address.toString());
  const auto neighbours = runProgram({QStringLiteral("ip"), {"neigh", "show"}}, kPatience);
  return neighbours ? hardwareAddressInNeighbours(neighbours->output, addresses) : std::nullopt;
}

}  // namespace ambrel
