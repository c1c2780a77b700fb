// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <gtest/gtest.h>

#include "ui/Symbols.h"

namespace ambrel::ui {
namespace {

int paintedPixels(Symbol symbol, const QColor& tint) {
  QImage picture(48, 48, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  paintSymbol(painter, symbol, QRectF(0, 0, 48, 48), tint);
  painter.end();
  int count = 0;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x)
      count += picture.pixelColor(x, y) == tint ? 1 : 0;
  return count;
}

TEST(Symbols, EverySymbolIsDrawnInItsTint) {
  for (const Symbol symbol : {Symbol::CameraReconnect, Symbol::Gear, Symbol::Pencil, Symbol::Folder})
    EXPECT_GT(paintedPixels(symbol, QColor(51, 102, 153)), 100) << static_cast<int>(symbol);
}

TEST(Symbols, NoSymbolDrawsNothing) {
  EXPECT_EQ(paintedPixels(Symbol::None, Qt::red), 0);
}

}  // namespace
}  // namespace ambrel::ui
