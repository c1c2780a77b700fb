// SPDX-License-Identifier: Apache-2.0
#include "ui/TextBlock.h"

#include <QPainter>
#include <QTextOption>
#include <cmath>

namespace ambrel::ui {

TextBlock::TextBlock(const QString& text, const QFont& font, const QColor& color, int width)
    : QLabel(text),
      // One layout holds them all where the breaks are breaks of lines, not of paragraphs.
      _layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font),
      _color(color) {
  setTextFormat(Qt::PlainText);
  setFont(font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  _layout.setTextOption(option);
  _layout.beginLayout();
  double height = 0;
  for (QTextLine line = _layout.createLine(); line.isValid(); line = _layout.createLine()) {
    line.setLineWidth(width);
    line.setPosition(QPointF(0, height));
    height += line.height();
  }
  _layout.endLayout();
  setFixedSize(width, static_cast<int>(std::ceil(height)));
}

void TextBlock::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(_color);
  _layout.draw(&painter, QPointF());
}

}  // namespace ambrel::ui
