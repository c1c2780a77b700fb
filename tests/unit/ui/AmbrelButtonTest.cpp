// SPDX-License-Identifier: Apache-2.0
#include <QEnterEvent>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include "ui/AmbrelButton.h"
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

const QColor kGreen = Palette().greenColor();

class AmbrelButtonTest : public ::testing::Test {
 protected:
  AmbrelButtonTest() {
    _surface.resize(200, 100);
    _button.setGeometry(20, 20, 100, 34);
    _button.styleButton(QStringLiteral("Export"), kGreen, true);
    _surface.show();
  }
  void enter() {
    const QPointF inside(5, 5);
    QEnterEvent event(inside, inside, inside);
    QApplication::sendEvent(&_button, &event);
  }
  void leave() {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&_button, &event);
  }

  Surface _surface;
  AmbrelButton _button{&_surface};
};

TEST_F(AmbrelButtonTest, ShowsItsBaseColourAtRest) {
  EXPECT_EQ(_button.shownFill(), kGreen);
  EXPECT_EQ(_button.text(), QStringLiteral("Export"));
}

TEST_F(AmbrelButtonTest, TakesALightGrayWithoutAColour) {
  _button.styleButton(QStringLiteral("x"), {}, true);
  EXPECT_EQ(_button.ambrelBaseColor(), Palette::white(0.72));
}

TEST_F(AmbrelButtonTest, StyledDisabledIsGrayWithoutShadowOrHandCursorAndIgnoresHover) {
  _button.styleButton(QStringLiteral("Export"), kGreen, false);
  enter();
  EXPECT_EQ(_button.shownFill(), Palette::white(0.7));
  EXPECT_EQ(_button.shadow().opacity, 0);
  EXPECT_EQ(_button.shadow().radius, 1.5);
  EXPECT_NE(_button.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(AmbrelButtonTest, ShowsTheHandCursorWhenEnabledAgain) {
  _button.styleButton(QStringLiteral("Export"), kGreen, false);
  _button.styleButton(QStringLiteral("Export"), kGreen, true);
  EXPECT_EQ(_button.cursor().shape(), Qt::PointingHandCursor);
  EXPECT_EQ(_button.shownFill(), kGreen);
}

TEST_F(AmbrelButtonTest, ShowsTheHandCursorFromTheStart) {
  EXPECT_EQ(_button.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(AmbrelButtonTest, RisesUnderThePointerAndSettlesWhenItLeaves) {
  enter();
  EXPECT_EQ(_button.shadow().opacity, 0.32);
  leave();
  EXPECT_EQ(_button.shadow().opacity, 0.14);
}

TEST_F(AmbrelButtonTest, DarkensAtOnceWhenPressed) {
  QTest::mousePress(&_button, Qt::LeftButton, {}, QPoint(10, 10));
  EXPECT_EQ(_button.shownFill(), blended(kGreen, 0.22, Qt::black));
}

TEST_F(AmbrelButtonTest, ReleasedInsideStaysHoveredAndActs) {
  QSignalSpy clicks(&_button, &AmbrelButton::clicked);
  QTest::mousePress(&_button, Qt::LeftButton, {}, QPoint(10, 10));
  QTest::mouseRelease(&_button, Qt::LeftButton, {}, QPoint(10, 10));
  EXPECT_EQ(_button.shadow().opacity, 0.32);
  EXPECT_EQ(clicks.count(), 1);
}

TEST_F(AmbrelButtonTest, ReleasedOutsideIsNotHoveredAndDoesNotAct) {
  QSignalSpy clicks(&_button, &AmbrelButton::clicked);
  enter();
  QTest::mousePress(&_button, Qt::LeftButton, {}, QPoint(10, 10));
  QTest::mouseRelease(&_button, Qt::LeftButton, {}, QPoint(10, 90));
  EXPECT_EQ(_button.shadow().opacity, 0.14);
  EXPECT_EQ(clicks.count(), 0);
}

TEST_F(AmbrelButtonTest, DisabledWhilePressedIsNotPressedWhenEnabledAgain) {
  QTest::mousePress(&_button, Qt::LeftButton, {}, QPoint(10, 10));
  _button.setEnabled(false);
  _button.setEnabled(true);
  EXPECT_EQ(_button.shownFill(), kGreen);
}

TEST_F(AmbrelButtonTest, IgnoresAPressOfTheRightMouseButton) {
  QTest::mousePress(&_button, Qt::RightButton, {}, QPoint(10, 10));
  EXPECT_EQ(_button.shownFill(), kGreen);
}

TEST_F(AmbrelButtonTest, FadesTheFillOver150Milliseconds) {
  enter();
  EXPECT_NE(_button.shownFill(), blended(kGreen, 0.14, Qt::white));
  EXPECT_EQ(AmbrelButton::kFadeDuration, std::chrono::milliseconds(150));
}

TEST_F(AmbrelButtonTest, BorderlessCastsNoShadow) {
  _button.setBorderless(true);
  EXPECT_EQ(_button.shadow(), Shadow{});
}

TEST_F(AmbrelButtonTest, ActsOnTheSpaceBarToo) {
  QSignalSpy clicks(&_button, &AmbrelButton::clicked);
  QTest::keyClick(&_button, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 1);
}

}  // namespace
}  // namespace ambrel::ui
