// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/ButtonLook.h"
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

const QColor kBase = QColor::fromRgbF(0.5F, 0.25F, 0.75F);
constexpr Shadow kResting{0.14, 1.5, {0, 1}};

TEST(ButtonLook, RestsInItsBaseColourWithAFlatShadow) {
  const ButtonLook look = buttonLook({.base = kBase});
  EXPECT_EQ(look.fill, kBase);
  EXPECT_EQ(look.shadow, kResting);
}

TEST(ButtonLook, LightensBy14PercentAndRisesUnderThePointer) {
  const ButtonLook look = buttonLook({.hovered = true, .base = kBase});
  EXPECT_EQ(look.fill, blended(kBase, 0.14, Qt::white));
  EXPECT_EQ(look.shadow, (Shadow{0.32, 5.0, {0, 1}}));
}

TEST(ButtonLook, DarkensBy22PercentWhilePressedAndLiesFlat) {
  for (const bool hovered : {false, true}) {
    const ButtonLook look = buttonLook({.pressed = true, .hovered = hovered, .base = kBase});
    EXPECT_EQ(look.fill, blended(kBase, 0.22, Qt::black));
    EXPECT_EQ(look.shadow, kResting);
  }
}

TEST(ButtonLook, IgnoresPointerAndPressWhenDisabled) {
  for (const bool pressed : {false, true}) {
    for (const bool hovered : {false, true}) {
      const ButtonLook look = buttonLook({false, pressed, hovered, kBase});
      EXPECT_EQ(look.fill, kBase);
      EXPECT_EQ(look.shadow, (Shadow{0, 1.5, {0, 1}}));
    }
  }
}

}  // namespace
}  // namespace ambrel::ui
