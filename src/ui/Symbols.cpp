// SPDX-License-Identifier: Apache-2.0
#include "ui/Symbols.h"

#include <QFile>
#include <QIconEngine>
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
    case Symbol::FolderNew:
      return QStringLiteral(":/ambrel/symbols/folder_new.svg");
    case Symbol::File:
      return QStringLiteral(":/ambrel/symbols/file.svg");
    case Symbol::Computer:
      return QStringLiteral(":/ambrel/symbols/computer.svg");
    case Symbol::Drive:
      return QStringLiteral(":/ambrel/symbols/drive.svg");
    case Symbol::ArrowLeft:
      return QStringLiteral(":/ambrel/symbols/arrow_left.svg");
    case Symbol::ArrowRight:
      return QStringLiteral(":/ambrel/symbols/arrow_right.svg");
    case Symbol::ArrowUp:
      return QStringLiteral(":/ambrel/symbols/arrow_up.svg");
    case Symbol::Icons:
      return QStringLiteral(":/ambrel/symbols/icons.svg");
    case Symbol::Lines:
      return QStringLiteral(":/ambrel/symbols/lines.svg");
    case Symbol::More:
      return QStringLiteral(":/ambrel/symbols/more.svg");
  }
  return {};
}

class SymbolEngine : public QIconEngine {
 public:
  SymbolEngine(Symbol symbol, const QColor& tint) : _symbol(symbol), _tint(tint) {}
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    QColor tint = _tint;
    if (mode == QIcon::Disabled) tint.setAlphaF(tint.alphaF() * 0.35F);
    if (mode == QIcon::Selected) tint = Qt::white;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintSymbol(*painter, _symbol, rect, tint);
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return picture;
  }
  QIconEngine* clone() const override { return new SymbolEngine(*this); }

 private:
  Symbol _symbol;
  QColor _tint;
};

}  // namespace

QIcon symbolIcon(Symbol symbol, const QColor& tint) {
  return QIcon(new SymbolEngine(symbol, tint));
}

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
