// SPDX-License-Identifier: Apache-2.0
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "core/base/PosixFiles.h"
#include "support/EventLoop.h"
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

TEST_F(MainWindowTest, RemembersItsSizeAndItsDivider) {
  _window.resize(790, 700);
  QCoreApplication::processEvents();
  _window.splitView()->setSizes({350, 10000});
  Q_EMIT _window.splitView()->splitterMoved(350, 1);
  const QSize content = _window.centralWidget()->size();
  const int left = _window.splitView()->sizes().front();
  EXPECT_EQ(_delegate.windowPlacement(), layout::placementText({content, left}));

  MainWindow again(_delegate);
  again.installMainMenu(QStringLiteral("7.04"));
  again.buildUI(QStringLiteral("7.04"));
  again.showWindow();
  EXPECT_EQ(again.centralWidget()->size(), content);
  EXPECT_EQ(again.splitView()->sizes().front(), left);
}

TEST_F(MainWindowTest, TheDividerStopsAt330FromTheLeftAnd360FromTheRight) {
  QSplitter* split = _window.splitView();
  split->setSizes({200, 10000});
  EXPECT_EQ(split->sizes().front(), 330);
  split->setSizes({10000, 300});
  EXPECT_EQ(split->sizes().back(), 360);
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
  field->setFocus();
  field->setText(QStringLiteral("Anna"));
  QTest::keyClick(field, Qt::Key_Left);
  EXPECT_EQ(field->cursorPosition(), 3);
}

TEST_F(MainWindowTest, LeftAndRightStepThePreviewOutsideTextFields) {
  const auto write = [this](const char* name, qint64 seconds) {
    QImage photo(30, 20, QImage::Format_RGB32);
    photo.fill(Qt::red);
    const QString path = _home.filePath(QLatin1String(name));
    EXPECT_TRUE(photo.save(path));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds), QFileDevice::FileModificationTime));
    return path;
  };
  const auto labelIs = [this](const QString& label) {
    return runEventsUntil([&] { return _window.rightPane()->label() == label; });
  };
  write("a.jpg", 1000);
  _delegate.preview().showPreviewPath(write("b.jpg", 2000), PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(labelIs(QStringLiteral("b.jpg  (2/2)")));
  QTest::keyClick(_window.leftPane()->table(), Qt::Key_Left);
  EXPECT_TRUE(labelIs(QStringLiteral("a.jpg  (1/2)")));
  QTest::keyClick(_window.leftPane()->table(), Qt::Key_Right);
  EXPECT_TRUE(labelIs(QStringLiteral("b.jpg  (2/2)")));
}

TEST_F(MainWindowTest, RevealingWithoutAPhotoBeeps) {
  Q_EMIT _window.rightPane()->revealRequested();
  EXPECT_EQ(_operator.beeps, 1);
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
  EXPECT_FALSE(action(Command::Cut)->isEnabled());
  action(Command::SelectAll)->trigger();
  EXPECT_EQ(_delegate.list().tableSelection().size(), 2U);
  _window.leftPane()->searchField()->setFocus();
  EXPECT_TRUE(action(Command::Cut)->isEnabled());
  _window.leftPane()->searchField()->setText(QStringLiteral("x"));
  action(Command::SelectAll)->trigger();
  EXPECT_EQ(_window.leftPane()->searchField()->selectedText(), QStringLiteral("x"));
}

TEST_F(MainWindowTest, CopyAndPasteServeTheListUnlessATextIsBeingEdited) {
  fill({{"Anna", "front row"}});
  _window.leftPane()->table()->setFocus();
  action(Command::Copy)->trigger();
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Anna\tfront row"));
  QApplication::clipboard()->setText(QStringLiteral("Ben\nCara\tlate"));
  action(Command::Paste)->trigger();
  EXPECT_EQ(_delegate.list().grid().rowCount(), 3);
  EXPECT_EQ(_delegate.list().selectedRow(), 1);

  QApplication::clipboard()->setText(QStringLiteral("an"));
  _window.leftPane()->searchField()->setFocus();
  action(Command::Paste)->trigger();
  EXPECT_EQ(_delegate.list().grid().rowCount(), 3);
  EXPECT_EQ(_window.leftPane()->searchField()->text(), QStringLiteral("an"));
}

TEST_F(MainWindowTest, CopyingWithoutARowBeepsAndLeavesTheClipboard) {
  QApplication::clipboard()->setText(QStringLiteral("kept"));
  action(Command::Copy)->trigger();
  EXPECT_EQ(_operator.beeps, 1);
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("kept"));
}

TEST_F(MainWindowTest, TheResetButtonForgetsTheList) {
  fill({{"Anna"}, {"Ben"}});
  _operator.willAnswer(0);
  Q_EMIT _window.settingsPopover()->resetRequested();
  EXPECT_EQ(_delegate.list().grid().rowCount(), 0);
  EXPECT_FALSE(_window.leftPane()->table()->isVisible());
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

TEST_F(MainWindowTest, TheBackupMenuAsksForAFolderAndKeepsItsCheckMarkTrue) {
  _operator.willChoose(QString());
  action(Command::ToggleBackup)->trigger();
  EXPECT_EQ(_operator.requests.size(), 1U);
  EXPECT_FALSE(action(Command::ToggleBackup)->isChecked());
  action(Command::BackUpMissingFiles)->trigger();
  ASSERT_FALSE(_operator.alerts.empty());
  EXPECT_EQ(_operator.alerts.back().title, QStringLiteral("Backup Not Set Up"));
}

TEST_F(MainWindowTest, AChosenBackupFolderShowsInTheMenuTheSettingsAndTheCard) {
  ASSERT_TRUE(QDir(_home.path()).mkdir(QStringLiteral("Copies")));
  _operator.willChoose(_home.filePath(QStringLiteral("Copies")));
  action(Command::ChooseBackupFolder)->trigger();
  EXPECT_TRUE(action(Command::ToggleBackup)->isChecked());
  EXPECT_EQ(action(Command::ToggleBackup)->text(), QStringLiteral("Backup Copy: On"));
  QStringList texts;
  for (const TextLabel* label : _window.findChildren<TextLabel*>())
    texts << label->text();
  EXPECT_TRUE(texts.contains(QStringLiteral("Up to date"))) << texts.join(QLatin1Char('|')).toStdString();
}

TEST_F(MainWindowTest, EveryControlHasANameForThoseWhoCannotSeeIt) {
  fill({{"Anna"}});
  for (QWidget* widget : _window.findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith(QLatin1String("qt_")))
      continue;
    if (widget == _window.centralWidget() || widget == _window.settingsPopover()) continue;
    const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
    ASSERT_TRUE(face);
    EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << widget->metaObject()->className();
  }
}

// This and the next are also run with the larger text that a desktop may ask for.
TEST_F(MainWindowTest, GrowsWithTheTextOfTheDesktop) {
  const int dpi =
      qEnvironmentVariableIsSet("AMBREL_TEXT_DPI") ? qEnvironmentVariableIntValue("AMBREL_TEXT_DPI") : 96;
  EXPECT_DOUBLE_EQ(_window.devicePixelRatioF(), dpi / 96.0);
  EXPECT_EQ(_window.centralWidget()->size(), layout::kInitialContent);
}

TEST_F(MainWindowTest, EveryTextFitsItsControlOrStandsWholeInItsToolTip) {
  fill({{"Anna", "note", "2", "1"}, {"Ben"}});
  _window.settingsPopover()->toggleSettingsPopover(_window.topPanel()->gearButton());
  _window.settingsPopover()->showBackup(
      QStringLiteral("/media/drive"),
      {QStringLiteral("Backup ⚠ 1234"), BackupColor::Red, QStringLiteral("Waiting")}, {});
  for (const QSize size : {_window.minimumSizeHint(), layout::kInitialContent}) {
    _window.resize(size);
    QCoreApplication::processEvents();
    int texts = 0;
    const auto check = [&](const QWidget& control, const QString& text) {
      if (!control.isVisible() || text.isEmpty()) return;
      ++texts;
      const QFontMetrics metrics(control.font());
      EXPECT_LE(metrics.height(), control.height() + 1) << text.toStdString();
      if (control.toolTip().contains(text)) return;
      EXPECT_LE(metrics.horizontalAdvance(text), control.width()) << text.toStdString();
    };
    for (const AmbrelButton* button : _window.findChildren<AmbrelButton*>())
      if (!button->showsSymbol()) check(*button, button->text());
    for (const TextLabel* label : _window.findChildren<TextLabel*>())
      check(*label, label->text());
    EXPECT_GT(texts, 25);
  }
}

TEST_F(MainWindowTest, ScreenReadersHearTheRowsAndWhichOneIsSelected) {
  fill({{"Anna", "front row", "2", "1"}, {"Ben"}, {"Cara"}});
  QAccessibleInterface* table = QAccessible::queryAccessibleInterface(_window.leftPane()->table());
  ASSERT_TRUE(table && table->tableInterface());
  EXPECT_EQ(table->role(), QAccessible::Table);
  EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Names"));
  EXPECT_EQ(table->tableInterface()->rowCount(), 3);
  const auto cell = [&](int row, NameColumn column) {
    return table->tableInterface()->cellAt(row, static_cast<int>(column));
  };
  EXPECT_EQ(cell(0, NameColumn::Marker)->text(QAccessible::Name), QStringLiteral("🚩📝"));
  EXPECT_EQ(cell(1, NameColumn::Name)->text(QAccessible::Name), QStringLiteral("Ben"));
  EXPECT_EQ(cell(0, NameColumn::Count)->text(QAccessible::Name), QStringLiteral("2"));
  EXPECT_TRUE(cell(0, NameColumn::Name)->state().selected);
  EXPECT_FALSE(cell(1, NameColumn::Name)->state().selected);
  _delegate.list().moveGridSelectionBy(1);
  EXPECT_TRUE(cell(1, NameColumn::Name)->state().selected);
}

TEST_F(MainWindowTest, ScreenReadersHearWhatCannotBeUsedNow) {
  const auto isDisabled = [](AmbrelButton* button) {
    return QAccessible::queryAccessibleInterface(button)->state().disabled != 0;
  };
  EXPECT_TRUE(isDisabled(_window.rightPane()->previousButton()));
  EXPECT_TRUE(isDisabled(_window.rightPane()->nextButton()));
  EXPECT_FALSE(isDisabled(_window.topPanel()->gearButton()));
}

TEST_F(MainWindowTest, TheTabKeyReachesEveryControl) {
  fill({{"Anna"}});
  _window.activateWindow();
  _window.leftPane()->searchField()->setFocus();
  QSet<QWidget*> reached;
  for (int presses = 0; presses < 60; ++presses) {
    reached.insert(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  const auto expectReached = [&](QWidget* control) {
    if (!control->isVisible() || !control->isEnabled()) return;
    EXPECT_TRUE(reached.contains(control)) << control->toolTip().toStdString();
  };
  for (QWidget* button : _window.findChildren<AmbrelButton*>())
    expectReached(button);
  for (QWidget* field : _window.findChildren<QLineEdit*>())
    expectReached(field);
  EXPECT_TRUE(reached.contains(_window.leftPane()->table()));
}

TEST_F(MainWindowTest, ShowsWhereTheFocusIsExceptOnTheSearchAndTheCounter) {
  fill({{"Anna", "note"}});
  _window.rightPane()->updateControls(true, true);
  _window.activateWindow();
  QCoreApplication::processEvents();
  // What lies at a control's own edge, and not a cursor or a selection within.
  const auto edge = [](QWidget* control) {
    const QImage picture = control->grab().toImage();
    QList<QRgb> pixels;
    for (int y = 0; y < picture.height(); ++y)
      for (const int x : {0, 1, picture.width() - 2, picture.width() - 1})
        pixels << picture.pixel(x, y);
    return pixels;
  };
  const auto focusShowsAtTheEdgeOf = [&](QWidget* control) {
    _window.centralWidget()->setFocus();
    const QList<QRgb> without = edge(control);
    control->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(control->hasFocus());
    return edge(control) != without;
  };
  for (AmbrelButton* button : _window.findChildren<AmbrelButton*>()) {
    if (!button->isVisible() || !button->isEnabled()) continue;
    EXPECT_TRUE(focusShowsAtTheEdgeOf(button)) << button->text().toStdString();
  }
  EXPECT_TRUE(focusShowsAtTheEdgeOf(_window.leftPane()->table()));
  EXPECT_TRUE(focusShowsAtTheEdgeOf(_window.leftPane()->noteField()));
  EXPECT_FALSE(focusShowsAtTheEdgeOf(_window.leftPane()->searchField()));
  EXPECT_FALSE(focusShowsAtTheEdgeOf(_window.topPanel()->counterField()));
}

TEST_F(MainWindowTest, ClosingTheWindowEndsTheApplication) {
  EXPECT_TRUE(_window.testAttribute(Qt::WA_QuitOnClose));
}

}  // namespace
}  // namespace ambrel::ui
