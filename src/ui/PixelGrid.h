// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPainter>

namespace ambrel::ui {

// At a scale of 1.5 every other point begins within a pixel, and what is painted there gets blurred edges.

// The place with its edges moved to the nearest pixels of the painter's device.
QRectF onWholePixels(const QPainter& painter, const QRectF& place);
// The width of a line of one point at this scale, in whole pixels.
int hairlinePixels(double scale);
// The same in the painter's units.
double hairline(const QPainter& painter);

}  // namespace ambrel::ui
