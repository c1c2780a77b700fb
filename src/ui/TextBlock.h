// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>
#include <QTextLayout>

namespace ambrel::ui {

// Plain text of several lines in a column of a fixed width, as high as it needs to be. Breaks a word that is
// wider than the column, as the path of a file may be.
class TextBlock : public QLabel {
  Q_OBJECT
 public:
  TextBlock(const QString& text, const QFont& font, const QColor& color, int width);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QTextLayout _layout;
  QColor _color;
};

}  // namespace ambrel::ui
