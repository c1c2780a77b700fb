// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTableModel.h"

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {

NameTableModel::NameTableModel(NameList& list, QObject* parent) : QAbstractTableModel(parent), _list(list) {
  connect(&_list, &NameList::reloaded, this, &NameTableModel::reload);
  connect(&_list, &NameList::nameColumnTitleChanged, this, &NameTableModel::setNameColumnTitle);
  updateNameColumnCount();
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

bool NameTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !flags(index).testFlag(Qt::ItemIsEditable)) return false;
  _list.setObjectValue(value.toString(), Cell::Name, _list.modelRowForDisplayRow(index.row()));
  return true;
}

Qt::ItemFlags NameTableModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const bool isName = index.column() == static_cast<int>(NameColumn::Name);
  const Qt::ItemFlags flags =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  return isName ? flags | Qt::ItemIsEditable : flags;
}

QVariant NameTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kNameColumns) return {};
  const auto column = static_cast<NameColumn>(section);
  switch (role) {
    case Qt::DisplayRole:
      return column == NameColumn::Name ? _nameColumnTitle : nameColumnHeader(column);
    case Qt::ToolTipRole:
      return nameColumnToolTip(column);
    case Qt::SizeHintRole:
      // The columns have widths of their own; measuring the flag would take longer than painting rows.
      return QSize(0, layout::kTableHeaderHeight);
    case Qt::TextAlignmentRole:
      return static_cast<int>(column == NameColumn::Name ? Qt::AlignLeft | Qt::AlignVCenter
                                                         : Qt::AlignCenter);
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
  const QSet<QString>& duplicates = _list.grid().duplicateNameSet();
  return !duplicates.isEmpty() && duplicates.contains(_list.grid().text(modelRow, Cell::Name).toLower());
}

void NameTableModel::reload() {
  if (_shownRows == _list.filteredRows()) {
    if (!_shownRows.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kNameColumns - 1));
    return;
  }
  beginResetModel();
  _shownRows = _list.filteredRows();
  endResetModel();
}

void NameTableModel::refreshModelRow(qint64 modelRow) {
  const int row = static_cast<int>(_list.displayRowForModelRow(modelRow));
  if (row >= 0 && row < rowCount()) Q_EMIT dataChanged(index(row, 0), index(row, kNameColumns - 1));
}

void NameTableModel::updateNameColumnCount() {
  setNameColumnTitle(_list.nameColumnTitle());
}

void NameTableModel::setNameColumnTitle(const QString& title) {
  // The header lays itself out again whenever it is told of a change.
  if (title == _nameColumnTitle) return;
  _nameColumnTitle = title;
  const int column = static_cast<int>(NameColumn::Name);
  Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

}  // namespace ambrel::ui
