// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

QColor rgb(double red, double green, double blue, double alpha = 1) {
  return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
                          static_cast<float>(alpha));
}

TEST(Palette, HoldsTheLightColours) {
  const Palette light;
  const std::pair<QColor, QColor> table[] = {
      {light.brandColor(), rgb(0.2, 0.4, 0.6)},
      {light.brandDarkColor(), rgb(0.169, 0.337, 0.502)},
      {light.greenColor(), rgb(0.18, 0.62, 0.42)},
      {light.redColor(), rgb(0.839, 0.271, 0.255)},
      {light.grayColor(), rgb(0.353, 0.42, 0.471)},
      {light.orangeColor(), rgb(0.851, 0.569, 0.122)},
      {light.softPanelColor(), rgb(0.969, 0.98, 0.988)},
      {light.softBorderColor(), rgb(0.886, 0.91, 0.933)},
      {light.appBackgroundColor(), rgb(0.93, 0.95, 0.98)},
      {light.cardBackgroundColor(), rgb(1, 1, 1)},
      {light.fieldBackgroundColor(), rgb(1, 1, 1)},
      {light.primaryTextColor(), rgb(0, 0, 0, 0.85)},
      {light.previewBorderColor(), rgb(0.667, 0.667, 0.667)},
  };
  for (const auto& [shown, wanted] : table)
    EXPECT_EQ(shown, wanted) << wanted.name().toStdString();
}

TEST(Palette, KeepsTheDarkColoursForLater) {
  const Palette dark(Palette::Mode::Dark);
  EXPECT_EQ(dark.softPanelColor(), rgb(0.12, 0.13, 0.15));
  EXPECT_EQ(dark.softBorderColor(), rgb(0.28, 0.3, 0.34));
  EXPECT_EQ(dark.appBackgroundColor(), rgb(0.07, 0.08, 0.1));
  EXPECT_EQ(dark.cardBackgroundColor(), rgb(0.1, 0.11, 0.13));
  EXPECT_EQ(dark.fieldBackgroundColor(), rgb(0.15, 0.16, 0.18));
  EXPECT_EQ(dark.previewBorderColor(), rgb(0.36, 0.38, 0.42));
}

TEST(Palette, UsesTheSameSignalColoursInBothModes) {
  const Palette light;
  const Palette dark(Palette::Mode::Dark);
  EXPECT_EQ(dark.brandColor(), light.brandColor());
  EXPECT_EQ(dark.greenColor(), light.greenColor());
  EXPECT_EQ(dark.redColor(), light.redColor());
  EXPECT_EQ(dark.primaryTextColor(), light.primaryTextColor());
}

TEST(Palette, HasYellowEqualToOrangeAndBlueEqualToBrand) {
  const Palette palette;
  EXPECT_EQ(palette.yellowColor(), palette.orangeColor());
  EXPECT_EQ(palette.blueColor(), palette.brandColor());
}

TEST(Palette, FillsTheStorageCardByLevel) {
  const Palette palette;
  EXPECT_EQ(palette.storageUnknownFill(), rgb(1.0, 0.95, 0.9));
  EXPECT_EQ(palette.storageCriticalFill(), rgb(1.0, 0.93, 0.92));
  EXPECT_EQ(palette.storageLowFill(), rgb(1.0, 0.97, 0.86));
}

TEST(Palette, SuppliesTheSystemColours) {
  EXPECT_EQ(Palette::secondaryLabelColor(), rgb(0, 0, 0, 0.5));
  EXPECT_EQ(Palette::tertiaryLabelColor(), rgb(0, 0, 0, 0.26));
  EXPECT_EQ(Palette::systemGray(), rgb(0.5, 0.5, 0.5));
  EXPECT_EQ(Palette::selectedContentBackground(), rgb(0, 0.388, 0.882));
}

TEST(Blending, MixesEveryComponentByTheFraction) {
  EXPECT_EQ(blended(rgb(0.2, 0.4, 0.6), 0.5, Qt::black).name(), rgb(0.1, 0.2, 0.3).name());
  EXPECT_EQ(blended(rgb(0.2, 0.4, 0.6), 0, Qt::white).name(), rgb(0.2, 0.4, 0.6).name());
  EXPECT_EQ(blended(rgb(0.2, 0.4, 0.6), 1, Qt::white).name(), QColor(Qt::white).name());
}

}  // namespace
}  // namespace ambrel::ui
