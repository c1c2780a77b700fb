// SPDX-License-Identifier: Apache-2.0
#include "ui/PhotoScaling.h"

#include <QTransform>

namespace ambrel::ui {

bool fitsIntoMemory(QSize pixels) {
  return !pixels.isEmpty() && qint64{4} * pixels.width() * pixels.height() <= kPhotoMemoryLimit;
}

QSize shrunkInto(QSize size, QSize fit) {
  const bool larger = size.width() > fit.width() || size.height() > fit.height();
  return larger ? size.scaled(fit, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)) : size;
}

QImage upright(const QImage& image, QImageIOHandler::Transformations transformation) {
  // 270 degrees are written as all three of mirrored, flipped and turned by 90.
  const QImage placed = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
                                       transformation.testFlag(QImageIOHandler::TransformationFlip));
  return liesOnItsSide(transformation) ? placed.transformed(QTransform().rotate(90)) : placed;
}

bool liesOnItsSide(QImageIOHandler::Transformations transformation) {
  return transformation.testFlag(QImageIOHandler::TransformationRotate90);
}

}  // namespace ambrel::ui
