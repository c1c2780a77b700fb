// SPDX-License-Identifier: Apache-2.0
#include "core/list/DuplicateNames.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "core/base/Text.h"

namespace ambrel {

namespace {

constexpr std::size_t kFewestSlots = 64;

// Beyond three quarters a flat table becomes slow.
std::size_t roomIn(const std::vector<std::uint32_t>& table) {
  return table.size() / 4 * 3;
}

}  // namespace

DuplicateNames::DuplicateNames(std::size_t names)
    : _numbers(std::bit_ceil(std::max(2 * names, kFewestSlots))) {
  // So that none of the names that come later has all the others moved.
  _counts.reserve(roomIn(_numbers));
  _ends.reserve(roomIn(_numbers) + 1);
}

bool DuplicateNames::add(std::string_view name) {
  const std::string_view lowerCased = lowerCasedBehindTheOthers(name);
  if (lowerCased.empty()) return true;
  std::uint32_t& number = numberOf(lowerCased);
  if (number != 0) {
    if (++_counts[number - 1] == 2) _shared.insert(std_to_ns(lowerCased));
    return true;
  }
  if (_counts.size() >= roomIn(_numbers)) return false;
  _counts.push_back(1);
  _ends.push_back(_ends.back() + static_cast<qsizetype>(lowerCased.size()));
  number = static_cast<std::uint32_t>(_counts.size());
  return true;
}

void DuplicateNames::remove(std::string_view name) {
  const std::string_view lowerCased = lowerCasedBehindTheOthers(name);
  if (lowerCased.empty()) return;
  const std::uint32_t number = numberOf(lowerCased);
  Q_ASSERT(number != 0 && _counts[number - 1] > 0);
  if (--_counts[number - 1] == 1) _shared.remove(std_to_ns(lowerCased));
}

// Until the next call.
std::string_view DuplicateNames::lowerCasedBehindTheOthers(std::string_view name) {
  _names.truncate(_ends.back());
  append_lower_cased(_names, name);
  return {_names.constData() + _ends.back(), static_cast<std::size_t>(_names.size() - _ends.back())};
}

// Where the number of the name stands, or is to stand.
std::uint32_t& DuplicateNames::numberOf(std::string_view lowerCased) {
  const auto isAnother = [&](std::uint32_t number) {
    const qsizetype begin = _ends[number - 1];
    return std::string_view(_names.constData() + begin, static_cast<std::size_t>(_ends[number] - begin)) !=
           lowerCased;
  };
  const std::size_t mask = _numbers.size() - 1;
  std::size_t slot = std::hash<std::string_view>()(lowerCased) & mask;
  while (_numbers[slot] != 0 && isAnother(_numbers[slot]))
    slot = (slot + 1) & mask;
  return _numbers[slot];
}

}  // namespace ambrel
