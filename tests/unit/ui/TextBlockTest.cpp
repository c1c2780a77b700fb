// SPDX-License-Identifier: Apache-2.0
#include <QAccessible>
#include <QImage>
#include <gtest/gtest.h>

#include "ui/Appearance.h"
#include "ui/TextBlock.h"

namespace ambrel::ui {
namespace {

constexpr int kWidth = 120;

int lineHeight() {
  return TextBlock(QStringLiteral("Anna"), systemFont(13), Qt::black, kWidth).height();
}

bool hasInk(const QImage& image, const QRect& where) {
  for (int y = where.top(); y <= where.bottom(); ++y)
    for (int x = where.left(); x <= where.right(); ++x)
      if (image.pixelColor(x, y).alpha() > 128) return true;
  return false;
}

QImage pictureOf(QWidget& widget) {
  QImage picture(widget.size(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  widget.render(&picture, {}, {}, QWidget::DrawChildren);
  return picture;
}

TEST(TextBlock, IsAsHighAsItsLines) {
  TextBlock three(QStringLiteral("Anna\n\nBen"), systemFont(13), Qt::black, kWidth);
  EXPECT_NEAR(three.height(), 3 * lineHeight(), 2);
  EXPECT_EQ(three.width(), kWidth);
  const QImage picture = pictureOf(three);
  EXPECT_FALSE(hasInk(picture, QRect(0, lineHeight() + 1, kWidth, lineHeight() - 2)));
  EXPECT_TRUE(hasInk(picture, QRect(0, 2 * lineHeight(), kWidth, lineHeight() - 2)));
}

TEST(TextBlock, BreaksBetweenWordsAndOnlyThenWithinOne) {
  const QString path = QStringLiteral("/media/kim/") + QString(60, QLatin1Char('m'));
  TextBlock broken(path, systemFont(13), Qt::black, kWidth);
  const int needed = QFontMetrics(systemFont(13)).horizontalAdvance(path);
  EXPECT_GE(broken.height(), (needed / kWidth) * lineHeight());
  TextBlock words(QStringLiteral("mmmmmm mmmmmm"), systemFont(13), Qt::black, kWidth);
  EXPECT_NEAR(words.height(), 2 * lineHeight(), 2);
}

TEST(TextBlock, IsReadAsItsText) {
  TextBlock text(QStringLiteral("Anna & <b>Ben</b>"), systemFont(13), Qt::black, kWidth);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&text)->text(QAccessible::Name),
            QStringLiteral("Anna & <b>Ben</b>"));
}

}  // namespace
}  // namespace ambrel::ui
