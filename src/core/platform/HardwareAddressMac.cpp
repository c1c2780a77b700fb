// SPDX-License-Identifier: Apache-2.0
#include "core/platform/ChildProgram.h"
#include "core/platform/HardwareAddress.h"

namespace ambrel {
namespace {

constexpr std::chrono::seconds kPatience{5};

}  // namespace

std::optional<QString> hardwareAddressOf(const QString& host) {
  // Only fills the address cache; its answer does not matter.
  (void)runProgram({QStringLiteral("/sbin/ping"), {"-c", "1", "-t", "2", host}}, kPatience);
  const auto cache = runProgram({QStringLiteral("/usr/sbin/arp"), {"-n", host}}, kPatience);
  return cache ? hardwareAddressInArp(cache->output) : std::nullopt;
}

}  // namespace ambrel
