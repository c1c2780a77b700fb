// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <cstdint>
#include <vector>

#include "core/list/NameGrid.h"
#include "core/list/RowBytes.h"

namespace ambrel {

// What a search looks through: name and note of every row, lower-cased, one after the other in one piece of
// memory. Lower-casing costs many times what searching does, so only rows that changed are lower-cased anew.
class SearchText {
 public:
  // Takes over what changed in the grid; always the same grid.
  void update(const NameGrid& grid);
  // Sets `rows` to those whose lower-cased text holds the needle, in list order. The needle is lower-cased
  // and not empty.
  void findRows(const QString& needle, std::vector<qint64>& rows) const;

 private:
  RowBytes _text;
  std::uint64_t _seenRevision = 0;
};

}  // namespace ambrel
