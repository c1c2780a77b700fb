// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>
#include <QWidget>

namespace ambrel::ui {

// The line drawings on buttons, and those of the file choosers.
enum class Symbol {
  None,
  CameraReconnect,
  Gear,
  Pencil,
  Folder,
  FolderNew,
  File,
  Computer,
  Drive,
  ArrowLeft,
  ArrowRight,
  ArrowUp,
  Icons,
  Lines,
  More
};

// Draws the symbol in one colour, as shapes, so that it is sharp at any scale.
void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& place, const QColor& tint);

// The symbol where the toolkit wants an icon; paler where it cannot be used.
QIcon symbolIcon(Symbol symbol, const QColor& tint);

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
