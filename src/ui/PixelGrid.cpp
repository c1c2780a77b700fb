// SPDX-License-Identifier: Apache-2.0
#include "ui/PixelGrid.h"

#include <algorithm>
#include <cmath>

namespace ambrel::ui {

QRectF onWholePixels(const QPainter& painter, const QRectF& place) {
  const QTransform toPixels = painter.deviceTransform();
  const QRectF pixels = toPixels.mapRect(place);
  const QRectF whole(QPointF(std::round(pixels.left()), std::round(pixels.top())),
                     QPointF(std::round(pixels.right()), std::round(pixels.bottom())));
  return toPixels.inverted().mapRect(whole);
}

int hairlinePixels(double scale) {
  // Half a pixel more would be seen as a heavier line, half a pixel less is not missed.
  return std::max(1, static_cast<int>(std::ceil(scale - 0.5)));
}

double hairline(const QPainter& painter) {
  const double scale = painter.deviceTransform().m11();
  return hairlinePixels(scale) / scale;
}

}  // namespace ambrel::ui
