// SPDX-License-Identifier: Apache-2.0
#include "core/platform/HardwareAddress.h"

#include <QRegularExpression>

namespace ambrel {
namespace {

std::optional<QString> firstCapture(const QString& pattern, const QString& text) {
  const QRegularExpressionMatch match = QRegularExpression(pattern).match(text);
  return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

}  // namespace

std::optional<QString> hardwareAddressInArp(const QByteArray& output) {
  return firstCapture(QStringLiteral("at ([0-9a-fA-F:]{11,17}) "), QString::fromUtf8(output));
}

std::optional<QString> hardwareAddressInNeighbours(const QByteArray& output, const QStringList& addresses) {
  for (const QString& line : QString::fromUtf8(output).split(QLatin1Char('\n'))) {
    if (!addresses.contains(line.section(QLatin1Char(' '), 0, 0))) continue;
    const auto found = firstCapture(QStringLiteral("lladdr ([0-9a-fA-F:]{11,17}) "), line + QLatin1Char(' '));
    if (found) return found;
  }
  return std::nullopt;
}

}  // namespace ambrel
