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
  for (int symbol = static_cast<int>(Symbol::CameraReconnect); symbol <= static_cast<int>(Symbol::Lines);
       ++symbol)
    EXPECT_GT(paintedPixels(static_cast<Symbol>(symbol), QColor(51, 102, 153)), 100) << symbol;
}

TEST(Symbols, AreIconsThatPaleWhereTheyCannotBeUsed) {
  const QIcon icon = symbolIcon(Symbol::Lines, QColor(51, 102, 153));
  const auto strongest = [&icon](QIcon::Mode mode) {
    const QImage picture = icon.pixmap(QSize(48, 48), 1, mode).toImage();
    int alpha = 0;
    for (int y = 0; y < picture.height(); ++y)
      alpha = std::max(alpha, picture.pixelColor(24, y).alpha());
    return alpha;
  };
  EXPECT_EQ(strongest(QIcon::Normal), 255);
  EXPECT_NEAR(strongest(QIcon::Disabled), 89, 3);
}

TEST(Symbols, NoSymbolDrawsNothing) {
  EXPECT_EQ(paintedPixels(Symbol::None, Qt::red), 0);
}

}  // namespace
}  // namespace ambrel::ui
