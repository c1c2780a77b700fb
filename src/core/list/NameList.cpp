// SPDX-License-Identifier: Apache-2.0
#include "core/list/NameList.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <limits>

#include "core/base/Text.h"
#include "core/list/GridFile.h"

namespace ambrel {

namespace {

// Counts come from a file that anybody may have edited.
qint64 saturatingSum(qint64 a, qint64 b) {
  constexpr qint64 kMost = std::numeric_limits<qint64>::max();
  return a > 0 && b > kMost - a ? kMost : a + b;
}

}  // namespace

NameList::NameList(ListStore& store, Preferences& preferences, StatusLine& statusLine)
    : _store(store), _preferences(preferences), _statusLine(statusLine) {}

void NameList::setSelectedRow(qint64 modelRow) {
  _selectedRow = _grid.contains(modelRow) ? modelRow : -1;
}

qint64 NameList::tableSelectedRow() const {
  const qint64 modelRow = modelRowForDisplayRow(_tableSelectedLast);
  return _grid.contains(modelRow) ? modelRow : -1;
}

qint64 NameList::captureRow() const {
  const qint64 selected = tableSelectedRow();
  if (selected >= 0) return selected;
  return _grid.contains(_selectedRow) ? _selectedRow : -1;
}

void NameList::tableViewSelectionDidChange(const std::vector<qint64>& displayRows, qint64 selectedLast) {
  _tableSelection = displayRows;
  const bool given = std::find(displayRows.begin(), displayRows.end(), selectedLast) != displayRows.end();
  _tableSelectedLast = given ? selectedLast : displayRows.empty() ? -1 : displayRows.back();
  const qint64 selected = tableSelectedRow();
  if (selected >= 0) _selectedRow = selected;
  Q_EMIT pathLabelsStale();
  showSelectionTotalsIfMultiple();
}

void NameList::moveGridSelectionBy(qint64 step) {
  const auto shown = static_cast<qint64>(filteredRows().size());
  if (shown == 0) return;
  const qint64 start = step > 0 ? 0 : shown - 1;
  const qint64 target =
      _tableSelection.empty() ? start : std::clamp<qint64>(_tableSelectedLast + step, 0, shown - 1);
  tableViewSelectionDidChange({target});
  Q_EMIT tableSelectionChanged(true);
}

void NameList::setSearchText(const QString& text) {
  _rule.searchText = text;
  applySearchFilter();
  Q_EMIT persistentPathsStale();
}

void NameList::clearSearch() {
  emptySearchField();
  selectAndShow(_selectedRow);
}

void NameList::emptySearchField() {
  _rule.searchText.clear();
  Q_EMIT searchTextChanged();
}

void NameList::cycleCaptureFilter() {
  _rule.captureFilter = nextCaptureFilter(_rule.captureFilter);
  Q_EMIT captureFilterChanged();
  _statusLine.setStatus(captureFilterStatus(_rule.captureFilter), StatusKind::Neutral);
  selectAndShow(_selectedRow);
}

void NameList::cycleSortMode() {
  _rule.sortMode = nextSortMode(_rule.sortMode);
  Q_EMIT nameColumnTitleChanged(nameColumnBaseTitle(_rule.sortMode));
  _statusLine.setStatus(sortModeStatus(_rule.sortMode), StatusKind::Neutral);
  selectAndShow(_selectedRow);
}

void NameList::applySearchFilter() {
  _order.rebuild(_grid, _rule);
  Q_EMIT reloaded();
  selectModelRowIfVisible(_selectedRow, false);
}

void NameList::selectModelRowIfVisible(qint64 modelRow, bool scroll) {
  _tableSelectedLast = displayRowForModelRow(modelRow);
  _tableSelection.clear();
  if (_tableSelectedLast >= 0) _tableSelection.push_back(_tableSelectedLast);
  Q_EMIT tableSelectionChanged(scroll);
}

void NameList::selectSavedOrFirstCSVRow() {
  if (_grid.isEmpty()) {
    _selectedRow = -1;
    return;
  }
  const qint64 saved = _preferences.lastSelectedRowIndex().value_or(0);
  selectAndShow(_grid.contains(saved) ? saved : 0);
  Q_EMIT persistentPathsStale();
}

void NameList::selectAndShow(qint64 modelRow) {
  setSelectedRow(modelRow);
  applySearchFilter();
  selectModelRowIfVisible(_selectedRow, true);
}

void NameList::saveGridAndPaths() {
  saveGridToDisk();
  Q_EMIT persistentPathsStale();
}

void NameList::afterRowMutationSelect(qint64 modelRow) {
  Q_EMIT autoWatchStale();
  emptySearchField();
  setSelectedRow(std::min<qint64>(modelRow, _grid.rowCount() - 1));
  saveGridAndPaths();
  selectAndShow(_selectedRow);
  Q_EMIT pathLabelsStale();
  Q_EMIT controlsStale();
}

void NameList::dropSelection() {
  _selectedRow = -1;
  _tableSelection.clear();
  _tableSelectedLast = -1;
}

void NameList::reset() {
  _csvPath.clear();
  _grid.clear();
  _order.clear();
  dropSelection();
  _store.remove();
  _rule.captureFilter = CaptureFilter::All;
  Q_EMIT captureFilterChanged();
  Q_EMIT reloaded();
  Q_EMIT tableSelectionChanged(false);
  emptySearchField();
}

void NameList::setObjectValue(const QString& value, Cell cell, qint64 modelRow) {
  const bool isName = cell == Cell::Name;
  if (!_grid.contains(modelRow) || (!isName && cell != Cell::Note)) return;
  if (isName && NSTrim(value).isEmpty()) return;
  _grid.setBytes(modelRow, Cell::Note, _grid.bytes(modelRow, Cell::Note));
  _grid.setBytes(modelRow, cell, ns_to_std(value));
  saveGridToDisk();
  if (!isName) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        applySearchFilter();
        Q_EMIT pathLabelsStale();
      },
      Qt::QueuedConnection);
}

void NameList::toggleMarker(qint64 modelRow) {
  if (!_grid.contains(modelRow)) return;
  _grid.setMarker(!_grid.markerForModelRow(modelRow), modelRow);
  saveGridToDisk();
  Q_EMIT reloaded();
}

bool NameList::showSelectionTotalsIfMultiple() {
  if (_tableSelection.size() < 2) return false;
  qint64 people = 0;
  qint64 photos = 0;
  for (const qint64 displayRow : _tableSelection) {
    const qint64 row = modelRowForDisplayRow(displayRow);
    if (!_grid.contains(row) || _grid.rows()[static_cast<std::size_t>(row)].empty()) continue;
    ++people;
    photos = saturatingSum(photos, _grid.capturedForModelRow(row));
  }
  _statusLine.setStatus(QStringLiteral("Selected: %1 row%2 — %3 photo%4 total.")
                            .arg(people)
                            .arg(pluralEnding(people))
                            .arg(photos)
                            .arg(pluralEnding(photos)),
                        StatusKind::Neutral);
  return true;
}

bool NameList::saveGridToDisk() {
  return _store.save(_grid);
}

void NameList::saveGridIfUnsaved() {
  if (_store.isUnsaved()) saveGridToDisk();
}

void NameList::finishSaving(std::chrono::milliseconds limit) {
  const QDeadlineTimer deadline(limit);
  const auto isWritten = [&] {
    return _store.finishWritingWithin(std::chrono::milliseconds(deadline.remainingTime()));
  };
  saveGridIfUnsaved();
  if (!isWritten() || !_store.isUnsaved()) return;
  saveGridToDisk();
  isWritten();
}

bool NameList::loadGridFromDisk() {
  if (std::optional<GridReadAhead::List> list = _store.takeReadAhead()) {
    _grid.replaceAll(std::move(list->rows), std::move(list->duplicates));
    return !_grid.isEmpty();
  }
  std::optional<std::vector<Row>> rows = _store.load();
  if (!rows) return false;
  _grid.replaceAll(std::move(*rows));
  return !_grid.isEmpty();
}

qint64 NameList::importFirstColumnFromCSV(const QString& path) {
  _grid.clear();
  _order.clear();
  emptySearchField();
  dropSelection();
  _grid.replaceAll(readFirstColumn(path).value_or(std::vector<Row>()));
  Q_EMIT reloaded();
  selectSavedOrFirstCSVRow();
  Q_EMIT pathLabelsStale();
  _statusLine.setStatus(QStringLiteral("Imported %1 names (first column only).").arg(_grid.rowCount()),
                        StatusKind::Good);
  Q_EMIT autoWatchStale();
  return _grid.rowCount();
}

qint64 NameList::replaceListFromCSV(const QString& path) {
  _csvPath = path;
  const qint64 count = importFirstColumnFromCSV(path);
  saveGridAndPaths();
  return count;
}

std::optional<std::string> NameList::selectedQueueItemName() {
  const qint64 selected = tableSelectedRow();
  if (selected >= 0) _selectedRow = selected;
  const std::string& name = _grid.bytes(captureRow(), Cell::Name);
  return name.empty() ? std::nullopt : std::optional(name);
}

void NameList::markCaptureForRow(qint64 modelRow) {
  if (!_grid.contains(modelRow)) return;
  _grid.setCaptured(saturatingSum(_grid.capturedForModelRow(modelRow), 1), modelRow);
  saveGridToDisk();
  applySearchFilter();
  Q_EMIT pathLabelsStale();
}

QString NameList::nameColumnTitle() const {
  QString base = nameColumnBaseTitle(_rule.sortMode);
  if (_grid.isEmpty()) return base;
  return QStringLiteral("%1      %2 name%3")
      .arg(base)
      .arg(_grid.rowCount())
      .arg(pluralEnding(_grid.rowCount()));
}

}  // namespace ambrel
