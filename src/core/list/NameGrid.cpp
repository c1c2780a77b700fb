// SPDX-License-Identifier: Apache-2.0
#include "core/list/NameGrid.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <functional>
#include <string_view>
#include <utility>

#include "core/base/Text.h"

namespace ambrel {

namespace {

const std::string kMissing;

// More changed rows than this are not worth telling apart.
constexpr std::size_t kMostChangesTold = 16;

}  // namespace

QSet<QString> duplicateNamesAmong(const std::vector<Row>& rows) {
  QByteArray names;
  std::vector<qsizetype> ends{0};
  ends.reserve(rows.size() + 1);
  for (const Row& row : rows) {
    if (!row.empty()) append_lower_cased(names, row.front());
    ends.push_back(names.size());
  }
  const auto nameAt = [&](std::size_t row) {
    return std::string_view(names.constData() + ends[row],
                            static_cast<std::size_t>(ends[row + 1] - ends[row]));
  };
  // Row plus one by name, 0 where there is none, in a flat table: a node for each of many thousand names
  // would cost more than all else here.
  std::vector<std::uint32_t> firstWithName(std::bit_ceil(2 * rows.size() + 1));
  const std::size_t mask = firstWithName.size() - 1;
  QSet<QString> duplicates;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::string_view name = nameAt(row);
    if (name.empty()) continue;
    std::size_t slot = std::hash<std::string_view>()(name) & mask;
    while (firstWithName[slot] != 0 && nameAt(firstWithName[slot] - 1) != name)
      slot = (slot + 1) & mask;
    if (firstWithName[slot] != 0) {
      duplicates.insert(std_to_ns(name));
    } else {
      firstWithName[slot] = static_cast<std::uint32_t>(row + 1);
    }
  }
  return duplicates;
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
  if (row.size() <= index) row.resize(index + 1);
  row[index] = std::move(value);
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
  if (_duplicatesOfRevision != _namesRevision) {
    _duplicates = duplicateNamesAmong(_rows);
    _duplicatesOfRevision = _namesRevision;
  }
  return _duplicates;
}

void NameGrid::append(Row row) {
  _rows.push_back(std::move(row));
  rowsChanged();
}

void NameGrid::insert(std::int64_t position, Row row) {
  _rows.insert(_rows.begin() + std::clamp<std::int64_t>(position, 0, rowCount()), std::move(row));
  rowsChanged();
}

void NameGrid::remove(std::int64_t modelRow) {
  if (!contains(modelRow)) return;
  _rows.erase(_rows.begin() + modelRow);
  rowsChanged();
}

void NameGrid::replaceAll(std::vector<Row> rows) {
  _rows = std::move(rows);
  rowsChanged();
}

void NameGrid::replaceAll(std::vector<Row> rows, QSet<QString> duplicates) {
  replaceAll(std::move(rows));
  _duplicates = std::move(duplicates);
  _duplicatesOfRevision = _namesRevision;
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
