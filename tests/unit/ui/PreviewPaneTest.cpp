// SPDX-License-Identifier: Apache-2.0
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include "ui/Palette.h"
#include "ui/PreviewPane.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

class PreviewPaneTest : public ::testing::Test {
 protected:
  PreviewPaneTest() {
    _pane.resize(620, 600);
    _pane.show();
  }
  const Surface* pill() const {
    for (const Surface* surface : _pane.findChildren<Surface*>())
      if (surface->fill() == Palette().greenColor()) return surface;
    return nullptr;
  }
  static QImage photo() {
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
  }

  PreviewPane _pane{nullptr};
};

TEST_F(PreviewPaneTest, SaysThatThereIsNoPreviewYet) {
  EXPECT_EQ(_pane.label(), QStringLiteral("No preview yet"));
  EXPECT_FALSE(_pane.preview()->hasPhoto());
  EXPECT_FALSE(pill()->isVisible());
  EXPECT_FALSE(_pane.previousButton()->isEnabled());
  EXPECT_FALSE(_pane.nextButton()->isEnabled());
}

TEST_F(PreviewPaneTest, PlacesItsControlsAsLaidOut) {
  const layout::RightPane places = layout::rightPane({620, 600});
  EXPECT_EQ(_pane.preview()->geometry(), places.preview);
  EXPECT_EQ(pill()->geometry(), places.previewDownloadedPill);
  EXPECT_EQ(_pane.revealButton()->geometry(), places.revealButton);
  EXPECT_EQ(_pane.previousButton()->geometry(), places.prevButton);
  EXPECT_EQ(_pane.nextButton()->geometry(), places.nextButton);
}

TEST_F(PreviewPaneTest, ShowsAPhotoWithItsNameAndTheBadge) {
  _pane.showPhoto(photo(), QStringLiteral("Anna_0003.JPG  (3/7)"));
  EXPECT_TRUE(_pane.preview()->hasPhoto());
  EXPECT_EQ(_pane.label(), QStringLiteral("Anna_0003.JPG  (3/7)"));
  EXPECT_TRUE(pill()->isVisible());
  const QPoint middle = _pane.preview()->geometry().center();
  EXPECT_EQ(_pane.grab().toImage().pixelColor(middle), QColor(Qt::red));
}

TEST_F(PreviewPaneTest, ItsButtonsStepAndReveal) {
  QSignalSpy previous(&_pane, &PreviewPane::previousRequested);
  QSignalSpy next(&_pane, &PreviewPane::nextRequested);
  QSignalSpy reveal(&_pane, &PreviewPane::revealRequested);
  _pane.updateControls(true, false);
  QTest::mouseClick(_pane.previousButton(), Qt::LeftButton);
  QTest::mouseClick(_pane.nextButton(), Qt::LeftButton);
  QTest::mouseClick(_pane.revealButton(), Qt::LeftButton);
  EXPECT_EQ(previous.count(), 1);
  EXPECT_EQ(next.count(), 0);
  EXPECT_EQ(reveal.count(), 1);
}

TEST_F(PreviewPaneTest, IsNeverNarrowerThan360Points) {
  EXPECT_EQ(_pane.minimumWidth(), 360);
}

}  // namespace
}  // namespace ambrel::ui
