// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QStyle>
#include <gtest/gtest.h>

#include "ui/Appearance.h"

namespace ambrel::ui {
namespace {

TEST(Appearance, ColoursTheStatusByItsKind) {
  const Palette palette;
  EXPECT_EQ(statusColor(StatusKind::Watching, palette), palette.greenColor());
  EXPECT_EQ(statusColor(StatusKind::Error, palette), palette.redColor());
  for (const StatusKind kind : {StatusKind::Good, StatusKind::Busy, StatusKind::Neutral})
    EXPECT_EQ(statusColor(kind, palette), palette.orangeColor());
}

TEST(Appearance, LeavesNoColourNameUnfilledInTheStyleSheet) {
  const QString sheet = applicationStyleSheet(Palette());
  EXPECT_FALSE(sheet.contains(QLatin1Char('%')));
  EXPECT_TRUE(sheet.contains(QStringLiteral("rgba(51,102,153,255)")));
}

TEST(Appearance, StaysLightWhateverTheDesktopUses) {
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), Palette().appBackgroundColor());
  EXPECT_EQ(QApplication::palette().color(QPalette::Base), QColor(Qt::white));
}

TEST(Appearance, MeasuresFontsInPointsOfTheDesign) {
  const QFont font = systemFont(17, QFont::Bold);
  EXPECT_EQ(font.pixelSize(), 17);
  EXPECT_EQ(font.weight(), QFont::Bold);
  EXPECT_EQ(font.families().last(), QStringLiteral("Noto Color Emoji"));
}

TEST(Appearance, StylesTheCounterFieldWithoutFrame) {
  QLineEdit field;
  styleCounterField(&field);
  EXPECT_EQ(field.font().pixelSize(), 18);
  EXPECT_TRUE(field.font().bold());
  EXPECT_FALSE(field.hasFrame());
  EXPECT_TRUE(field.alignment().testFlag(Qt::AlignHCenter));
}

TEST(Appearance, StylesTextFieldsInSemiboldFourteenCentred) {
  QLineEdit field;
  styleTextFieldBox(&field);
  EXPECT_EQ(field.font().pixelSize(), 14);
  EXPECT_EQ(field.font().weight(), QFont::DemiBold);
  EXPECT_TRUE(field.alignment().testFlag(Qt::AlignHCenter));
}

}  // namespace
}  // namespace ambrel::ui
