// SPDX-License-Identifier: Apache-2.0
#include <QIcon>
#include <QImage>
#include <QSet>
#include <gtest/gtest.h>

#include "ui/AmbrelStyle.h"
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

TEST(AmbrelStyle, DrawsTheSignOfMenusThatDoNotFit) {
  const AmbrelStyle style;
  const QIcon icon = style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, nullptr, nullptr);
  const QImage picture = icon.pixmap(16, 16).toImage();
  ASSERT_EQ(picture.size(), QSize(16, 16));
  EXPECT_GT(picture.pixelColor(7, 8).alpha(), 128);
  EXPECT_GT(picture.pixelColor(12, 8).alpha(), 128);
  EXPECT_EQ(picture.pixelColor(1, 8).alpha(), 0);
  EXPECT_EQ(picture.pixelColor(7, 1).alpha(), 0);
}

TEST(AmbrelStyle, DrawsTheSignsOfTheChoosersItself) {
  const AmbrelStyle style;
  for (const auto sign :
       {QStyle::SP_ArrowBack, QStyle::SP_ArrowForward, QStyle::SP_FileDialogToParent,
        QStyle::SP_FileDialogNewFolder, QStyle::SP_FileDialogListView, QStyle::SP_FileDialogDetailedView}) {
    const QImage picture = style.standardIcon(sign, nullptr, nullptr).pixmap(32, 32).toImage();
    QSet<QRgb> colors;
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.width(); ++x)
        if (picture.pixelColor(x, y).alpha() == 255) colors << picture.pixelColor(x, y).rgb();
    EXPECT_EQ(colors, QSet<QRgb>({Palette().grayColor().rgb()})) << sign;
  }
}

TEST(AmbrelStyle, UnderlinesNoLetters) {
  const AmbrelStyle style;
  EXPECT_EQ(style.styleHint(QStyle::SH_UnderlineShortcut, nullptr, nullptr, nullptr), 0);
}

TEST(AmbrelStyle, LeavesOtherSignsToTheToolkit) {
  const AmbrelStyle style;
  EXPECT_FALSE(style.standardIcon(QStyle::SP_DirIcon, nullptr, nullptr).isNull());
}

}  // namespace
}  // namespace ambrel::ui
