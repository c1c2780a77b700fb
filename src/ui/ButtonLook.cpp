// SPDX-License-Identifier: Apache-2.0
#include "ui/ButtonLook.h"

#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

constexpr double kPressedTowardBlack = 0.22;
constexpr double kHoverTowardWhite = 0.14;
constexpr QPointF kShadowOffset{0, 1};

}  // namespace

ButtonLook buttonLook(const ButtonState& state) {
  if (!state.enabled) return {state.base, {0, 1.5, kShadowOffset}};
  if (state.pressed) return {blended(state.base, kPressedTowardBlack, Qt::black), {0.14, 1.5, kShadowOffset}};
  if (state.hovered) return {blended(state.base, kHoverTowardWhite, Qt::white), {0.32, 5.0, kShadowOffset}};
  return {state.base, {0.14, 1.5, kShadowOffset}};
}

}  // namespace ambrel::ui
