// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <vector>

namespace ambrel {

// Bytes made of one piece per row, in the order of the rows, of which a single piece can be replaced.
class RowBytes {
 public:
  // `starts` says where each piece begins and, at its end, where the last one ends.
  void assign(QByteArray bytes, std::vector<qsizetype> starts);
  void replace(std::size_t row, QByteArrayView piece);

  const QByteArray& bytes() const { return _bytes; }
  std::size_t rowCount() const { return _starts.size() - 1; }
  qsizetype startOf(std::size_t row) const { return _starts[row]; }
  qsizetype endOf(std::size_t row) const { return _starts[row + 1]; }

 private:
  QByteArray _bytes;
  std::vector<qsizetype> _starts = {0};
};

}  // namespace ambrel
