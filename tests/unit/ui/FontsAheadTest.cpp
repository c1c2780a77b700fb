// SPDX-License-Identifier: Apache-2.0
#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "ui/Appearance.h"
#include "ui/FontsAhead.h"

namespace ambrel::ui {
namespace {

QImage painted(double scale) {
  QImage image(QSize(100, 30) * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setFont(systemFont(13, QFont::Bold));
  painter.drawText(QPointF(4, 20), QStringLiteral("Anna 12 🚩"));
  return image;
}

TEST(FontsAhead, ChangesNothingAboutWhatIsPaintedLater) {
  for (const double scale : {1.0, 1.25, 2.0}) {
    const QImage before = painted(scale);
    shapeLettersAhead(scale);
    EXPECT_EQ(painted(scale), before);
  }
}

TEST(FontsAhead, FindsTheFontsThatTheToolkitFinds) {
  const QString family = QFontInfo(systemFont(13)).family();
  findFontsAhead();
  EXPECT_EQ(QFontInfo(systemFont(14)).family(), family);
}

}  // namespace
}  // namespace ambrel::ui
