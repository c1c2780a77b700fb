// SPDX-License-Identifier: Apache-2.0
#include <QSignalSpy>
#include <gtest/gtest.h>

#include "ui/PhotoView.h"

namespace ambrel::ui {
namespace {

class PhotoViewTest : public ::testing::Test {
 protected:
  PhotoViewTest() {
    _view.resize(302, 202);
    _view.show();
  }
  static QImage photo(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
  }

  PhotoView _view{nullptr};
};

TEST_F(PhotoViewTest, AsksForPhotosOfItsOwnSizeInsideTheFrame) {
  EXPECT_EQ(_view.fit(), QSize(300, 200));
}

TEST_F(PhotoViewTest, LaysThePhotoInItsMiddleWhole) {
  _view.setPhoto(photo({300, 100}));
  EXPECT_EQ(_view.photoPlace(), QRectF(1, 51, 300, 100));
  const QImage shown = _view.grab().toImage();
  EXPECT_EQ(shown.pixelColor(150, 100), QColor(Qt::red));
  EXPECT_NE(shown.pixelColor(150, 45), QColor(Qt::red));
}

TEST_F(PhotoViewTest, NeverEnlargesASmallPhoto) {
  _view.setPhoto(photo({30, 20}));
  EXPECT_EQ(_view.photoPlace().size(), QSizeF(30, 20));
}

TEST_F(PhotoViewTest, ShrinksThePhotoWithTheWindow) {
  _view.setPhoto(photo({300, 200}));
  _view.resize(152, 202);
  EXPECT_EQ(_view.photoPlace().size(), QSizeF(150, 100));
}

TEST_F(PhotoViewTest, CutsThePhotoAtItsRoundedCorners) {
  _view.setPhoto(photo({300, 200}));
  EXPECT_NE(_view.grab().toImage().pixelColor(2, 2), QColor(Qt::red));
}

TEST_F(PhotoViewTest, AsksForMoreOfThePhotoOnceThereIsRoomForIt) {
  QSignalSpy grew(&_view, &PhotoView::roomGrew);
  _view.resize(400, 300);
  EXPECT_EQ(grew.count(), 0);
  _view.setPhoto(photo({300, 200}));
  _view.resize(200, 150);
  EXPECT_EQ(grew.count(), 0);
  _view.resize(402, 300);
  EXPECT_EQ(grew.count(), 1);
}

}  // namespace
}  // namespace ambrel::ui
