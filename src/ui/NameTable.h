// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <optional>

#include "core/list/ListEditing.h"
#include "ui/AmbrelTableView.h"
#include "ui/NameTableModel.h"
#include "ui/RowMenu.h"
#include "ui/TableDrags.h"

namespace ambrel::ui {

// The list as a table: clicks, the menu of a row, rows dragged to another place or onto another row, and list
// files dropped from elsewhere.
class NameTable : public AmbrelTableView {
  Q_OBJECT
 public:
  NameTable(NameList& list, ListEditing& editing, QWidget* parent);

  NameTableModel* names() const { return _model; }
  // The open menu of a row, or none.
  QMenu* rowMenu() const { return _rowMenu; }

 Q_SIGNALS:
  // A click with the left button, after what it selected; -1 for a display row or column that it did not hit.
  void tableClicked(qint64 displayRow, int column);
  void rowCommandChosen(RowCommand command, qint64 targetModelRow);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void startDrag(Qt::DropActions supportedActions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void buildColumns();
  TableDrop dropUnder(const QDropEvent& event) const;
  void showDrop(const std::optional<TableDrop>& drop);
  void paintOutline(QPainter& painter, qint64 displayRow) const;
  void paintDrop(QPainter& painter, const TableDrop& drop) const;
  QPixmap pictureOfRow(qint64 modelRow) const;

  NameList& _list;
  ListEditing& _editing;
  NameTableModel* _model;
  QPointer<QMenu> _rowMenu;
  qint64 _rowOfMenu = -1;               // display row outlined while its menu is open
  std::optional<TableDrop> _shownDrop;  // where the drag over the table would be dropped
};

}  // namespace ambrel::ui
