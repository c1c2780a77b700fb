// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTableModel.h"

#include "ui/Appearance.h"

namespace ambrel::ui {

NameTableModel::NameTableModel(NameList& list, QObject* parent) : QAbstractTableModel(parent), _list(list) {
  connect(&_list, &NameList::reloaded, this, &NameTableModel::reload);
  reload();
}

int NameTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(_shownRows.size());
}

int NameTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kNameColumns;
}

QVariant NameTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const qint64 row = _list.modelRowForDisplayRow(index.row());
  const auto column = static_cast<NameColumn>(index.column());
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return nameCellText(_list.grid(), row, column);
    case Qt::ToolTipRole:
      return nameCellToolTip(_list.grid(), row, column);
    case Qt::TextAlignmentRole:
      return static_cast<int>(look(index, false).alignment);
    case Qt::ForegroundRole:
      return look(index, false).color;
    case Qt::FontRole: {
      const NameCellLook cell = look(index, false);
      return systemFont(cell.pixelSize, cell.weight);
    }
    default:
      return {};
  }
}

QVariant NameTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kNameColumns) return {};
  const auto column = static_cast<NameColumn>(section);
  switch (role) {
    case Qt::DisplayRole:
      return column == NameColumn::Name ? _list.nameColumnTitle() : nameColumnHeader(column);
    case Qt::ToolTipRole:
      return nameColumnToolTip(column);
    case Qt::TextAlignmentRole:
      return static_cast<int>(column == NameColumn::Marker ? Qt::AlignCenter
                                                           : Qt::AlignLeft | Qt::AlignVCenter);
    default:
      return {};
  }
}

NameCellLook NameTableModel::look(const QModelIndex& index, bool selected) const {
  const qint64 row = _list.modelRowForDisplayRow(index.row());
  const auto column = static_cast<NameColumn>(index.column());
  return nameCellLook(column, {selected, isDuplicate(row), _list.grid().capturedForModelRow(row)}, Palette());
}

bool NameTableModel::isDuplicate(qint64 modelRow) const {
  if (_duplicateNames.empty()) return false;
  return _duplicateNames.contains(_list.grid().text(modelRow, Cell::Name).toLower());
}

void NameTableModel::reload() {
  _duplicateNames = _list.grid().duplicateNameSet();
  refreshHeader();
  if (_shownRows == _list.filteredRows()) {
    if (!_shownRows.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kNameColumns - 1));
    return;
  }
  beginResetModel();
  _shownRows = _list.filteredRows();
  endResetModel();
}

void NameTableModel::refreshHeader() {
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, kNameColumns - 1);
}

}  // namespace ambrel::ui
