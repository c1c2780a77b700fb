// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/list/ListStore.h"
#include "core/list/NameGrid.h"

namespace ambrel {

enum class CaptureFilter { All = 0, WithPhotos = 1, Remaining = 2 };
enum class SortMode { ListOrder = 0, Ascending = 1, Descending = 2 };

// The list at work: the grid, the rows shown and their order, the table's selection and the current person.
// The table view shows filteredRows(), mirrors tableSelection() and reports what the operator selects.
class NameList : public QObject {
  Q_OBJECT
 public:
  NameList(ListStore& store, Preferences& preferences, StatusLine& statusLine);

  const NameGrid& grid() const { return _grid; }
  const std::vector<qint64>& filteredRows() const { return _filteredRows; }
  qint64 modelRowForDisplayRow(qint64 displayRow) const;
  qint64 displayRowForModelRow(qint64 modelRow) const;

  // The current person, as a model row; -1 for none.
  qint64 selectedRow() const { return _selectedRow; }
  void setSelectedRow(qint64 modelRow);
  // Display rows selected in the table, in ascending order.
  const std::vector<qint64>& tableSelection() const { return _tableSelection; }
  // The model row of the table's selected row, else the current person, else -1.
  qint64 captureRow() const;

  QString searchText() const { return _searchText; }
  QString csvPath() const { return _csvPath; }
  void setCsvPath(const QString& path) { _csvPath = path; }

  // The view reports the operator's selection.
  void tableViewSelectionDidChange(const std::vector<qint64>& displayRows);
  // The view reports a key step of the selection, +1 or -1.
  void moveGridSelectionBy(qint64 step);
  void setSearchText(const QString& text);
  void clearSearch();

  void applySearchFilter();
  void selectModelRowIfVisible(qint64 modelRow, bool scroll);
  void selectSavedOrFirstCSVRow();

  bool saveGridToDisk();
  // False when the store is missing or holds no row.
  bool loadGridFromDisk();
  // Replaces the list by the first column of a CSV file; the number of rows now in the list.
  qint64 importFirstColumnFromCSV(const QString& path);
  // The name that the next download is filed under, as it stands in the list; none when no named row is
  // selected. The row that it stands in becomes the current person.
  std::optional<std::string> selectedQueueItemName();
  // One more photo for a row; a row outside the list changes nothing.
  void markCaptureForRow(qint64 modelRow);

  // "Name", an arrow for the sort mode, and the number of names.
  QString nameColumnTitle() const;

 Q_SIGNALS:
  void reloaded();                          // filteredRows() was rebuilt; the view shows all rows anew
  void tableSelectionChanged(bool scroll);  // tableSelection() was set from here
  void searchTextChanged();                 // searchText() was set from here
  void persistentPathsStale();  // the current row or the list's file changed: save the preferences
  void autoWatchStale();        // the list became empty or ceased to be
  void pathLabelsStale();
  void controlsStale();

 private:
  ListStore& _store;
  Preferences& _preferences;
  StatusLine& _statusLine;
  NameGrid _grid;
  std::vector<qint64> _filteredRows;
  std::vector<qint64> _tableSelection;
  qint64 _selectedRow = -1;
  QString _searchText;
  QString _csvPath;
  CaptureFilter _captureFilter = CaptureFilter::All;
  SortMode _sortMode = SortMode::ListOrder;
};

}  // namespace ambrel
