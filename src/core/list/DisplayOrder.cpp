// SPDX-License-Identifier: Apache-2.0
#include "core/list/DisplayOrder.h"

#include <algorithm>
#include <numeric>

#include "core/base/Text.h"

namespace ambrel {

namespace {

QString searchNeedle(const QString& searchText) {
  return NSTrim(searchText).toLower();
}

// Without a branch: in a sorted list the processor could not foresee which rows stay.
template <typename Stays>
void keepRows(std::vector<qint64>& rows, Stays stays) {
  std::size_t kept = 0;
  for (const qint64 row : rows) {
    rows[kept] = row;
    kept += stays(row) ? 1 : 0;
  }
  rows.resize(kept);
}

}  // namespace

CaptureFilter nextCaptureFilter(CaptureFilter filter) {
  return static_cast<CaptureFilter>((static_cast<int>(filter) + 1) % 3);
}

QString captureFilterTitle(CaptureFilter filter) {
  switch (filter) {
    case CaptureFilter::All:
      return QStringLiteral("Show: All");
    case CaptureFilter::WithPhotos:
      return QStringLiteral("Show: With Photos");
    case CaptureFilter::Remaining:
      return QStringLiteral("Show: Remaining");
  }
  return {};
}

QString captureFilterStatus(CaptureFilter filter) {
  switch (filter) {
    case CaptureFilter::All:
      return QStringLiteral("Showing all names.");
    case CaptureFilter::WithPhotos:
      return QStringLiteral("Showing only names that have photos.");
    case CaptureFilter::Remaining:
      return QStringLiteral("Showing only names still to shoot.");
  }
  return {};
}

SortMode nextSortMode(SortMode mode) {
  return static_cast<SortMode>((static_cast<int>(mode) + 1) % 3);
}

QString sortModeStatus(SortMode mode) {
  switch (mode) {
    case SortMode::ListOrder:
      return QStringLiteral("Original list order.");
    case SortMode::Ascending:
      return QStringLiteral("Sorted A → Z.");
    case SortMode::Descending:
      return QStringLiteral("Sorted Z → A.");
  }
  return {};
}

QString nameColumnBaseTitle(SortMode mode) {
  switch (mode) {
    case SortMode::ListOrder:
      return QStringLiteral("Name");
    case SortMode::Ascending:
      return QStringLiteral("Name  ↑");
    case SortMode::Descending:
      return QStringLiteral("Name  ↓");
  }
  return {};
}

bool DisplayRule::isSearchActive() const {
  return !NSTrim(searchText).isEmpty();
}

bool DisplayRule::showsListAsItIs() const {
  return !isSearchActive() && captureFilter == CaptureFilter::All && sortMode == SortMode::ListOrder;
}

qint64 DisplayOrder::modelRowForDisplayRow(qint64 displayRow) const {
  if (displayRow < 0 || displayRow >= static_cast<qint64>(_filteredRows.size())) return -1;
  return _filteredRows[static_cast<std::size_t>(displayRow)];
}

qint64 DisplayOrder::displayRowForModelRow(qint64 modelRow) const {
  const auto found = std::find(_filteredRows.begin(), _filteredRows.end(), modelRow);
  return modelRow < 0 || found == _filteredRows.end() ? -1 : found - _filteredRows.begin();
}

void DisplayOrder::rebuild(const NameGrid& grid, const DisplayRule& rule) {
  const QString needle = searchNeedle(rule.searchText);
  if (needle.isEmpty()) {
    _filteredRows.resize(grid.rows().size());
    std::iota(_filteredRows.begin(), _filteredRows.end(), 0);
  } else {
    _searchText.update(grid);
    _searchText.findRows(needle, _filteredRows);
  }
  if (rule.captureFilter != CaptureFilter::All) keepFilter(grid, rule.captureFilter);
  if (rule.sortMode == SortMode::ListOrder) return;
  _sortedNames.update(grid);
  putIntoOrder(rule.sortMode == SortMode::Ascending ? _sortedNames.ascending() : _sortedNames.descending());
}

void DisplayOrder::updatePhotoFlags(const NameGrid& grid) {
  const GridChanges changes = grid.changesSince(_photoFlagsRevision);
  _photoFlagsRevision = grid.revision();
  const auto read = [&](qint64 row) {
    _hasPhotos[static_cast<std::size_t>(row)] = grid.capturedForModelRow(row) >= 1 ? 1 : 0;
  };
  if (changes.everything) {
    _hasPhotos.resize(grid.rows().size());
    for (qint64 row = 0; row < grid.rowCount(); ++row)
      read(row);
  } else {
    std::for_each(changes.rows.begin(), changes.rows.end(), read);
  }
}

void DisplayOrder::keepFilter(const NameGrid& grid, CaptureFilter filter) {
  updatePhotoFlags(grid);
  const char hidden = filter == CaptureFilter::WithPhotos ? 0 : 1;
  keepRows(_filteredRows, [&](qint64 row) { return _hasPhotos[static_cast<std::size_t>(row)] != hidden; });
}

void DisplayOrder::putIntoOrder(const std::vector<qint64>& order) {
  const bool showsAll = _filteredRows.size() == order.size();
  std::vector<char> shown(showsAll ? 0 : order.size());
  if (!showsAll) {
    for (const qint64 row : _filteredRows)
      shown[static_cast<std::size_t>(row)] = 1;
  }
  _filteredRows = order;
  if (!showsAll)
    keepRows(_filteredRows, [&](qint64 row) { return shown[static_cast<std::size_t>(row)] != 0; });
}

}  // namespace ambrel
