// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <cstdint>
#include <vector>

#include "core/list/NameGrid.h"
#include "core/list/RowBytes.h"

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
  // Takes over what changed in the grid; always the same grid.
  void update(const NameGrid& grid);
  const QByteArray& bytes() const { return _text.bytes(); }

 private:
  RowBytes _text;
  std::uint64_t _seenRevision = 0;
};

}  // namespace ambrel
