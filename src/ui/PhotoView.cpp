// SPDX-License-Identifier: Apache-2.0
#include "ui/PhotoView.h"

#include <QPainterPath>

#include "ui/Palette.h"
#include "ui/PhotoScaling.h"
#include "ui/PixelGrid.h"

namespace ambrel::ui {
namespace {

constexpr double kViewCornerRadius = 12;

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
  const double scale = devicePixelRatioF();
  const int frame = 2 * hairlinePixels(scale);
  return ((QSizeF(size()) * scale).toSize() - QSize(frame, frame)).expandedTo(QSize(1, 1));
}

QRectF PhotoView::photoPlace() const {
  const QSizeF size = QSizeF(shrunkInto(_photo.size(), fit())) / devicePixelRatioF();
  QRectF place(QPointF(), size);
  place.moveCenter(QRectF(rect()).center());
  return place;
}

void PhotoView::paintEvent(QPaintEvent* event) {
  Surface::paintEvent(event);
  if (_photo.isNull()) return;
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  const double frame = hairline(painter);
  QPainterPath inside;
  inside.addRoundedRect(onWholePixels(painter, rect()).adjusted(frame, frame, -frame, -frame),
                        kViewCornerRadius - frame, kViewCornerRadius - frame);
  painter.setClipPath(inside);
  // From a whole pixel on, so that a photo of the right size is drawn as it is.
  QRectF place = photoPlace();
  place.moveTopLeft(onWholePixels(painter, place).topLeft());
  painter.drawImage(place, _photo);
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
