// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "core/base/PosixFiles.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"
#include "support/TestLink.h"
#include "ui/MainWindow.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

class MainWindowTest : public ::testing::Test {
 protected:
  MainWindowTest() {
    _delegate.applicationDidFinishLaunching(_window);
    _clock.advance(AmbrelAppDelegate::kSplashTime);
  }
  ~MainWindowTest() override { _delegate.applicationWillTerminate(); }

  void fill(std::vector<Row> rows) {
    _delegate.list().editableGrid().replaceAll(std::move(rows));
    _delegate.list().selectSavedOrFirstCSVRow();
    _delegate.updateControls();
  }
  QAction* action(Command command) { return _window.menus().action(command); }

  QTemporaryDir _home;
  Locations _locations = Locations::below(_home.path());
  TestClock _clock;
  ScriptedOperator _operator;
  PosixFiles _files;
  TestLink _link;
  AmbrelAppDelegate _delegate{
      _clock, _operator, _files, _link, {_locations, Bundle(_home.path()), [](qint64) {}}};
  MainWindow _window{_delegate};
};

TEST_F(MainWindowTest, IsBuiltWithItsTitleAndSizesAfterTheSplash) {
  EXPECT_TRUE(_window.isBuilt());
  EXPECT_TRUE(_window.isVisible());
  EXPECT_EQ(_window.windowTitle(), QStringLiteral("Ambrel Photo Tether 7.04"));
  EXPECT_EQ(_window.centralWidget()->size(), layout::kInitialContent);
  EXPECT_EQ(_window.centralWidget()->minimumSize(), layout::kMinimumContent);
}

TEST_F(MainWindowTest, LaysItsPartsOutAgainWhenResized) {
  _window.resize(900, 700);
  QCoreApplication::processEvents();
  const layout::Window places = layout::window(_window.centralWidget()->size());
  EXPECT_EQ(_window.topPanel()->geometry(), places.topPanel);
  EXPECT_EQ(_window.splitView()->geometry(), places.splitView);
}

TEST_F(MainWindowTest, DividesThePanesInHalves) {
  const int width = _window.splitView()->width();
  EXPECT_EQ(_window.splitView()->sizes(), (QList<int>{layout::halves(width)[0], layout::halves(width)[1]}));
}

TEST_F(MainWindowTest, ArrowKeysMoveTheListEvenFromTheSearchField) {
  fill({{"Anna"}, {"Ben"}, {"Cara"}});
  QTest::keyClick(_window.leftPane()->searchField(), Qt::Key_Down);
  EXPECT_EQ(_delegate.list().selectedRow(), 1);
  QTest::keyClick(_window.leftPane()->searchField(), Qt::Key_Up);
  EXPECT_EQ(_delegate.list().selectedRow(), 0);
  EXPECT_EQ(_window.leftPane()->table()->selectedDisplayRows(), std::vector<qint64>{0});
}

TEST_F(MainWindowTest, TheDownArrowOnTheLastRowStaysThere) {
  fill({{"Anna"}, {"Ben"}});
  for (int i = 0; i < 3; ++i)
    QTest::keyClick(_window.leftPane()->table(), Qt::Key_Down);
  EXPECT_EQ(_delegate.list().selectedRow(), 1);
}

TEST_F(MainWindowTest, LeftAndRightMoveTheCursorInATextField) {
  QLineEdit* field = _window.leftPane()->searchField();
  field->setText(QStringLiteral("Anna"));
  QTest::keyClick(field, Qt::Key_Left);
  EXPECT_EQ(field->cursorPosition(), 3);
}

TEST_F(MainWindowTest, TheArrowKeysAreFreeAgainWhenTheMonitorIsRemoved) {
  fill({{"Anna"}, {"Ben"}});
  _window.removeKeyMonitor();
  QTest::keyClick(_window.leftPane()->searchField(), Qt::Key_Down);
  EXPECT_EQ(_delegate.list().selectedRow(), 0);
}

TEST_F(MainWindowTest, ImportAndExportRunFromTheMenu) {
  _operator.willChoose(QString());
  action(Command::ImportCSV)->trigger();
  EXPECT_EQ(_operator.requests.size(), 1U);
  action(Command::ExportList)->trigger();
  ASSERT_EQ(_operator.alerts.size(), 1U);
  EXPECT_EQ(_operator.alerts[0].title, QStringLiteral("Nothing to Export"));
}

TEST_F(MainWindowTest, TheAutoConnectItemFollowsTheSetting) {
  EXPECT_TRUE(action(Command::ToggleAutoConnect)->isChecked());
  action(Command::ToggleAutoConnect)->trigger();
  EXPECT_FALSE(action(Command::ToggleAutoConnect)->isChecked());
}

TEST_F(MainWindowTest, EditCommandsActOnTheFieldBeingEditedAndOnTheListOtherwise) {
  fill({{"Anna"}, {"Ben"}});
  _window.leftPane()->table()->setFocus();
  EXPECT_FALSE(action(Command::Paste)->isEnabled());
  action(Command::SelectAll)->trigger();
  EXPECT_EQ(_delegate.list().tableSelection().size(), 2U);
  _window.leftPane()->searchField()->setFocus();
  EXPECT_TRUE(action(Command::Paste)->isEnabled());
  _window.leftPane()->searchField()->setText(QStringLiteral("x"));
  action(Command::SelectAll)->trigger();
  EXPECT_EQ(_window.leftPane()->searchField()->selectedText(), QStringLiteral("x"));
}

TEST_F(MainWindowTest, AClickInTheTableMakesTheRowCurrentAndTheStatusReady) {
  fill({{"Anna"}, {"Ben"}});
  AmbrelTableView* table = _window.leftPane()->table();
  table->selectAll();
  EXPECT_EQ(_delegate.statusLine().text(), QStringLiteral("Selected: 2 rows — 0 photos total."));
  const QRect cell = table->visualRect(table->model()->index(1, 1));
  QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
  EXPECT_EQ(_delegate.list().selectedRow(), 1);
  EXPECT_EQ(_delegate.statusLine().text(), QStringLiteral("No folder"));
}

TEST_F(MainWindowTest, TheGearOpensTheSettings) {
  QTest::mouseClick(_window.topPanel()->gearButton(), Qt::LeftButton);
  EXPECT_TRUE(_window.settingsPopover()->isVisible());
  QTest::mouseClick(_window.topPanel()->gearButton(), Qt::LeftButton);
  EXPECT_FALSE(_window.settingsPopover()->isVisible());
}

TEST_F(MainWindowTest, ChoosingADestinationHighlightsIt) {
  Q_EMIT _window.settingsPopover()->destinationSelected(1);
  EXPECT_EQ(_delegate.settings().saveModeIndex(), 1);
}

TEST_F(MainWindowTest, ClosingTheWindowEndsTheApplication) {
  EXPECT_TRUE(_window.testAttribute(Qt::WA_QuitOnClose));
}

}  // namespace
}  // namespace ambrel::ui
