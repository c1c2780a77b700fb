// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTableDelegate.h"

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

}  // namespace ambrel::ui
