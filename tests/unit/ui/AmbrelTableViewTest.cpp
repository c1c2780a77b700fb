// SPDX-License-Identifier: Apache-2.0
#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStringListModel>
#include <QTest>
#include <gtest/gtest.h>

#include "ui/AmbrelTableView.h"
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

class AmbrelTableViewTest : public ::testing::Test {
 protected:
  AmbrelTableViewTest() {
    QStringList names;
    for (int i = 0; i < 100; ++i)
      names << QString::number(i);
    _model.setStringList(names);
    _view.setModel(&_model);
    _view.resize(300, 200);
    _view.show();
  }
  QPoint middleOf(int row) const {
    return {_view.viewport()->width() - 20, _view.rowViewportPosition(row) + _view.rowHeight(row) / 2};
  }
  QColor colorAt(QPoint place) { return _view.viewport()->grab().toImage().pixelColor(place); }

  QStringListModel _model;
  AmbrelTableView _view;
};

TEST_F(AmbrelTableViewTest, UsesTheSystemsSelectionColourUnlessGivenOne) {
  _view.selectDisplayRows({1}, false);
  EXPECT_EQ(colorAt(middleOf(1)).name(), Palette::selectedContentBackground().name());
  _view.setAmbrelSelectionColor(Palette().brandColor());
  EXPECT_EQ(colorAt(middleOf(1)).name(), Palette().brandColor().name());
}

TEST_F(AmbrelTableViewTest, LeavesTheEdgesOfASelectedRowFree) {
  _view.setAmbrelSelectionColor(Qt::red);
  _view.selectDisplayRows({2}, false);
  const int middle = middleOf(2).y();
  EXPECT_NE(colorAt({2, middle}).name(), QColor(Qt::red).name());
  EXPECT_EQ(colorAt({20, middle}).name(), QColor(Qt::red).name());
  EXPECT_NE(colorAt({20, _view.rowViewportPosition(2)}).name(), QColor(Qt::red).name());
}

TEST_F(AmbrelTableViewTest, AlternatesTheBackgroundsOfOtherRows) {
  EXPECT_NE(colorAt(middleOf(0)), colorAt(middleOf(1)));
  EXPECT_EQ(colorAt(middleOf(0)), colorAt(middleOf(2)));
}

TEST_F(AmbrelTableViewTest, TheHeaderReachesOverTheScrollBar) {
  const QScrollBar* bar = _view.verticalScrollBar();
  ASSERT_TRUE(bar->isVisible());
  const int header = _view.horizontalHeader()->height();
  EXPECT_GE(bar->mapTo(&_view, QPoint()).y(), header);
  const QImage picture = _view.grab().toImage();
  EXPECT_EQ(picture.pixelColor(bar->mapTo(&_view, QPoint(4, 0)).x(), header / 2).name(),
            Palette().softPanelColor().name());
}

TEST_F(AmbrelTableViewTest, HasRowsOf34PointsWithTwoBetween) {
  EXPECT_EQ(_view.rowHeight(0), 36);
}

TEST_F(AmbrelTableViewTest, SelectsExactlyTheGivenRowsWithoutReportingThem) {
  QSignalSpy reports(&_view, &AmbrelTableView::selectionChangedByOperator);
  _view.selectDisplayRows({1, 2, 5}, false);
  EXPECT_EQ(_view.selectedDisplayRows(), (std::vector<qint64>{1, 2, 5}));
  _view.selectDisplayRows({}, false);
  EXPECT_TRUE(_view.selectedDisplayRows().empty());
  EXPECT_EQ(reports.count(), 0);
}

TEST_F(AmbrelTableViewTest, ScrollsToTheSelectionOnlyWhenAskedTo) {
  _view.selectDisplayRows({90}, false);
  EXPECT_FALSE(_view.viewport()->rect().contains(middleOf(90)));
  _view.selectDisplayRows({90}, true);
  EXPECT_TRUE(_view.viewport()->rect().contains(middleOf(90)));
}

TEST_F(AmbrelTableViewTest, ReportsWhatTheOperatorSelects) {
  QSignalSpy reports(&_view, &AmbrelTableView::selectionChangedByOperator);
  QTest::mouseClick(_view.viewport(), Qt::LeftButton, {}, QPoint(20, middleOf(1).y()));
  EXPECT_EQ(_view.selectedDisplayRows(), std::vector<qint64>{1});
  QTest::mouseClick(_view.viewport(), Qt::LeftButton, Qt::ControlModifier, QPoint(20, middleOf(3).y()));
  EXPECT_EQ(_view.selectedDisplayRows(), (std::vector<qint64>{1, 3}));
  EXPECT_EQ(reports.count(), 2);
}

}  // namespace
}  // namespace ambrel::ui
