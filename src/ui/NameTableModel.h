// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractTableModel>
#include <QSet>
#include <vector>

#include "core/list/NameList.h"
#include "ui/NameCells.h"

namespace ambrel::ui {

// The rows of the list that are shown, in their order, for the table view.
class NameTableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit NameTableModel(NameList& list, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // How a cell looks, given whether its row is selected in the view.
  NameCellLook look(const QModelIndex& index, bool selected) const;

  // Takes over the list's new rows. When they are the same rows as before only their contents are shown anew,
  // which keeps the scroll position and an open cell editor.
  void reload();
  void refreshModelRow(qint64 modelRow);
  // The name column's title from the list, with its number of names.
  void updateNameColumnCount();

 private:
  void setNameColumnTitle(const QString& title);
  bool isDuplicate(qint64 modelRow) const;

  NameList& _list;
  std::vector<qint64> _shownRows;
  QString _nameColumnTitle;
};

}  // namespace ambrel::ui
