// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "ui/Palette.h"
#include "ui/Splash.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

QRect place(int x, int y, int width, int height) {
  return layout::fromBottom(380, x, y, width, height);
}

TEST(Splash, LaysOutItsTextsBelowTheMark) {
  const SplashPlaces places = splashPlaces(true);
  EXPECT_EQ(places.mark, place(165, 168, 170, 170));
  EXPECT_EQ(places.title, place(20, 112, 460, 42));
  EXPECT_EQ(places.line, place(20, 82, 460, 22));
  EXPECT_EQ(places.version, place(20, 20, 460, 18));
}

TEST(Splash, RaisesItsTextsWhenThereIsNoMark) {
  const SplashPlaces places = splashPlaces(false);
  EXPECT_TRUE(places.mark.isNull());
  EXPECT_EQ(places.title, place(20, 190, 460, 42));
  EXPECT_EQ(places.line, place(20, 160, 460, 22));
  EXPECT_EQ(places.version, place(20, 20, 460, 18));
}

TEST(Splash, IsARoundedTileInTheBrandColourWithClearCorners) {
  Splash splash(QStringLiteral("7.04"), {});
  EXPECT_EQ(splash.size(), QSize(500, 380));
  QImage picture(splash.size(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  splash.render(&picture, {}, {}, QWidget::DrawChildren);
  EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(picture.pixelColor(250, 10).name(), Palette().brandColor().name());
}

TEST(Splash, FloatsAboveNormalWindowsAndDoesNotEndTheApplicationWhenClosed) {
  const Splash splash(QStringLiteral("7.04"), {});
  EXPECT_TRUE(splash.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_TRUE(splash.windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_FALSE(splash.testAttribute(Qt::WA_QuitOnClose));
}

TEST(Splash, SaysOnceThatItHasBeenPainted) {
  Splash splash(QStringLiteral("7.04"), {});
  int painted = 0;
  QObject::connect(&splash, &Splash::painted, &splash, [&painted] { ++painted; });
  for (int time = 0; time < 2; ++time) {
    (void)splash.grab();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(painted, 1);
}

TEST(Splash, DrawsAWideMarkInProportion) {
  QImage wide(200, 100, QImage::Format_ARGB32_Premultiplied);
  wide.fill(Qt::red);
  Splash splash(QStringLiteral("7.04"), wide);
  QImage picture(splash.size(), QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  splash.render(&picture, {}, {}, QWidget::DrawChildren);
  const QRect mark = splashPlaces(true).mark;
  EXPECT_EQ(picture.pixelColor(mark.center()), QColor(Qt::red));
  EXPECT_EQ(picture.pixelColor(mark.center().x(), mark.top() + 10).name(), Palette().brandColor().name());
}

TEST(FirstImageThatLoads, SkipsFilesThatAreMissingOrNoPictures) {
  const QTemporaryDir folder;
  QFile broken(folder.filePath(QStringLiteral("broken.icns")));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("no picture");
  broken.close();
  QImage picture(3, 2, QImage::Format_RGB32);
  picture.fill(Qt::red);
  const QString good = folder.filePath(QStringLiteral("good.png"));
  ASSERT_TRUE(picture.save(good));
  EXPECT_EQ(
      firstImageThatLoads({broken.fileName(), folder.filePath(QStringLiteral("none.png")), good}).size(),
      QSize(3, 2));
  EXPECT_TRUE(firstImageThatLoads({broken.fileName()}).isNull());
  EXPECT_TRUE(firstImageThatLoads({}).isNull());
}

}  // namespace
}  // namespace ambrel::ui
