// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <gtest/gtest.h>

#include "ui/Palette.h"
#include "ui/Surface.h"

namespace ambrel::ui {
namespace {

QImage pictureOf(QWidget& widget, double scale = 1) {
  QImage picture((QSizeF(widget.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::white);
  widget.render(&picture);
  return picture;
}

class SurfaceTest : public ::testing::Test {
 protected:
  SurfaceTest() {
    _ground.resize(200, 200);
    _ground.setFill(Qt::white);
    _card.setGeometry(50, 50, 100, 100);
    _card.styleCardView();
  }
  Surface _ground;
  Surface _card{&_ground};
};

TEST_F(SurfaceTest, CardsAreWhiteUnlessGivenAFill) {
  EXPECT_EQ(_card.fill(), Palette().cardBackgroundColor());
  _card.styleCardView(Palette().softPanelColor());
  EXPECT_EQ(_card.fill(), Palette().softPanelColor());
}

TEST_F(SurfaceTest, CardsHaveRoundedCornersABorderAndASoftShadow) {
  EXPECT_EQ(_card.cornerRadius(), 14);
  EXPECT_EQ(_card.shadow(), (Shadow{0.08, 8, {0, 2}}));
  const QImage picture = pictureOf(_ground);
  EXPECT_EQ(picture.pixel(50, 100), Palette().softBorderColor().rgb());
  EXPECT_EQ(picture.pixelColor(100, 100), QColor(Qt::white));
}

TEST_F(SurfaceTest, TheShadowFallsOnTheSurfaceBelowAndFadesOutwards) {
  const QImage picture = pictureOf(_ground);
  const int near = picture.pixelColor(100, 151).lightness();
  const int further = picture.pixelColor(100, 155).lightness();
  EXPECT_LT(near, further);
  EXPECT_LT(further, 255);
  EXPECT_EQ(picture.pixelColor(100, 175).lightness(), 255);
}

TEST_F(SurfaceTest, TheShadowIsDeeperBelowThanAbove) {
  const QImage picture = pictureOf(_ground);
  EXPECT_LT(picture.pixelColor(100, 152).lightness(), picture.pixelColor(100, 47).lightness());
}

TEST_F(SurfaceTest, CastsTheShadowOfCardsThatStandInPlainContainers) {
  _card.hide();
  QWidget container(&_ground);
  container.setGeometry(0, 0, 200, 200);
  Surface card(&container);
  card.setGeometry(50, 50, 100, 100);
  card.styleCardView();
  EXPECT_LT(pictureOf(_ground).pixelColor(100, 152).lightness(), 255);
}

TEST_F(SurfaceTest, TheShadowOfALargeCardIsTheShapesOwnToThePixel) {
  for (const int scale : {1, 2}) {
    QImage shapes(_ground.size() * scale, QImage::Format_ARGB32_Premultiplied);
    shapes.setDevicePixelRatio(scale);
    shapes.fill(Qt::white);
    QPainter painter(&shapes);
    paintShadow(painter, _card.geometry(), _card.cornerRadius(), _card.shadow());
    painter.end();
    const QImage picture = pictureOf(_ground, scale);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (_card.geometry().contains(x / scale, y / scale)) continue;
        ASSERT_NEAR(picture.pixelColor(x, y).red(), shapes.pixelColor(x, y).red(), 2) << x << ' ' << y;
      }
    }
  }
}

TEST_F(SurfaceTest, HiddenCardsCastNoShadow) {
  _card.hide();
  EXPECT_EQ(pictureOf(_ground).pixelColor(100, 152).lightness(), 255);
}

TEST_F(SurfaceTest, PaintsTheSameShapesAtTwiceTheScale) {
  const QImage picture = pictureOf(_ground, 2);
  EXPECT_EQ(picture.pixel(100, 200), Palette().softBorderColor().rgb());
  EXPECT_EQ(picture.pixel(101, 200), Palette().softBorderColor().rgb());
  EXPECT_EQ(picture.pixelColor(103, 200), QColor(Qt::white));
}

TEST_F(SurfaceTest, HasSharpEdgesWherePointsBeginWithinPixels) {
  _ground.setFill(Qt::black);
  for (const int x : {50, 51}) {
    for (const int width : {100, 101}) {
      _card.setGeometry(x, 50, width, 100);
      _card.setOutline(14, Qt::red, {});
      const QImage picture = pictureOf(_ground, 1.5);
      QStringList edges;
      for (int pixel = 60; pixel < 240; ++pixel) {
        const QColor color = picture.pixelColor(pixel, 150);
        const auto near = [&color](int red, int others) {
          return std::abs(color.red() - red) < 4 && std::abs(color.green() - others) < 4;
        };
        const QString seen = near(0, 0)       ? QStringLiteral("ground")
                             : near(255, 0)   ? QStringLiteral("border")
                             : near(255, 255) ? QStringLiteral("card")
                                              : QStringLiteral("blur");
        if (edges.isEmpty() || edges.last() != seen) edges << seen;
      }
      EXPECT_EQ(edges.join(QLatin1Char(' ')).toStdString(), "ground border card border ground")
          << x << " + " << width;
    }
  }
}

}  // namespace
}  // namespace ambrel::ui
