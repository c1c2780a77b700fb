// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QWidget>

namespace ambrel::ui {

// The line drawings on buttons.
enum class Symbol { None, CameraReconnect, Gear, Pencil, Folder };

// Draws the symbol in one colour, as shapes, so that it is sharp at any scale.
void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& place, const QColor& tint);

// A symbol that only stands there.
class SymbolView : public QWidget {
  Q_OBJECT
 public:
  SymbolView(Symbol symbol, int size, const QColor& tint, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Symbol _symbol;
  int _size;
  QColor _tint;
};

}  // namespace ambrel::ui
