// SPDX-License-Identifier: Apache-2.0
#include "ui/TextLabel.h"

#include "ui/Appearance.h"
#include "ui/TextLine.h"

namespace ambrel::ui {

TextLabel::TextLabel(QWidget* parent) : TextLabel({}, systemFont(13), Palette().primaryTextColor(), parent) {}

TextLabel::TextLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent)
    : QLabel(text, parent), _color(color) {
  setTextFormat(Qt::PlainText);
  setFont(font);
}

void TextLabel::setTextColor(const QColor& color) {
  _color = color;
  update();
}

void TextLabel::setElideMode(Qt::TextElideMode mode) {
  _elideMode = mode;
  update();
}

void TextLabel::styleStatusValue(const QColor& color) {
  setFont(systemFont(13, QFont::Bold));
  setAlignment(Qt::AlignCenter);
  setTextColor(color);
}

void TextLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setFont(font());
  painter.setPen(_color);
  // A message may hold line breaks; the line shows it as one. Blanks stay as they are meant.
  QString line = text();
  for (QChar& letter : line)
    if (letter.isSpace()) letter = QLatin1Char(' ');
  paintTextLine(painter, rect(), alignment(), line, _elideMode);
}

}  // namespace ambrel::ui
