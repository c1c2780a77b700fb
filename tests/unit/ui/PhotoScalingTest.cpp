// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

// One pixel red, at the top left of a 3 x 2 picture.
QImage marked() {
  QImage image(3, 2, QImage::Format_RGB32);
  image.fill(Qt::white);
  image.setPixelColor(0, 0, Qt::red);
  return image;
}

QPoint redPixel(const QImage& image) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) == QColor(Qt::red)) return {x, y};
  return {-1, -1};
}

TEST(PhotoScaling, ShrinksIntoTheViewWithTheProportionsKept) {
  EXPECT_EQ(shrunkInto({6000, 4000}, {1200, 900}), QSize(1200, 800));
  EXPECT_EQ(shrunkInto({4000, 6000}, {1200, 900}), QSize(600, 900));
}

TEST(PhotoScaling, NeverEnlarges) {
  EXPECT_EQ(shrunkInto({160, 120}, {1200, 900}), QSize(160, 120));
}

TEST(PhotoScaling, KeepsAtLeastOnePixelOfAThread) {
  EXPECT_EQ(shrunkInto({20000, 2}, {100, 100}), QSize(100, 1));
}

TEST(PhotoScaling, ARoomOf128MegapixelsIsTheLimit) {
  EXPECT_TRUE(fitsIntoMemory({8688, 5792}));
  EXPECT_TRUE(fitsIntoMemory({16384, 8192}));
  EXPECT_FALSE(fitsIntoMemory({16385, 8192}));
  EXPECT_FALSE(fitsIntoMemory({65500, 65500}));
  EXPECT_FALSE(fitsIntoMemory({0, 100}));
}

TEST(PhotoScaling, TurnsThePhotoAsTheCameraWasHeld) {
  struct Case {
    QImageIOHandler::Transformation held;
    QSize size;
    QPoint red;
  };
  const Case cases[] = {
      {QImageIOHandler::TransformationNone, {3, 2}, {0, 0}},
      {QImageIOHandler::TransformationMirror, {3, 2}, {2, 0}},
      {QImageIOHandler::TransformationFlip, {3, 2}, {0, 1}},
      {QImageIOHandler::TransformationRotate180, {3, 2}, {2, 1}},
      {QImageIOHandler::TransformationRotate90, {2, 3}, {1, 0}},
      {QImageIOHandler::TransformationMirrorAndRotate90, {2, 3}, {1, 2}},
      {QImageIOHandler::TransformationFlipAndRotate90, {2, 3}, {0, 0}},
      {QImageIOHandler::TransformationRotate270, {2, 3}, {0, 2}},
  };
  for (const Case& c : cases) {
    const QImage turned = upright(marked(), c.held);
    EXPECT_EQ(turned.size(), c.size) << c.held;
    EXPECT_EQ(redPixel(turned), c.red) << c.held;
    EXPECT_EQ(liesOnItsSide(c.held), c.size == QSize(2, 3));
  }
}

}  // namespace
}  // namespace ambrel::ui
