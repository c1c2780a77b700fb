// SPDX-License-Identifier: Apache-2.0
#include "core/list/NameGrid.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "core/base/Text.h"

namespace ambrel {

namespace {

const std::string kMissing;

// More changed rows than this are not worth telling apart.
constexpr std::size_t kMostChangesTold = 16;

const std::string& nameIn(const Row& row) {
  return row.empty() ? kMissing : row.front();
}

}  // namespace

DuplicateNames duplicateNamesAmong(const std::vector<Row>& rows) {
  DuplicateNames names(rows.size());
  for (const Row& row : rows) {
    const bool counted = names.add(nameIn(row));
    Q_ASSERT(counted);
  }
  return names;
}

const std::string& NameGrid::bytes(std::int64_t modelRow, Cell cell) const {
  if (!contains(modelRow)) return kMissing;
  const Row& row = _rows[static_cast<std::size_t>(modelRow)];
  const auto index = static_cast<std::size_t>(cell);
  return index < row.size() ? row[index] : kMissing;
}

QString NameGrid::text(std::int64_t modelRow, Cell cell) const {
  return std_to_ns(bytes(modelRow, cell));
}

void NameGrid::setBytes(std::int64_t modelRow, Cell cell, std::string value) {
  if (!contains(modelRow)) return;
  Row& row = _rows[static_cast<std::size_t>(modelRow)];
  const auto index = static_cast<std::size_t>(cell);
  if (cell == Cell::Name) nameGoes(row);
  if (row.size() <= index) row.resize(index + 1);
  row[index] = std::move(value);
  if (cell == Cell::Name) nameComes(row);
  if (_changedRows.size() == kMostChangesTold) _changedRows.erase(_changedRows.begin());
  _changedRows.push_back(modelRow);
  ++_revision;
  if (cell == Cell::Name) ++_namesRevision;
}

std::int64_t NameGrid::capturedForModelRow(std::int64_t modelRow) const {
  return std::strtoll(bytes(modelRow, Cell::Captured).c_str(), nullptr, 10);
}

void NameGrid::setCaptured(std::int64_t count, std::int64_t modelRow) {
  setBytes(modelRow, Cell::Captured, std::to_string(std::max<std::int64_t>(count, 0)));
}

bool NameGrid::markerForModelRow(std::int64_t modelRow) const {
  return bytes(modelRow, Cell::Marker) == "1";
}

void NameGrid::setMarker(bool marked, std::int64_t modelRow) {
  setBytes(modelRow, Cell::Marker, marked ? "1" : "");
}

const QSet<QString>& NameGrid::duplicateNameSet() const {
  if (!_duplicates) _duplicates = duplicateNamesAmong(_rows);
  return _duplicates->lowerCased();
}

void NameGrid::nameComes(const Row& row) {
  if (_duplicates && !_duplicates->add(nameIn(row))) _duplicates.reset();
}

void NameGrid::nameGoes(const Row& row) {
  if (_duplicates) _duplicates->remove(nameIn(row));
}

void NameGrid::append(Row row) {
  nameComes(row);
  _rows.push_back(std::move(row));
  rowsChanged();
}

void NameGrid::insert(std::int64_t position, Row row) {
  nameComes(row);
  _rows.insert(_rows.begin() + std::clamp<std::int64_t>(position, 0, rowCount()), std::move(row));
  rowsChanged();
}

void NameGrid::remove(std::int64_t modelRow) {
  if (!contains(modelRow)) return;
  const auto row = _rows.begin() + modelRow;
  nameGoes(*row);
  _rows.erase(row);
  rowsChanged();
}

void NameGrid::replaceAll(std::vector<Row> rows) {
  _rows = std::move(rows);
  _duplicates.reset();
  rowsChanged();
}

void NameGrid::replaceAll(std::vector<Row> rows, DuplicateNames duplicates) {
  replaceAll(std::move(rows));
  _duplicates = std::move(duplicates);
}

void NameGrid::rowsChanged() {
  _changedRows.clear();
  ++_revision;
  ++_namesRevision;
}

GridChanges NameGrid::changesSince(std::uint64_t revision) const {
  const std::uint64_t changes = _revision - revision;
  if (changes > _changedRows.size()) return {true};
  return {false, {_changedRows.end() - static_cast<std::ptrdiff_t>(changes), _changedRows.end()}};
}

}  // namespace ambrel
