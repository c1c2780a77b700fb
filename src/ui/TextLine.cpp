// SPDX-License-Identifier: Apache-2.0
#include "ui/TextLine.h"

#include <QTextLayout>
#include <QTextOption>

namespace ambrel::ui {

void paintTextLine(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& line,
                   Qt::TextElideMode elide) {
  if (line.isEmpty()) return;
  QTextLayout layout(line, painter.font());
  QTextOption option(alignment & Qt::AlignHorizontal_Mask);
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(painter.layoutDirection());
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine shaped = layout.createLine();
  shaped.setLineWidth(place.width());
  layout.endLayout();
  if (shaped.naturalTextWidth() <= place.width()) {
    layout.draw(&painter, QPointF(place.left(), place.top() + (place.height() - shaped.height()) / 2));
  } else {
    const QString shown = painter.fontMetrics().elidedText(line, elide, place.width());
    painter.drawText(place, static_cast<int>(alignment) | Qt::TextSingleLine, shown);
  }
}

}  // namespace ambrel::ui
