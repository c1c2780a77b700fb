// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/backup/BackupView.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

BackupState on(qint64 queued) {
  return {.enabled = true, .dir = "/Volumes/NAS/Copies", .queued = queued};
}

}  // namespace

TEST(BackupView, RoundsThePercentageWithHalvesUpwards) {
  EXPECT_EQ(backupBatchPercentage(0, 4), 0);
  EXPECT_EQ(backupBatchPercentage(3, 4), 75);
  EXPECT_EQ(backupBatchPercentage(1, 8), 13);
  EXPECT_EQ(backupBatchPercentage(1, 200), 1);
  EXPECT_EQ(backupBatchPercentage(1, 201), 0);
  EXPECT_EQ(backupBatchPercentage(4, 4), 100);
  EXPECT_EQ(backupBatchPercentage(5, 4), 125);
}

TEST(BackupView, SaysUpToDateForAnEmptyQueueWhateverElseHolds) {
  EXPECT_EQ(backupStateText({}), "up to date");
  EXPECT_EQ(backupStateText({.busy = true, .offline = true, .slow = true, .batchTotal = 3}), "up to date");
}

TEST(BackupView, SaysHowManyWaitAndWhy) {
  BackupState state = on(2);
  EXPECT_EQ(backupStateText(state), "2 waiting");
  state.busy = true;
  EXPECT_EQ(backupStateText(state), "copying…");
  state.slow = true;
  EXPECT_EQ(backupStateText(state), "2 left — slow network");
  state.offline = true;
  EXPECT_EQ(backupStateText(state), "2 waiting — drive offline");
}

TEST(BackupView, BeginsWithTheProgressOfABatch) {
  BackupState state = on(1);
  state.batchDone = 3;
  state.batchTotal = 4;
  EXPECT_EQ(backupStateText(state), "75% (3/4) · 1 waiting");
  state.busy = true;
  EXPECT_EQ(backupStateText(state), "75% (3/4) · copying…");
  state.slow = true;
  EXPECT_EQ(backupStateText(state), "75% (3/4) · 1 left — slow network");
  EXPECT_EQ(backupButtonLook(state).title, "Backup 75%");
}

TEST(BackupView, ShowsTheFirstButtonTitleThatApplies) {
  const QString toolTip =
      "Backup to /Volumes/NAS/Copies — 2 waiting — drive offline\nClick to change folder or turn off.";
  BackupState state = on(2);
  state.offline = true;
  state.batchTotal = 0;
  EXPECT_EQ(backupButtonLook(state), (BackupButtonLook{"Backup ⚠ 2", BackupColor::Red, toolTip}));
  state.offline = false;
  EXPECT_EQ(backupButtonLook(state).title, "Backup 2⏳");
  EXPECT_EQ(backupButtonLook(state).color, BackupColor::Orange);
  state.batchTotal = 3;
  state.batchDone = 1;
  EXPECT_EQ(backupButtonLook(state).title, "Backup 33%");
  EXPECT_EQ(backupButtonLook(state).color, BackupColor::Orange);
  EXPECT_EQ(backupButtonLook(on(0)).title, "Backup ✓");
  EXPECT_EQ(backupButtonLook(on(0)).color, BackupColor::Green);
  state.enabled = false;
  EXPECT_EQ(backupButtonLook(state).title, "Backup: Off");
  EXPECT_EQ(backupButtonLook(state).color, BackupColor::Gray);
}

TEST(BackupView, ExplainsTheButtonWhileBackupIsOffOrHasNoFolder) {
  const QString invitation = "Optional backup copy of every photo. Click to choose a folder.";
  EXPECT_EQ(backupButtonLook({}).toolTip, invitation);
  EXPECT_EQ(backupButtonLook({.enabled = true}).toolTip, invitation);
  EXPECT_EQ(backupButtonLook({.dir = "/Copies"}).toolTip, invitation);
}

TEST(BackupView, EnablesRetryOnlyWithPhotosThatWaitAndBackupOn) {
  EXPECT_EQ(backupMenuLook(on(2)),
            (BackupMenuLook{"Backup Copy: On", true, "Retry Backup Now (2 waiting)", true}));
  EXPECT_EQ(backupMenuLook(on(0)), (BackupMenuLook{"Backup Copy: On", true, "Retry Backup Now", false}));
  EXPECT_EQ(backupMenuLook({.queued = 1}),
            (BackupMenuLook{"Backup Copy: Off", false, "Retry Backup Now (1 waiting)", false}));
}

TEST(BackupView, ShowsTheQueueOnTheCard) {
  EXPECT_EQ(backupCardLook(on(3)), (BackupCardLook{"3 queued", BackupColor::Orange}));
  EXPECT_EQ(backupCardLook(on(0)), (BackupCardLook{"Up to date", BackupColor::Green}));
  EXPECT_EQ(backupCardLook({.enabled = true, .queued = 3}), (BackupCardLook{"Off", BackupColor::Secondary}));
  EXPECT_EQ(backupCardLook({.dir = "/Copies", .queued = 3}), (BackupCardLook{"Off", BackupColor::Secondary}));
}

TEST(BackupView, OffersTheSwitchInThePopUpOnlyWithAFolder) {
  EXPECT_EQ(backupPopUp({}), (BackupPopUp{"Choose Backup Folder…", ""}));
  EXPECT_EQ(backupPopUp(on(0)), (BackupPopUp{"Change Backup Folder…  (now: Copies)", "Turn Backup Off"}));
  EXPECT_EQ(backupPopUp({.dir = "/Copies/"}),
            (BackupPopUp{"Change Backup Folder…  (now: Copies)", "Turn Backup On"}));
}

TEST(BackupView, TellsWhyTheBackupPaused) {
  EXPECT_EQ(
      backupPausedMessage(1, "disk full"),
      "The backup drive isn't reachable: disk full, so 1 photo is waiting.\n\nYour primary save is fine. "
      "Backups resume automatically when the drive/Wi-Fi reconnects — or use Backup ▸ Retry Backup Now.");
  EXPECT_TRUE(backupPausedMessage(12, "").startsWith(
      "The backup drive isn't reachable, so 12 photos are waiting.\n\n"));
}
