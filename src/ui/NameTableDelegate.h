// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStyledItemDelegate>
#include <map>
#include <utility>

#include "ui/NameCells.h"

namespace ambrel::ui {

// Paints the cells of the name table over the row backgrounds that the table has painted.
class NameTableDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  // Leaves alone what somebody has begun to type: photos arrive, and rows reload, meanwhile.
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 private:
  // Kept, because a font finds its glyphs anew whenever it is made.
  const QFont& fontOf(const NameCellLook& look) const;

  mutable std::map<std::pair<int, QFont::Weight>, QFont> _fonts;
};

}  // namespace ambrel::ui
