// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/list/DisplayOrder.h"
#include "core/list/ListStore.h"
#include "core/list/NameGrid.h"

namespace ambrel {

// The list at work: the grid, the rows shown and their order, the table's selection and the current person.
// The table view shows filteredRows(), mirrors tableSelection() and reports what the operator selects.
class NameList : public QObject {
  Q_OBJECT
 public:
  NameList(ListStore& store, Preferences& preferences, StatusLine& statusLine);

  const NameGrid& grid() const { return _grid; }
  // For those who change rows: they end with saveGridToDisk() and, where order or membership may have
  // changed, with applySearchFilter().
  NameGrid& editableGrid() { return _grid; }
  const std::vector<qint64>& filteredRows() const { return _order.filteredRows(); }
  qint64 modelRowForDisplayRow(qint64 displayRow) const { return _order.modelRowForDisplayRow(displayRow); }
  qint64 displayRowForModelRow(qint64 modelRow) const { return _order.displayRowForModelRow(modelRow); }

  // The current person, as a model row; -1 for none.
  qint64 selectedRow() const { return _selectedRow; }
  void setSelectedRow(qint64 modelRow);  // a row outside the list is none
  // Display rows selected in the table, in ascending order.
  const std::vector<qint64>& tableSelection() const { return _tableSelection; }
  // The model row of the table's selected row, of several the one selected last; -1 for none.
  qint64 tableSelectedRow() const;
  // The same, else the current person, else -1.
  qint64 captureRow() const;

  QString searchText() const { return _rule.searchText; }
  bool isSearchActive() const { return _rule.isSearchActive(); }
  CaptureFilter captureFilter() const { return _rule.captureFilter; }
  SortMode sortMode() const { return _rule.sortMode; }
  // Whether display rows are model rows, so that a row can be dragged to another place.
  bool canReorderRows() const { return _rule.showsListAsItIs(); }
  QString csvPath() const { return _csvPath; }
  void setCsvPath(const QString& path) { _csvPath = path; }

  // The view reports the operator's selection: all rows in ascending order, and the one selected last, which
  // is the last of them when not given.
  void tableViewSelectionDidChange(const std::vector<qint64>& displayRows, qint64 selectedLast = -1);
  // The view reports a key step of the selection, +1 or -1.
  void moveGridSelectionBy(qint64 step);
  // The operator types in the search field, or empties it.
  void setSearchText(const QString& text);
  void clearSearch();
  // The filter button and a click on the name column's header: each goes on to the next of three.
  void cycleCaptureFilter();
  void cycleSortMode();

  void applySearchFilter();
  void selectModelRowIfVisible(qint64 modelRow, bool scroll);
  void selectSavedOrFirstCSVRow();

  // Steps that the edits of whole rows share.
  void emptySearchField();  // without filtering anew
  // Makes a row the current one, filters, and scrolls to it.
  void selectAndShow(qint64 modelRow);
  void saveGridAndPaths();
  // The end of an edit that inserted or removed rows; a row beyond the last is the last.
  void afterRowMutationSelect(qint64 modelRow);
  // No list, no store, no search, all names in sight; the sort mode stays.
  void reset();

  // Stores a cell as it was typed and saves the list. A name of blanks only is refused. After a new name the
  // order follows once control returns to the event loop, when the table's editor has closed.
  void setObjectValue(const QString& value, Cell cell, qint64 modelRow);
  void toggleMarker(qint64 modelRow);
  // With two or more rows selected, their number and their photos in the status line; else false.
  bool showSelectionTotalsIfMultiple();

  // Where it fails the list stays in memory, and is saved with the next change or by the next call below.
  bool saveGridToDisk();
  // Nothing where the last save went well.
  void saveGridIfUnsaved();
  // For the end: waits for a save that is still under way, and saves once more what could not be saved. In
  // all for no longer than `limit`: a disk that hangs is left alone.
  void finishSaving(std::chrono::milliseconds limit);
  // Begins to read the list, so that loadGridFromDisk does not wait for the disk.
  void loadGridAhead() { _store.loadAhead(); }
  // False when the store is missing or holds no row.
  bool loadGridFromDisk();
  // Replaces the list by the first column of a CSV file, empty when that cannot be read; the number of rows
  // now in the list.
  qint64 importFirstColumnFromCSV(const QString& path);
  // The same with the file remembered and the list saved.
  qint64 replaceListFromCSV(const QString& path);
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
  void captureFilterChanged();
  void pathLabelsStale();
  void controlsStale();
  void nameColumnTitleChanged(const QString& title);  // by a header click: without the number of names

 private:
  void dropSelection();

  ListStore& _store;
  Preferences& _preferences;
  StatusLine& _statusLine;
  NameGrid _grid;
  DisplayOrder _order;
  DisplayRule _rule;
  std::vector<qint64> _tableSelection;
  qint64 _tableSelectedLast = -1;  // display row
  qint64 _selectedRow = -1;
  QString _csvPath;
};

}  // namespace ambrel
