// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTableDelegate.h"

#include <QLineEdit>
#include <QPainter>

#include "ui/Appearance.h"
#include "ui/NameTableModel.h"

namespace ambrel::ui {
namespace {

constexpr int kCellMargin = 8;

}  // namespace

void NameTableDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
  const auto* model = qobject_cast<const NameTableModel*>(index.model());
  Q_ASSERT(model);
  const QString text = index.data().toString();
  if (text.isEmpty()) return;
  const NameCellLook look = model->look(index, option.state.testFlag(QStyle::State_Selected));
  const QFont font = systemFont(look.pixelSize, look.weight);
  const bool centred = look.alignment.testFlag(Qt::AlignHCenter);
  const int margin = centred ? 2 : kCellMargin;
  const QRect place = option.rect.adjusted(margin, 0, -margin, 0);
  painter->save();
  painter->setFont(font);
  painter->setPen(look.color);
  const QString line = QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
  const QString shown = QFontMetrics(font).elidedText(line, Qt::ElideRight, place.width());
  painter->drawText(place, static_cast<int>(look.alignment) | Qt::TextSingleLine, shown);
  painter->restore();
}

QWidget* NameTableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                         const QModelIndex&) const {
  auto* editor = new QLineEdit(parent);
  editor->setObjectName(QStringLiteral("cellEditor"));
  editor->setFont(systemFont(13));
  return editor;
}

void NameTableDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* field = qobject_cast<QLineEdit*>(editor);
  if (field && !field->isModified()) field->setText(index.data(Qt::EditRole).toString());
}

void NameTableDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                             const QModelIndex&) const {
  editor->setGeometry(option.rect.adjusted(3, 4, -3, -4));
}

}  // namespace ambrel::ui
