// SPDX-License-Identifier: Apache-2.0
#include "ui/PhotoView.h"

#include <QPainterPath>
#include <cmath>

#include "ui/Palette.h"
#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

constexpr double kViewCornerRadius = 12;
constexpr int kFrame = 1;

}  // namespace

PhotoView::PhotoView(QWidget* parent) : Surface(parent) {
  const Palette palette;
  setFill(palette.cardBackgroundColor());
  setOutline(kViewCornerRadius, palette.previewBorderColor(), {});
  setAccessibleName(QStringLiteral("Preview"));
}

void PhotoView::setPhoto(const QImage& photo) {
  _photo = photo;
  _fitOfPhoto = fit();
  update();
}

QSize PhotoView::fit() const {
  const QSize room = size() - QSize(2 * kFrame, 2 * kFrame);
  return (QSizeF(room) * devicePixelRatioF()).toSize().expandedTo(QSize(1, 1));
}

QRectF PhotoView::photoPlace() const {
  const QSizeF size = QSizeF(shrunkInto(_photo.size(), fit())) / devicePixelRatioF();
  QRectF place(QPointF(), size);
  place.moveCenter(QRectF(rect()).center());
  // On whole pixels, so that a photo of the right size is drawn as it is.
  const double scale = devicePixelRatioF();
  place.moveTopLeft(QPointF(std::round(place.x() * scale), std::round(place.y() * scale)) / scale);
  return place;
}

void PhotoView::paintEvent(QPaintEvent* event) {
  Surface::paintEvent(event);
  if (_photo.isNull()) return;
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  QPainterPath inside;
  inside.addRoundedRect(QRectF(rect()).adjusted(kFrame, kFrame, -kFrame, -kFrame), kViewCornerRadius - kFrame,
                        kViewCornerRadius - kFrame);
  painter.setClipPath(inside);
  painter.drawImage(photoPlace(), _photo);
}

void PhotoView::resizeEvent(QResizeEvent* event) {
  Surface::resizeEvent(event);
  const QSize room = fit();
  if (hasPhoto() && (room.width() > _fitOfPhoto.width() || room.height() > _fitOfPhoto.height())) {
    _fitOfPhoto = room;
    Q_EMIT roomGrew();
  }
}

}  // namespace ambrel::ui
