// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QPointF>

namespace ambrel::ui {

struct ButtonState {
  bool enabled = true;
  bool pressed = false;
  bool hovered = false;
  QColor base;
};

// A soft shadow below a rounded shape. `offset` is in points, downwards positive; `radius` is how far it
// reaches beyond the shape.
struct Shadow {
  double opacity = 0;
  double radius = 0;
  QPointF offset = {};
  bool operator==(const Shadow&) const = default;
};

struct ButtonLook {
  QColor fill;
  Shadow shadow;
  bool operator==(const ButtonLook&) const = default;
};

// How a button looks depends on its state and on nothing else.
ButtonLook buttonLook(const ButtonState& state);

}  // namespace ambrel::ui
