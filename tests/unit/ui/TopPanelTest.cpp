// SPDX-License-Identifier: Apache-2.0
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "core/base/PosixFiles.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"
#include "ui/TopPanel.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

class TopPanelTest : public ::testing::Test {
 protected:
  TopPanelTest() {
    _panel.resize(1228, 78);
    _panel.show();
    QObject::connect(&_panel, &TopPanel::counterEdited, &_panel,
                     [this](const QString& text) { _settings.setCounterText(text); });
  }
  StatusCard* cardAt(const QRect& place) {
    for (StatusCard* card : _panel.findChildren<StatusCard*>())
      if (card->geometry() == place) return card;
    return nullptr;
  }

  const layout::TopPanel _places = layout::topPanel({1228, 78});
  QTemporaryDir _folder;
  TestClock _clock;
  PosixFiles _files;
  ScriptedOperator _operator;
  StatusLine _statusLine{_clock, [] { return Readiness(); }};
  CaptureSettings _settings;
  StorageMonitor _storage{_clock, _files, _operator, [this] { return _folder.path(); }};
  TopPanel _panel{_statusLine, _storage, _settings, nullptr};
};

TEST_F(TopPanelTest, StartsWithPlaceholdersInItsCards) {
  EXPECT_EQ(cardAt(_places.cameraCard)->valueText(), QStringLiteral("● —"));
  EXPECT_EQ(cardAt(_places.storageCard)->valueText(), QStringLiteral("Checking..."));
  EXPECT_EQ(cardAt(_places.backupCard)->valueText(), QStringLiteral("—"));
  EXPECT_EQ(_panel.counterField()->text(), QStringLiteral("1"));
}

TEST_F(TopPanelTest, ShowsTheStatusWithADotInTheColourOfItsKind) {
  const StatusCard* card = cardAt(_places.readinessCard);
  _statusLine.setStatus(QStringLiteral("Capturing"), StatusKind::Watching);
  EXPECT_EQ(card->valueText(), QStringLiteral("● Capturing"));
  EXPECT_EQ(card->valueColor(), Palette().greenColor());
  _statusLine.setStatus(QStringLiteral("Camera error"), StatusKind::Error);
  EXPECT_EQ(card->valueColor(), Palette().redColor());
}

TEST_F(TopPanelTest, ShowsTheCameraPill) {
  ControlStates states;
  states.pill = {QStringLiteral("Connected"), PillColor::Green, QStringLiteral("Camera: Connected")};
  _panel.updateControls(states);
  EXPECT_EQ(cardAt(_places.cameraCard)->valueText(), QStringLiteral("● Connected"));
  EXPECT_EQ(cardAt(_places.cameraCard)->valueColor(), Palette().greenColor());
}

TEST_F(TopPanelTest, ColoursTheStorageCardByItsLevel) {
  const Palette palette;
  EXPECT_EQ(storageCardLook(StorageLevel::Unknown, palette),
            (StorageCardLook{palette.orangeColor(), palette.storageUnknownFill()}));
  EXPECT_EQ(storageCardLook(StorageLevel::Critical, palette),
            (StorageCardLook{palette.redColor(), palette.storageCriticalFill()}));
  EXPECT_EQ(storageCardLook(StorageLevel::Low, palette),
            (StorageCardLook{palette.yellowColor(), palette.storageLowFill()}));
  EXPECT_EQ(storageCardLook(StorageLevel::Healthy, palette),
            (StorageCardLook{palette.greenColor(), palette.cardBackgroundColor()}));
}

TEST_F(TopPanelTest, ColoursThePillByItsState) {
  const Palette palette;
  EXPECT_EQ(pillColor(PillColor::Green, palette), palette.greenColor());
  EXPECT_EQ(pillColor(PillColor::Orange, palette), palette.orangeColor());
  EXPECT_EQ(pillColor(PillColor::Red, palette), palette.redColor());
  EXPECT_EQ(pillColor(PillColor::Secondary, palette), Palette::secondaryLabelColor());
}

TEST_F(TopPanelTest, TheCounterTakesDigitsOnly) {
  _panel.counterField()->selectAll();
  QTest::keyClicks(_panel.counterField(), QStringLiteral("1a2b"));
  EXPECT_EQ(_panel.counterField()->text(), QStringLiteral("12"));
  EXPECT_EQ(_settings.counterText(), QStringLiteral("12"));
}

TEST_F(TopPanelTest, TheCounterFollowsThePhotosTaken) {
  _settings.advanceCounterPast(41);
  EXPECT_EQ(_panel.counterField()->text(), QStringLiteral("42"));
}

TEST_F(TopPanelTest, LocksTheCounterWhileAConnectIsPending) {
  ControlStates states;
  states.setupUnlocked = false;
  _panel.updateControls(states);
  EXPECT_FALSE(_panel.counterField()->isEnabled());
}

TEST_F(TopPanelTest, ItsButtonsAskForReconnectingAndForTheSettings) {
  QSignalSpy reconnects(&_panel, &TopPanel::forceReconnectRequested);
  QSignalSpy settings(&_panel, &TopPanel::settingsRequested);
  for (AmbrelButton* button : _panel.findChildren<AmbrelButton*>())
    QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(reconnects.count(), 1);
  EXPECT_EQ(settings.count(), 1);
  EXPECT_EQ(_panel.gearButton()->geometry(), _places.gearButton);
}

TEST_F(TopPanelTest, TheBackupCardSaysHowTheBackupStands) {
  _panel.showBackup({QStringLiteral("3 queued"), BackupColor::Orange});
  EXPECT_EQ(cardAt(_places.backupCard)->valueText(), QStringLiteral("3 queued"));
  EXPECT_EQ(cardAt(_places.backupCard)->valueColor(), Palette().orangeColor());
  _panel.showBackup({QStringLiteral("Off"), BackupColor::Secondary});
  EXPECT_EQ(cardAt(_places.backupCard)->valueColor(), Palette::secondaryLabelColor());
}

}  // namespace
}  // namespace ambrel::ui
