// SPDX-License-Identifier: Apache-2.0
#include "core/list/DisplayOrder.h"

#include <QCollator>
#include <algorithm>

#include "core/base/Text.h"

namespace ambrel {

namespace {

QString searchNeedle(const QString& searchText) {
  return NSTrim(searchText).toLower();
}

bool passesFilter(const NameGrid& grid, qint64 row, CaptureFilter filter) {
  switch (filter) {
    case CaptureFilter::All:
      return true;
    case CaptureFilter::WithPhotos:
      return grid.capturedForModelRow(row) >= 1;
    case CaptureFilter::Remaining:
      return grid.capturedForModelRow(row) < 1;
  }
  return true;
}

// Name and note as one text, so that a needle can match across the blank between them.
bool matches(const NameGrid& grid, qint64 row, const QString& needle) {
  const Row& cells = grid.rows()[static_cast<std::size_t>(row)];
  QString haystack = grid.text(row, Cell::Name);
  if (cells.size() >= 2) haystack += QLatin1Char(' ') + grid.text(row, Cell::Note);
  return haystack.toLower().contains(needle);
}

// The user's own alphabet. The C locale has none and compares bytes, upper case before lower.
QCollator nameCollator() {
  const QLocale locale = QLocale().collation();
  QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  return collator;
}

void sortByName(const NameGrid& grid, std::vector<qint64>& rows, SortMode mode) {
  struct Keyed {
    QCollatorSortKey key;
    qint64 row;
  };
  const QCollator collator = nameCollator();
  std::vector<Keyed> keyed;
  keyed.reserve(rows.size());
  for (const qint64 row : rows)
    keyed.push_back({collator.sortKey(grid.text(row, Cell::Name)), row});
  // Equal names keep their list order both ways: descending is not ascending reversed.
  std::stable_sort(keyed.begin(), keyed.end(), [mode](const Keyed& a, const Keyed& b) {
    return mode == SortMode::Ascending ? a.key.compare(b.key) < 0 : b.key.compare(a.key) < 0;
  });
  std::transform(keyed.begin(), keyed.end(), rows.begin(), [](const Keyed& k) { return k.row; });
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
  _filteredRows.clear();
  _filteredRows.reserve(static_cast<std::size_t>(grid.rowCount()));
  for (qint64 row = 0; row < grid.rowCount(); ++row) {
    if (!passesFilter(grid, row, rule.captureFilter)) continue;
    if (needle.isEmpty() || matches(grid, row, needle)) _filteredRows.push_back(row);
  }
  if (rule.sortMode != SortMode::ListOrder) sortByName(grid, _filteredRows, rule.sortMode);
}

}  // namespace ambrel
