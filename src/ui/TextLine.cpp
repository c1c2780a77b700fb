// SPDX-License-Identifier: Apache-2.0
#include "ui/TextLine.h"

#include <QTextLayout>
#include <QTextOption>
#include <cmath>

namespace ambrel::ui {

namespace {

QTextLine shape(QTextLayout& layout, const QTextOption& option, int width) {
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  line.setLineWidth(width);
  layout.endLayout();
  return line;
}

// A letter of another script may be taller than the font is: the line still stands where its neighbours do.
void draw(QPainter& painter, const QTextLayout& layout, const QTextLine& line, const QRect& place) {
  const QFontMetricsF metrics(painter.font());
  const double height = std::ceil(metrics.ascent() + metrics.descent());
  const double baseline = place.top() + (place.height() - height) / 2 + metrics.ascent();
  layout.draw(&painter, QPointF(place.left(), baseline - line.ascent()));
}

}  // namespace

void paintTextLine(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& line,
                   Qt::TextElideMode elide) {
  if (line.isEmpty()) return;
  QTextOption option(alignment & Qt::AlignHorizontal_Mask);
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(painter.layoutDirection());
  QTextLayout layout(line, painter.font());
  const QTextLine whole = shape(layout, option, place.width());
  if (whole.naturalTextWidth() <= place.width()) return draw(painter, layout, whole, place);
  QTextLayout shortened(painter.fontMetrics().elidedText(line, elide, place.width()), painter.font());
  draw(painter, shortened, shape(shortened, option, place.width()), place);
}

}  // namespace ambrel::ui
