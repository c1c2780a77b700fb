// SPDX-License-Identifier: Apache-2.0
#include "core/update/Version.h"

#include <QStringList>
#include <QStringView>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace ambrel {
namespace {

// The number that a text begins with, at most the largest of 32 bits; 0 where it does not begin with one.
std::int32_t leadingInteger(QStringView text) {
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  std::int64_t value = 0;
  for (const QChar c : text) {
    if (c < QLatin1Char('0') || c > QLatin1Char('9')) break;
    value = std::min(kLargest, value * 10 + (c.unicode() - u'0'));
  }
  return static_cast<std::int32_t>(value);
}

std::vector<std::int32_t> componentsOf(const QString& version) {
  std::vector<std::int32_t> components;
  for (const QString& part : version.section(QLatin1Char('-'), 0, 0).split(QLatin1Char('.')))
    components.push_back(leadingInteger(part));
  return components;
}

}  // namespace

QString version_of_tag(const QString& tag) {
  return tag.startsWith(QLatin1Char('v')) ? tag.mid(1) : tag;
}

int compare_versions(const QString& a, const QString& b) {
  const QString left = version_of_tag(a);
  const QString right = version_of_tag(b);
  std::vector<std::int32_t> leftParts = componentsOf(left);
  std::vector<std::int32_t> rightParts = componentsOf(right);
  const std::size_t length = std::max(leftParts.size(), rightParts.size());
  leftParts.resize(length);
  rightParts.resize(length);
  if (leftParts != rightParts) return leftParts > rightParts ? 1 : -1;
  const bool leftHasSuffix = left.contains(QLatin1Char('-'));
  const bool rightHasSuffix = right.contains(QLatin1Char('-'));
  if (leftHasSuffix == rightHasSuffix) return 0;
  return leftHasSuffix ? -1 : 1;
}

}  // namespace ambrel
