// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include "core/app/Screen.h"
#include "core/list/NameList.h"
#include "ui/AmbrelButton.h"
#include "ui/AmbrelDropZone.h"
#include "ui/AmbrelTableView.h"
#include "ui/NameTableModel.h"

namespace ambrel::ui {

// The left pane: the search field, the list and what is done with it.
class ListPane : public Surface {
  Q_OBJECT
 public:
  ListPane(NameList& list, QWidget* parent);

  void updateControls(const ControlStates& states);
  AmbrelTableView* table() const { return _table; }
  QLineEdit* searchField() const { return _searchField; }

 Q_SIGNALS:
  void importRequested();
  void exportRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void buildSearchRow();
  void buildTable();
  void updateEmptyState();
  void showSelection(bool scroll);

  NameList& _list;
  QLineEdit* _searchField;
  AmbrelButton* _clearSearchButton;
  AmbrelButton* _exportButton;
  NameTableModel* _model;
  AmbrelTableView* _table;
  AmbrelDropZone* _emptyDropButton;
};

}  // namespace ambrel::ui
