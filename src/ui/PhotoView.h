// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>

#include "ui/Surface.h"

namespace ambrel::ui {

// A frame with rounded corners in which one photo lies, whole and centred.
class PhotoView : public Surface {
  Q_OBJECT
 public:
  explicit PhotoView(QWidget* parent);

  void setPhoto(const QImage& photo);
  bool hasPhoto() const { return !_photo.isNull(); }
  // The room for a photo, in pixels of the screen.
  QSize fit() const;
  // Where the photo lies, in points; never enlarged beyond its pixels.
  QRectF photoPlace() const;

 Q_SIGNALS:
  // There is room for more of the photo than was decoded for.
  void roomGrew();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QImage _photo;
  QSize _fitOfPhoto;
};

}  // namespace ambrel::ui
