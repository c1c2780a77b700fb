// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QDropEvent>
#include <QImage>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include "ui/AmbrelDropZone.h"

namespace ambrel::ui {
namespace {

class AmbrelDropZoneTest : public ::testing::Test {
 protected:
  AmbrelDropZoneTest() { _zone.resize(400, 300); }

  void dragFiles(std::initializer_list<const char*> paths) {
    QList<QUrl> urls;
    for (const char* path : paths)
      urls << QUrl::fromLocalFile(QString::fromLatin1(path));
    _data.setUrls(urls);
  }
  // The whole way that a drop takes; false also when the zone refuses the drag.
  bool drop() {
    QDragEnterEvent entry(QPoint(50, 50), Qt::CopyAction, &_data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&_zone, &entry);
    if (!entry.isAccepted()) return false;
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &_data, Qt::LeftButton, Qt::NoModifier);
    event.setAccepted(false);
    QApplication::sendEvent(&_zone, &event);
    return event.isAccepted();
  }
  void takeDrops(bool answer) {
    _zone.onDropPaths = [this, answer](const QStringList& paths) {
      _dropped = paths;
      return answer;
    };
  }

  AmbrelDropZone _zone;
  QMimeData _data;
  QStringList _dropped;
};

TEST_F(AmbrelDropZoneTest, HandsOnOnlyTheListFilesOfADrop) {
  takeDrops(true);
  dragFiles({"/tmp/class.CSV", "/tmp/photo.png"});
  EXPECT_TRUE(drop());
  EXPECT_EQ(_dropped, QStringList{QStringLiteral("/tmp/class.CSV")});
}

TEST_F(AmbrelDropZoneTest, KeepsTheOrderOfTheDrag) {
  takeDrops(true);
  dragFiles({"/tmp/b.txt", "/tmp/a.csv"});
  drop();
  EXPECT_EQ(_dropped, (QStringList{QStringLiteral("/tmp/b.txt"), QStringLiteral("/tmp/a.csv")}));
}

TEST_F(AmbrelDropZoneTest, RefusesADropOfImagesOnly) {
  takeDrops(true);
  dragFiles({"/tmp/photo.png", "/tmp/photo.jpg"});
  EXPECT_FALSE(drop());
  EXPECT_TRUE(_dropped.isEmpty());
}

TEST_F(AmbrelDropZoneTest, RefusesWhatTheCallbackRefuses) {
  takeDrops(false);
  dragFiles({"/tmp/a.csv"});
  EXPECT_FALSE(drop());
}

TEST_F(AmbrelDropZoneTest, RefusesEveryDropWithoutACallback) {
  dragFiles({"/tmp/a.csv"});
  EXPECT_FALSE(drop());
}

TEST_F(AmbrelDropZoneTest, IgnoresLinksToOtherMachines) {
  _data.setUrls({QUrl(QStringLiteral("https://example.org/list.csv"))});
  EXPECT_TRUE(droppedPaths(_data).isEmpty());
}

TEST_F(AmbrelDropZoneTest, AcceptsEveryDragAsACopyWhileItIsOverTheZone) {
  QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &_data, Qt::LeftButton,
                        Qt::NoModifier);
  event.setAccepted(false);
  QApplication::sendEvent(&_zone, &event);
  EXPECT_TRUE(event.isAccepted());
  EXPECT_EQ(event.dropAction(), Qt::CopyAction);
}

TEST_F(AmbrelDropZoneTest, CallsOnClickForAClickAndForTheSpaceBar) {
  int clicks = 0;
  _zone.onClick = [&] { ++clicks; };
  QTest::mouseClick(&_zone, Qt::LeftButton);
  QTest::keyClick(&_zone, Qt::Key_Space);
  EXPECT_EQ(clicks, 2);
}

TEST_F(AmbrelDropZoneTest, DoesNothingOnAClickWithoutACallback) {
  QTest::mouseClick(&_zone, Qt::LeftButton);
  EXPECT_EQ(_zone.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(AmbrelDropZoneTest, DrawsADashedBorder16PointsInside) {
  _zone.setBorderColor(Qt::red);
  QImage picture(_zone.size(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::white);
  _zone.render(&picture, {}, {}, QWidget::DrawChildren);
  int red = 0;
  for (int x = 100; x < 300; ++x)
    red += picture.pixelColor(x, 16) == QColor(Qt::red) ? 1 : 0;
  EXPECT_NEAR(red, 200.0 * 8 / 14, 15);
}

}  // namespace
}  // namespace ambrel::ui
