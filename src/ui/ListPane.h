// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include "core/app/Screen.h"
#include "core/list/ListEditing.h"
#include "core/list/NameList.h"
#include "ui/AmbrelButton.h"
#include "ui/AmbrelDropZone.h"
#include "ui/NameTable.h"
#include "ui/NoteField.h"

namespace ambrel::ui {

// The left pane: the search field, the list and what is done with it.
class ListPane : public Surface {
  Q_OBJECT
 public:
  ListPane(NameList& list, ListEditing& editing, QWidget* parent);

  void updateControls(const ControlStates& states);
  // The title of the name column with the number of names.
  void updateNameColumnCount() { _table->names()->updateNameColumnCount(); }
  NameTable* table() const { return _table; }
  QLineEdit* searchField() const { return _searchField; }
  NoteField* noteField() const { return _noteField; }

 Q_SIGNALS:
  void importRequested();
  void exportRequested();
  // A click in the table, after what it changed.
  void tableClicked();
  void renameFolderRequested(qint64 modelRow);
  void openFolderRequested(qint64 modelRow);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void buildSearchRow();
  void buildFilterRow();
  void buildTable();
  void connectTable();
  void buildNoteRow();
  void updateFilterButton();
  void updateEmptyState();
  void showSelection(bool scroll);
  void clickInTable(qint64 displayRow, int column);
  void startRowCommand(RowCommand command, qint64 modelRow);
  void refreshNoteIndicator();

  NameList& _list;
  ListEditing& _editing;
  QLineEdit* _searchField;
  AmbrelButton* _addSearchButton;
  AmbrelButton* _clearSearchButton;
  AmbrelButton* _filterButton;
  AmbrelButton* _exportButton;
  NameTable* _table;
  AmbrelDropZone* _emptyDropButton;
  SymbolView* _noteIconView;
  NoteField* _noteField;
  AmbrelButton* _noteIndicator;
};

}  // namespace ambrel::ui
