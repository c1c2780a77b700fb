// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>
#include <cstdint>
#include <vector>

#include "core/list/NameGrid.h"

namespace ambrel {

// All rows in the order of their names, ignoring letter case, in the alphabet of the user's locale. Names
// that compare equal stay in list order in both directions. Sorting is done once for the names as they stand.
class SortedNames {
 public:
  // Takes over the names of the grid; always the same grid.
  void update(const NameGrid& grid);

  const std::vector<qint64>& ascending() const { return _ascending; }
  const std::vector<qint64>& descending() const { return _descending; }

 private:
  std::vector<qint64> _ascending;
  std::vector<qint64> _descending;
  std::uint64_t _seenNamesRevision = 0;
};

}  // namespace ambrel
