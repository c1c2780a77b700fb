// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>

namespace ambrel::ui {

// One line of text in one colour, cut with an ellipsis where it does not fit.
class TextLabel : public QLabel {
  Q_OBJECT
 public:
  explicit TextLabel(QWidget* parent = nullptr);
  TextLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent);

  void setTextColor(const QColor& color);
  QColor textColor() const { return _color; }
  void setElideMode(Qt::TextElideMode mode);
  // The look of a status value: bold 13, centred, cut at its end.
  void styleStatusValue(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor _color;
  Qt::TextElideMode _elideMode = Qt::ElideRight;
};

}  // namespace ambrel::ui
