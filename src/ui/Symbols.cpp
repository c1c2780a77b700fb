// SPDX-License-Identifier: Apache-2.0
#include "ui/Symbols.h"

#include <QFile>
#include <QSvgRenderer>

namespace ambrel::ui {
namespace {

QString drawingOf(Symbol symbol) {
  switch (symbol) {
    case Symbol::None:
      return {};
    case Symbol::CameraReconnect:
      return QStringLiteral(":/ambrel/symbols/camera_reconnect.svg");
    case Symbol::Gear:
      return QStringLiteral(":/ambrel/symbols/gear.svg");
    case Symbol::Pencil:
      return QStringLiteral(":/ambrel/symbols/pencil.svg");
    case Symbol::Folder:
      return QStringLiteral(":/ambrel/symbols/folder.svg");
  }
  return {};
}

}  // namespace

void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& place, const QColor& tint) {
  QFile file(drawingOf(symbol));
  if (!file.open(QIODevice::ReadOnly)) return;
  // The drawings are black; the tint takes its place.
  const QByteArray drawing = file.readAll().replace("#000000", tint.name().toLatin1());
  QSvgRenderer renderer(drawing);
  painter.save();
  painter.setOpacity(painter.opacity() * static_cast<double>(tint.alphaF()));
  renderer.render(&painter, place);
  painter.restore();
}

SymbolView::SymbolView(Symbol symbol, int size, const QColor& tint, QWidget* parent)
    : QWidget(parent), _symbol(symbol), _size(size), _tint(tint) {}

void SymbolView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF place(0, 0, _size, _size);
  place.moveCenter(QRectF(rect()).center());
  paintSymbol(painter, _symbol, place, _tint);
}

}  // namespace ambrel::ui
