// SPDX-License-Identifier: Apache-2.0
#include "core/list/RowBytes.h"

#include <algorithm>
#include <utility>

namespace ambrel {

void RowBytes::assign(QByteArray bytes, std::vector<qsizetype> starts) {
  Q_ASSERT(!starts.empty() && starts.back() == bytes.size());
  _bytes = std::move(bytes);
  _starts = std::move(starts);
}

void RowBytes::replace(std::size_t row, QByteArrayView piece) {
  const qsizetype before = endOf(row) - startOf(row);
  _bytes.replace(startOf(row), before, piece);
  const qsizetype growth = piece.size() - before;
  if (growth == 0) return;
  std::for_each(_starts.begin() + static_cast<std::ptrdiff_t>(row) + 1, _starts.end(),
                [growth](qsizetype& start) { start += growth; });
}

}  // namespace ambrel
