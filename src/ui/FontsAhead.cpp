// SPDX-License-Identifier: Apache-2.0
#include "ui/FontsAhead.h"

#include <QImage>
#include <QPainter>
#include <cmath>

#include "ui/Appearance.h"

namespace ambrel::ui {

void shapeLettersAhead(double scale) {
  struct Face {
    int pixelSize;
    QFont::Weight weight;
  };
  constexpr Face kFaces[] = {{10, QFont::Normal},   {10, QFont::DemiBold}, {11, QFont::DemiBold},
                             {12, QFont::Bold},     {13, QFont::Normal},   {13, QFont::DemiBold},
                             {13, QFont::Bold},     {14, QFont::DemiBold}, {15, QFont::Bold},
                             {17, QFont::DemiBold}, {17, QFont::Bold},     {18, QFont::Bold}};
  const QString letters =
      QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz 0123456789 .,:;#%/()+×—●");
  QImage outOfSight(QSize(1, 1) * std::ceil(scale), QImage::Format_RGB32);
  outOfSight.setDevicePixelRatio(scale);
  QPainter painter(&outOfSight);
  for (const Face& face : kFaces) {
    painter.setFont(systemFont(face.pixelSize, face.weight));
    painter.drawText(QPointF(0, 1), letters);
  }
  painter.setFont(systemFont(13));
  painter.drawText(QPointF(0, 1), QStringLiteral("🚩📝"));
}

}  // namespace ambrel::ui
