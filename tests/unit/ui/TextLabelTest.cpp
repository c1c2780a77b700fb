// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/Appearance.h"
#include "ui/TextLabel.h"

namespace ambrel::ui {
namespace {

QImage pictureOf(const QString& text, int width) {
  TextLabel label(text, systemFont(13), Qt::black, nullptr);
  label.resize(width, 20);
  QImage picture(label.size(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::white);
  label.render(&picture);
  return picture;
}

TEST(TextLabel, CutsAtItsEndWhereTheTextDoesNotFit) {
  TextLabel label;
  const QString text = QStringLiteral("Downloading a photo with a very long name");
  const QString cut = label.fontMetrics().elidedText(text, Qt::ElideRight, 80);
  EXPECT_EQ(pictureOf(text, 80), pictureOf(cut, 80));
}

TEST(TextLabel, ShowsTextWithLineBreaksAsOneLine) {
  EXPECT_EQ(pictureOf(QStringLiteral("Saved:\nAnna"), 200), pictureOf(QStringLiteral("Saved: Anna"), 200));
}

TEST(TextLabel, KeepsBlanksThatSetPartsApart) {
  EXPECT_NE(pictureOf(QStringLiteral("Anna.jpg  (1/2)"), 200),
            pictureOf(QStringLiteral("Anna.jpg (1/2)"), 200));
}

TEST(TextLabel, TakesTagsLiterally) {
  EXPECT_NE(pictureOf(QStringLiteral("<b>Anna</b>"), 200), pictureOf(QStringLiteral("Anna"), 200));
}

TEST(TextLabel, StatusValuesAreBoldThirteenAndCentred) {
  TextLabel label;
  label.styleStatusValue(Qt::red);
  EXPECT_EQ(label.font().pixelSize(), 13);
  EXPECT_TRUE(label.font().bold());
  EXPECT_EQ(label.alignment(), Qt::AlignCenter);
  EXPECT_EQ(label.textColor(), QColor(Qt::red));
}

}  // namespace
}  // namespace ambrel::ui
