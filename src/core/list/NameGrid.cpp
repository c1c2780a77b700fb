// SPDX-License-Identifier: Apache-2.0
#include "core/list/NameGrid.h"

#include <QSet>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "core/base/Text.h"

namespace ambrel {

namespace {

const std::string kMissing;

// More changed rows than this are not worth telling apart.
constexpr std::size_t kMostChangesTold = 16;

}  // namespace

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
  if (_changes.rows.size() == kMostChangesTold) _changes = {true};
  if (!_changes.everything) _changes.rows.push_back(modelRow);
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

std::set<QString> NameGrid::duplicateNameSet() const {
  QSet<QString> seen;
  std::set<QString> duplicates;
  for (std::int64_t row = 0; row < rowCount(); ++row) {
    const QString name = text(row, Cell::Name).toLower();
    if (name.isEmpty()) continue;
    if (seen.contains(name)) {
      duplicates.insert(name);
    } else {
      seen.insert(name);
    }
  }
  return duplicates;
}

void NameGrid::append(Row row) {
  _rows.push_back(std::move(row));
  _changes = {true};
  ++_namesRevision;
}

void NameGrid::insert(std::int64_t position, Row row) {
  _changes = {true};
  _rows.insert(_rows.begin() + std::clamp<std::int64_t>(position, 0, rowCount()), std::move(row));
  ++_namesRevision;
}

void NameGrid::remove(std::int64_t modelRow) {
  if (!contains(modelRow)) return;
  _rows.erase(_rows.begin() + modelRow);
  _changes = {true};
  ++_namesRevision;
}

void NameGrid::replaceAll(std::vector<Row> rows) {
  _rows = std::move(rows);
  _changes = {true};
  ++_namesRevision;
}

GridChanges NameGrid::takeChanges() {
  return std::exchange(_changes, {});
}

}  // namespace ambrel
