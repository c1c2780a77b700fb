// SPDX-License-Identifier: Apache-2.0
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "support/ScriptedOperator.h"
#include "support/TestClock.h"
#include "ui/Palette.h"
#include "ui/SettingsPopover.h"

namespace ambrel::ui {
namespace {

class SettingsPopoverTest : public ::testing::Test {
 protected:
  SettingsPopoverTest() {
    _window.resize(760, 650);
    _gear.setGeometry(680, 20, 46, 46);
    _window.show();
    _popover.updateControls({});
  }
  void defineTags(std::initializer_list<std::pair<const char*, bool>> tags) {
    QVariantList stored;
    for (const auto& [label, on] : tags) {
      stored << QVariantMap{{QStringLiteral("label"), QLatin1String(label)},
                            {QStringLiteral("suffix"), QLatin1Char('_') + QLatin1String(label)},
                            {QStringLiteral("on"), on}};
    }
    _preferences.setSuffixes(stored);
    _tags.loadSuffixes();
    Q_EMIT _tags.listReplaced();
  }
  AmbrelButton* button(const QString& title) {
    for (AmbrelButton* candidate : _popover.findChildren<AmbrelButton*>())
      if (candidate->text() == title && candidate->isVisibleTo(&_popover)) return candidate;
    return nullptr;
  }
  void open() { _popover.toggleSettingsPopover(&_gear); }

  QTemporaryDir _home;
  TestClock _clock;
  ScriptedOperator _operator;
  Preferences _preferences{_home.filePath(QStringLiteral("preferences.ini"))};
  StatusLine _statusLine{_clock, [] { return Readiness(); }};
  Tags _tags{_preferences, _operator, _statusLine};
  CaptureSettings _settings;
  Surface _window;
  AmbrelButton _gear{&_window};
  SettingsPopover _popover{_settings, _tags, &_window};
};

TEST_F(SettingsPopoverTest, OpensBelowTheGearInsideTheWindowAndClosesOnTheNextClick) {
  open();
  EXPECT_TRUE(_popover.isVisible());
  EXPECT_TRUE(_window.rect().contains(_popover.geometry()));
  EXPECT_GT(_popover.y(), _gear.geometry().bottom());
  open();
  EXPECT_FALSE(_popover.isVisible());
}

TEST_F(SettingsPopoverTest, EndsWhereTheCardOfItsGearEnds) {
  Surface card(&_window);
  card.setGeometry(16, 8, _window.width() - 32, 78);
  AmbrelButton gear(&card);
  gear.setGeometry(card.width() - 62, 16, 46, 46);
  _popover.toggleSettingsPopover(&gear);
  const QRect rightmost = button(QStringLiteral("↻ Reset workflow"))->geometry().translated(_popover.pos());
  EXPECT_EQ(rightmost.x() + rightmost.width(), _window.width() - 16 - 16);
}

TEST_F(SettingsPopoverTest, ClosesOnAClickOutsideAndOnEscape) {
  open();
  QTest::mouseClick(&_popover, Qt::LeftButton, {}, QPoint(30, 30));
  EXPECT_TRUE(_popover.isVisible());
  QTest::mouseClick(&_window, Qt::LeftButton, {}, QPoint(10, 600));
  EXPECT_FALSE(_popover.isVisible());
  open();
  QTest::keyClick(&_popover, Qt::Key_Escape);
  EXPECT_FALSE(_popover.isVisible());
}

TEST_F(SettingsPopoverTest, ShowsTheTargetFolderWithATildeForTheHomeFolder) {
  const QString home = QStringLiteral("/home/kim");
  EXPECT_EQ(abbreviatedPath(QStringLiteral("/home/kim/Photos"), home), QStringLiteral("~/Photos"));
  EXPECT_EQ(abbreviatedPath(home, home), QStringLiteral("~"));
  EXPECT_EQ(abbreviatedPath(QStringLiteral("/home/kimberly/Photos"), home),
            QStringLiteral("/home/kimberly/Photos"));
}

TEST_F(SettingsPopoverTest, FollowsTheTargetFolder) {
  const auto label = [this](const QString& text) {
    for (const TextLabel* candidate : _popover.findChildren<TextLabel*>())
      if (candidate->text() == text) return candidate;
    return static_cast<const TextLabel*>(nullptr);
  };
  EXPECT_TRUE(label(QStringLiteral("No folder chosen")));
  _settings.setTargetDir(QStringLiteral("/media/Photos"));
  ASSERT_TRUE(label(QStringLiteral("/media/Photos")));
  EXPECT_EQ(label(QStringLiteral("/media/Photos"))->toolTip(), QStringLiteral("/media/Photos"));
}

TEST_F(SettingsPopoverTest, AsksForAFolderAndStaysOpen) {
  QSignalSpy requests(&_popover, &SettingsPopover::selectFolderRequested);
  open();
  QTest::mouseClick(button(QStringLiteral("Change…")), Qt::LeftButton);
  EXPECT_EQ(requests.count(), 1);
  EXPECT_TRUE(_popover.isVisible());
}

TEST_F(SettingsPopoverTest, HighlightsTheDestinationAndReportsAnother) {
  QSignalSpy chosen(&_popover, &SettingsPopover::destinationSelected);
  EXPECT_EQ(button(QStringLiteral("Both"))->ambrelBaseColor(), Palette().brandColor());
  EXPECT_EQ(button(QStringLiteral("Card"))->ambrelBaseColor(), Palette().grayColor());
  QTest::mouseClick(button(QStringLiteral("Card")), Qt::LeftButton);
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen[0][0].toInt(), 2);
  ControlStates states;
  states.saveModeIndex = 2;
  _popover.updateControls(states);
  EXPECT_EQ(button(QStringLiteral("Card"))->ambrelBaseColor(), Palette().brandColor());
}

TEST_F(SettingsPopoverTest, HasNoTagButtonsAtFirstLaunch) {
  EXPECT_TRUE(_tags.suffixes().empty());
  EXPECT_TRUE(button(QStringLiteral("Edit…")));
}

TEST_F(SettingsPopoverTest, ShowsTagsGreenWhenOnAndGrayWhenOff) {
  defineTags({{"FR", true}, {"SS", false}});
  EXPECT_EQ(button(QStringLiteral("FR"))->ambrelBaseColor(), Palette().greenColor());
  EXPECT_EQ(button(QStringLiteral("SS"))->ambrelBaseColor(), Palette().grayColor());
  EXPECT_EQ(button(QStringLiteral("FR"))->toolTip(),
            QStringLiteral("Appends \"_FR\" to the folder name when on"));
}

TEST_F(SettingsPopoverTest, AClickTogglesATag) {
  defineTags({{"FR", false}, {"SS", false}});
  QTest::mouseClick(button(QStringLiteral("SS")), Qt::LeftButton);
  EXPECT_TRUE(_tags.suffixes()[1].on);
  EXPECT_EQ(button(QStringLiteral("SS"))->ambrelBaseColor(), Palette().greenColor());
  QTest::mouseClick(button(QStringLiteral("SS")), Qt::LeftButton);
  EXPECT_FALSE(_tags.suffixes()[1].on);
}

TEST_F(SettingsPopoverTest, OpensTheTagEditor) {
  _operator.willAnswer(1);
  QTest::mouseClick(button(QStringLiteral("Edit…")), Qt::LeftButton);
  ASSERT_EQ(_operator.questions.size(), 1U);
  EXPECT_EQ(_operator.questions[0].title, QStringLiteral("Customize Suffixes"));
}

TEST_F(SettingsPopoverTest, RebuildsTheTagButtonsWhenTheTagsAreReplaced) {
  defineTags({{"FR", false}, {"SS", false}});
  defineTags({{"AM", false}});
  EXPECT_FALSE(button(QStringLiteral("FR")));
  EXPECT_TRUE(button(QStringLiteral("AM")));
}

TEST_F(SettingsPopoverTest, ShowsTheBackupFolderAndItsButton) {
  EXPECT_EQ(button(QStringLiteral("Backup: Off"))->ambrelBaseColor(), Palette().grayColor());
  _popover.showBackup(QStringLiteral("/media/Backup"),
                      {QStringLiteral("Backup 75%"), BackupColor::Orange, QStringLiteral("Backup to …")}, {});
  EXPECT_EQ(button(QStringLiteral("Backup 75%"))->ambrelBaseColor(), Palette().orangeColor());
  EXPECT_EQ(button(QStringLiteral("Backup 75%"))->toolTip(), QStringLiteral("Backup to …"));
  bool shown = false;
  for (const TextLabel* label : _popover.findChildren<TextLabel*>())
    shown |= label->text() == QStringLiteral("/media/Backup");
  EXPECT_TRUE(shown);
}

TEST_F(SettingsPopoverTest, TheBackupButtonPopsUpItsMenu) {
  QSignalSpy choose(&_popover, &SettingsPopover::chooseBackupFolderRequested);
  QSignalSpy toggle(&_popover, &SettingsPopover::toggleBackupRequested);
  _popover.showBackup({}, {QStringLiteral("Backup: Off"), BackupColor::Gray, {}},
                      {QStringLiteral("Choose Backup Folder…"), {}});
  open();
  QTest::mouseClick(button(QStringLiteral("Backup: Off")), Qt::LeftButton);
  ASSERT_TRUE(_popover.backupMenu());
  ASSERT_EQ(_popover.backupMenu()->actions().size(), 1);
  _popover.backupMenu()->actions()[0]->trigger();
  _popover.backupMenu()->close();
  _popover.showBackup(
      QStringLiteral("/media/A & B"), {QStringLiteral("Backup ✓"), BackupColor::Green, {}},
      {QStringLiteral("Change Backup Folder…  (now: A & B)"), QStringLiteral("Turn Backup Off")});
  QTest::mouseClick(button(QStringLiteral("Backup ✓")), Qt::LeftButton);
  ASSERT_EQ(_popover.backupMenu()->actions().size(), 2);
  EXPECT_EQ(_popover.backupMenu()->actions()[0]->text(),
            QStringLiteral("Change Backup Folder…  (now: A && B)"));
  _popover.backupMenu()->actions()[1]->trigger();
  EXPECT_EQ(choose.count(), 1);
  EXPECT_EQ(toggle.count(), 1);
}

TEST_F(SettingsPopoverTest, LocksWhatChangesWherePhotosGoWhileAConnectIsPending) {
  defineTags({{"FR", true}});
  ControlStates states;
  states.setupUnlocked = false;
  _popover.updateControls(states);
  // The backup can be seen to at any time.
  for (const AmbrelButton* each : _popover.findChildren<AmbrelButton*>())
    EXPECT_EQ(each->isEnabled(), each->text() == QStringLiteral("Backup: Off")) << each->text().toStdString();
}

}  // namespace
}  // namespace ambrel::ui
