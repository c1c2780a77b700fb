// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/list/DuplicateNames.h"

namespace ambrel {

// One person: cell 0 name, 1 note, 2 captured count as decimal digits, 3 segment marker "1" or empty. Cells
// are UTF-8 and may be missing; readers give the default of a missing cell.
using Row = std::vector<std::string>;

// The names of all rows, counted.
DuplicateNames duplicateNamesAmong(const std::vector<Row>& rows);

enum class Cell : std::size_t { Name = 0, Note = 1, Captured = 2, Marker = 3 };

// What became different in the grid since an earlier revision.
struct GridChanges {
  bool everything = false;  // rows came, went or moved, or many changed; `rows` says nothing then
  std::vector<std::int64_t> rows = {};
  bool operator==(const GridChanges&) const = default;
};

// The list of people in list order. Rows are addressed by model row; a row out of range reads as the default
// and is never written. Main thread only.
class NameGrid {
 public:
  std::int64_t rowCount() const { return static_cast<std::int64_t>(_rows.size()); }
  bool isEmpty() const { return _rows.empty(); }
  bool contains(std::int64_t modelRow) const { return modelRow >= 0 && modelRow < rowCount(); }
  const std::vector<Row>& rows() const { return _rows; }

  // The stored bytes, empty when the row or the cell is missing.
  const std::string& bytes(std::int64_t modelRow, Cell cell) const;
  // The same as text; bytes that are not valid UTF-8 read as empty text.
  QString text(std::int64_t modelRow, Cell cell) const;
  // Fills the row with empty cells up to the one written.
  void setBytes(std::int64_t modelRow, Cell cell, std::string value);

  std::int64_t capturedForModelRow(std::int64_t modelRow) const;
  void setCaptured(std::int64_t count, std::int64_t modelRow);  // a negative count is stored as 0
  bool markerForModelRow(std::int64_t modelRow) const;
  void setMarker(bool marked, std::int64_t modelRow);

  // Lower-cased names (Unicode) that two or more rows share; empty names do not count. After a change of one
  // row it is at hand; after one of the whole list, or at first, all names are counted.
  const QSet<QString>& duplicateNameSet() const;
  // Another number after every change of a name, and of which rows there are or their order; never 0.
  std::uint64_t namesRevision() const { return _namesRevision; }
  // Grows with every change; never 0. Who mirrors the grid elsewhere remembers the one that it has seen.
  std::uint64_t revision() const { return _revision; }
  // `everything` for a revision too long ago, 0 among them.
  GridChanges changesSince(std::uint64_t revision) const;

  void append(Row row);
  void insert(std::int64_t position, Row row);  // position clamped to 0..rowCount
  void remove(std::int64_t modelRow);
  void replaceAll(std::vector<Row> rows);
  // With what duplicateNamesAmong has found in the rows.
  void replaceAll(std::vector<Row> rows, DuplicateNames duplicates);
  void clear() { replaceAll({}); }

 private:
  void nameComes(const Row& row);
  void nameGoes(const Row& row);
  void rowsChanged();

  std::vector<Row> _rows;
  std::vector<std::int64_t> _changedRows;  // by the last changes, one each
  std::uint64_t _revision = 1;
  std::uint64_t _namesRevision = 1;
  mutable std::optional<DuplicateNames> _duplicates;  // none until they are asked for
};

}  // namespace ambrel
