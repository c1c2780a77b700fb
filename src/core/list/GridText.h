// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <vector>

#include "core/list/NameGrid.h"

// Writing a list in the CSV dialect: a header and one line per row, LF between them, none after the last.
namespace ambrel {

enum class GridColumns {
  All,           // "File Name,Notes,Captured,Marker": the list store
  NamesAndNotes  // "File Name,Notes": what the operator exports
};

QByteArray writeGrid(const std::vector<Row>& rows, GridColumns columns);

// The bytes of the list store, kept up to date row by row: a photo changes one row among many thousands, and
// writing the others out again would cost more than the disk does.
class StoreText {
 public:
  // `changes` says what differs from the rows of the last call.
  void update(const std::vector<Row>& rows, const GridChanges& changes);
  const QByteArray& bytes() const { return _bytes; }

 private:
  void rewriteRow(const Row& row, std::size_t index);

  QByteArray _bytes;
  std::vector<qsizetype> _starts;  // where each row begins, and where the last ends
};

}  // namespace ambrel
