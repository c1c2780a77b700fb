// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <gtest/gtest.h>

#include "ui/Appearance.h"
#include "ui/TextLine.h"

namespace ambrel::ui {
namespace {

QImage paper() {
  QImage image(200, 30, QImage::Format_RGB32);
  image.fill(Qt::white);
  return image;
}

QImage painted(Qt::Alignment alignment, const QString& line, Qt::TextElideMode elide = Qt::ElideRight) {
  QImage image = paper();
  QPainter painter(&image);
  painter.setFont(systemFont(13));
  paintTextLine(painter, image.rect(), alignment, line, elide);
  return image;
}

// The first and the last column that are not white.
std::pair<int, int> inkOf(const QImage& image) {
  std::pair<int, int> ink{image.width(), -1};
  for (int x = 0; x < image.width(); ++x) {
    for (int y = 0; y < image.height(); ++y) {
      if (image.pixel(x, y) == qRgb(255, 255, 255)) continue;
      ink = {std::min(ink.first, x), x};
      break;
    }
  }
  return ink;
}

TEST(TextLine, StandsWhereItIsAligned) {
  const auto left = inkOf(painted(Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Anna")));
  const auto centre = inkOf(painted(Qt::AlignCenter, QStringLiteral("Anna")));
  EXPECT_LT(left.first, 3);
  EXPECT_NEAR(centre.first, 200 - centre.second, 3);
}

TEST(TextLine, ShortensWhatIsTooWideWhereItIsTold) {
  const QString line = QStringLiteral("Anna ").repeated(20) + QStringLiteral("END");
  const QFontMetrics metrics(systemFont(13));
  for (const Qt::TextElideMode elide : {Qt::ElideRight, Qt::ElideMiddle}) {
    QImage expected = paper();
    QPainter painter(&expected);
    painter.setFont(systemFont(13));
    painter.drawText(expected.rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     metrics.elidedText(line, elide, expected.width()));
    painter.end();
    EXPECT_EQ(painted(Qt::AlignLeft | Qt::AlignVCenter, line, elide), expected);
  }
}

TEST(TextLine, StandsWhereItsNeighboursDoThoughALetterOfItIsTaller) {
  const QImage alone = painted(Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Anna"));
  const QRect letters(0, 0, inkOf(alone).second + 1, alone.height());
  for (const char* taller : {"नेहा", "สมหญิง", "花子", "👍🏽"}) {
    const QImage beside =
        painted(Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Anna ") + QString::fromUtf8(taller));
    EXPECT_EQ(beside.copy(letters), alone.copy(letters)) << taller;
  }
}

TEST(TextLine, PaintsNothingForNoText) {
  EXPECT_EQ(painted(Qt::AlignCenter, {}), paper());
}

}  // namespace
}  // namespace ambrel::ui
