// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <gtest/gtest.h>

#include "ui/PixelGrid.h"

namespace ambrel::ui {
namespace {

TEST(PixelGrid, MovesEdgesToTheNearestPixels) {
  QImage paper(100, 100, QImage::Format_RGB32);
  paper.setDevicePixelRatio(1.5);
  QPainter painter(&paper);
  painter.translate(1, 3);
  const QRectF place = onWholePixels(painter, QRectF(0, 0, 21, 10));
  const QRectF pixels = painter.deviceTransform().mapRect(place);
  EXPECT_EQ(pixels, QRectF(QPointF(2, 5), QPointF(33, 20)));
}

TEST(PixelGrid, LeavesWhatLiesOnPixelsWhereItIs) {
  QImage paper(100, 100, QImage::Format_RGB32);
  for (const double scale : {1.0, 2.0}) {
    paper.setDevicePixelRatio(scale);
    const QPainter painter(&paper);
    EXPECT_EQ(onWholePixels(painter, QRectF(3, 5, 20, 10)), QRectF(3, 5, 20, 10));
  }
}

TEST(PixelGrid, DrawsALineOfOnePointInWholePixels) {
  const std::pair<double, int> widths[] = {{0.5, 1}, {1, 1}, {1.25, 1}, {1.5, 1}, {1.75, 2}, {2, 2}, {3, 3}};
  for (const auto& [scale, pixels] : widths)
    EXPECT_EQ(hairlinePixels(scale), pixels) << scale;
}

}  // namespace
}  // namespace ambrel::ui
