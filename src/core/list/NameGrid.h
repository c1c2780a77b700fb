// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace ambrel {

// One person: cell 0 name, 1 note, 2 captured count as decimal digits, 3 segment marker "1" or empty. Cells
// are UTF-8 and may be missing; readers give the default of a missing cell.
using Row = std::vector<std::string>;

enum class Cell : std::size_t { Name = 0, Note = 1, Captured = 2, Marker = 3 };

// What became different in the grid since it was last asked.
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

  // Lower-cased names (Unicode) that two or more rows share; empty names do not count.
  std::set<QString> duplicateNameSet() const;
  // Another number after every change that can alter what duplicateNameSet() gives.
  std::uint64_t namesRevision() const { return _namesRevision; }

  void append(Row row);
  void insert(std::int64_t position, Row row);  // position clamped to 0..rowCount
  void remove(std::int64_t modelRow);
  void replaceAll(std::vector<Row> rows);
  void clear() { replaceAll({}); }

  // For the one who mirrors the grid elsewhere: what to bring up to date.
  GridChanges takeChanges();

 private:
  std::vector<Row> _rows;
  GridChanges _changes = {true};
  std::uint64_t _namesRevision = 0;
};

}  // namespace ambrel
