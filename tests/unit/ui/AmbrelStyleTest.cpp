// SPDX-License-Identifier: Apache-2.0
#include <QIcon>
#include <QImage>
#include <gtest/gtest.h>

#include "ui/AmbrelStyle.h"

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

TEST(AmbrelStyle, LeavesOtherSignsToTheToolkit) {
  const AmbrelStyle style;
  EXPECT_FALSE(style.standardIcon(QStyle::SP_DirIcon, nullptr, nullptr).isNull());
}

}  // namespace
}  // namespace ambrel::ui
