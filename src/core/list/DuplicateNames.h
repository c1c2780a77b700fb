// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ambrel {

// Counts names without regard to the case of letters (Unicode), and keeps at hand which of them two or more
// share. A name that comes or goes costs the same however many there are.
class DuplicateNames {
 public:
  // With room for that many different names, and for half as many that come later.
  explicit DuplicateNames(std::size_t names);

  // One more with this name, as stored: UTF-8. An empty name does not count, nor does one that is not valid.
  // False, with nothing counted, where there is no room for another name: names that nobody has any more take
  // up room too, so that all have to be counted anew.
  [[nodiscard]] bool add(std::string_view name);
  // One fewer with a name that was added.
  void remove(std::string_view name);
  // The lower-cased names that two or more have.
  const QSet<QString>& lowerCased() const { return _shared; }

 private:
  std::string_view lowerCasedBehindTheOthers(std::string_view name);
  std::uint32_t& numberOf(std::string_view lowerCased);

  // Every name once, one behind the other, and where each ends: a node for each of many thousand names would
  // cost more than all else here.
  QByteArray _names;
  std::vector<qsizetype> _ends{0};
  std::vector<std::uint32_t> _counts;   // by the number of the name
  std::vector<std::uint32_t> _numbers;  // plus one, by hash, in a flat table; 0 is free
  QSet<QString> _shared;
};

}  // namespace ambrel
