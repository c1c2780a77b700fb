// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "unit/core/backup/BackupFixture.h"

using namespace ambrel;
using namespace std::chrono_literals;
using Alert = ScriptedOperator::Alert;
using Operation = BrokenFiles::Operation;

namespace {

class BackupCommandsTest : public BackupFixture {
 protected:
  // Until the search that "Back Up Missing Files Now" started has said what it found.
  bool untilStatusBegins(const QString& text) {
    return until([this, text] { return statusLine.text().startsWith(text); });
  }
};

}  // namespace

// ---- Choosing a folder

TEST_F(BackupCommandsTest, SwitchesBackupOnWithTheChosenFolder) {
  switchOn();
  EXPECT_TRUE(backup->isEnabled());
  EXPECT_EQ(backup->backupDir(), copies);
  EXPECT_EQ(preferences.backupDir(), copies);
  EXPECT_EQ(preferences.backupEnabled(), true);
  EXPECT_EQ(status(), (StatusText{"Backup ON → " + copies, StatusKind::Good}));
  ASSERT_EQ(operatorSeam.requests.size(), 1u);
  EXPECT_EQ(operatorSeam.requests.front().kind, PathRequest::Kind::OpenFolder);
  EXPECT_EQ(operatorSeam.requests.front().message,
            "Choose a backup folder. A network drive already mounted in Finder works here too.");
}

TEST_F(BackupCommandsTest, ChangesNothingWhenTheChoiceIsCancelled) {
  const StatusText before = status();
  choose("");
  EXPECT_FALSE(backup->isEnabled());
  EXPECT_EQ(preferences.backupEnabled(), std::nullopt);
  EXPECT_EQ(status(), before);
}

TEST_F(BackupCommandsTest, RefusesTheTargetFolderAndWhatLiesInsideOrAroundIt) {
  QDir().mkpath(target + "/Ann/Copies");
  ASSERT_TRUE(QFile::link(target + "/Ann", at("second way")));
  const QString title = "Folder Cannot Be Used";
  choose(target);
  choose(target + "/Ann/Copies");
  choose(at("second way"));
  choose(folder.path());
  const QString inside =
      "This folder lies inside the target folder. Choose a folder outside of it for the copies.";
  EXPECT_EQ(
      operatorSeam.alerts,
      std::vector<Alert>({{title, "This is the target folder itself. Choose another folder for the copies."},
                          {title, inside},
                          {title, inside},
                          {title,
                           "The target folder lies inside this folder. Choose a folder apart from it for the "
                           "copies."}}));
  EXPECT_FALSE(backup->isEnabled());
  EXPECT_EQ(backup->backupDir(), "");
}

TEST_F(BackupCommandsTest, KeepsTheOldFolderWhenTheNewOneIsRefused) {
  switchOn();
  choose(target);
  EXPECT_EQ(backup->backupDir(), copies);
  EXPECT_TRUE(backup->isEnabled());
}

TEST_F(BackupCommandsTest, TakesAnyFolderWhileThereIsNoTargetFolder) {
  target = "";
  switchOn();
  EXPECT_TRUE(backup->isEnabled());
}

// ---- On and off

TEST_F(BackupCommandsTest, AsksForAFolderWhenSwitchedOnWithoutOne) {
  operatorSeam.willChoose(copies);
  backup->toggleBackupEnabled();
  EXPECT_TRUE(backup->isEnabled());
  EXPECT_EQ(status().kind, StatusKind::Good);
}

TEST_F(BackupCommandsTest, SwitchesOffAndOnAgainWithNeutralWords) {
  switchOn();
  backup->toggleBackupEnabled();
  EXPECT_EQ(status(), (StatusText{"Backup OFF.", StatusKind::Neutral}));
  EXPECT_EQ(preferences.backupEnabled(), false);
  backup->toggleBackupEnabled();
  EXPECT_EQ(status(), (StatusText{"Backup ON → " + copies, StatusKind::Neutral}));
  EXPECT_EQ(preferences.backupEnabled(), true);
  EXPECT_EQ(operatorSeam.requests.size(), 1u);
}

TEST_F(BackupCommandsTest, DoesNotStartTheQueueByBeingSwitchedOn) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->toggleBackupEnabled();
  clock.advance(Backup::kRetryPeriod);  // ends the retry timer
  plugDrive();
  backup->toggleBackupEnabled();
  clock.advance(1h);
  EXPECT_EQ(backup->queue().size(), 1);
  save("b.jpg");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("a.jpg"), "photo");
}

TEST_F(BackupCommandsTest, LetsACopyUnderWayFinishWhenSwitchedOff) {
  switchOn();
  holdCopies();
  save("a.jpg");
  save("b.jpg");
  ASSERT_TRUE(untilBusy());
  backup->toggleBackupEnabled();
  letGo();
  ASSERT_TRUE(until([this] { return !backup->state().busy; }));
  EXPECT_EQ(copyOf("a.jpg"), "photo");
  EXPECT_EQ(backup->queue().size(), 1);
}

TEST_F(BackupCommandsTest, WarnsAgainAfterBeingSwitchedOffAndOn) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->toggleBackupEnabled();
  backup->toggleBackupEnabled();
  backup->processBackupQueue();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(operatorSeam.alerts.size(), 2u);
}

// ---- Retry Backup Now

TEST_F(BackupCommandsTest, RetriesAtOnceAndWarnsAgain) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->retryBackupNow();
  EXPECT_EQ(status(), (StatusText{"Retrying backup of 1 file…", StatusKind::Busy}));
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(operatorSeam.alerts.size(), 2u);
  plugDrive();
  save("b.jpg");
  backup->retryBackupNow();
  EXPECT_EQ(status(), (StatusText{"Retrying backup of 2 files…", StatusKind::Busy}));
  ASSERT_TRUE(untilEmpty());
}

TEST_F(BackupCommandsTest, SaysThatNothingIsToBeRetriedAsIfItWereBusy) {
  backup->retryBackupNow();
  EXPECT_EQ(status(), (StatusText{"Backup is already up to date.", StatusKind::Busy}));
}

// ---- Clear Backup Queue

TEST_F(BackupCommandsTest, SaysThatAnEmptyQueueIsEmpty) {
  backup->clearBackupQueue();
  EXPECT_EQ(status(), (StatusText{"Backup queue is already empty.", StatusKind::Neutral}));
  EXPECT_TRUE(operatorSeam.questions.empty());
}

TEST_F(BackupCommandsTest, ClearsTheQueueAfterAQuestionAndKeepsTheBatchCounters) {
  switchOn();
  pullDrive();
  save("a.jpg");
  save("b.jpg");
  ASSERT_TRUE(untilFailed());
  operatorSeam.willAnswer(0);
  backup->clearBackupQueue();
  const Question& question = operatorSeam.questions.front();
  EXPECT_EQ(question.title, "Clear 2 waiting backups?");
  EXPECT_EQ(
      question.message,
      "Those photos won't be backed up unless you run Back Up Missing Files Now later. Your originals in "
      "the Target Folder are untouched.");
  EXPECT_EQ(question.buttons, (QStringList{"Clear Queue", "Cancel"}));
  EXPECT_TRUE(backup->queue().isEmpty());
  EXPECT_FALSE(backup->state().offline);
  EXPECT_EQ(backup->state().batchTotal, 2);
  EXPECT_EQ(status(), (StatusText{"Backup queue cleared.", StatusKind::Neutral}));
  restart();
  EXPECT_TRUE(backup->queue().isEmpty());
}

TEST_F(BackupCommandsTest, GoesOnWithTheOldBatchAfterAClear) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  operatorSeam.willAnswer(0);
  backup->clearBackupQueue();
  EXPECT_EQ(operatorSeam.questions.front().title, "Clear 1 waiting backup?");
  plugDrive();
  holdCopies();
  save("b.jpg");
  ASSERT_TRUE(untilBusy());
  EXPECT_EQ(backup->backupStateText(), "0% (0/2) · copying…");
  letGo();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->state().batchTotal, 0);
}

TEST_F(BackupCommandsTest, KeepsTheQueueWhenTheQuestionIsCancelled) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  operatorSeam.willAnswer(1);
  backup->clearBackupQueue();
  EXPECT_EQ(backup->queue().size(), 1);
  EXPECT_TRUE(backup->state().offline);
}

TEST_F(BackupCommandsTest, StopsTheRetriesWithTheQueue) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  clock.advance(StatusLine::kRevertDelay);
  const std::size_t withTimer = clock.pendingTimers();
  operatorSeam.willAnswer(0);
  backup->clearBackupQueue();
  clock.advance(StatusLine::kRevertDelay);
  EXPECT_EQ(clock.pendingTimers(), withTimer - 1);
}

TEST_F(BackupCommandsTest, LetsACopyUnderWayFinishWhenTheQueueIsCleared) {
  switchOn();
  holdCopies();
  save("a.jpg");
  ASSERT_TRUE(untilBusy());
  operatorSeam.willAnswer(0);
  backup->clearBackupQueue();
  EXPECT_TRUE(backup->state().busy);
  letGo();
  ASSERT_TRUE(until([this] { return !backup->state().busy; }));
  EXPECT_EQ(copyOf("a.jpg"), "photo");
  EXPECT_EQ(backup->backupDoneCount(), 1);
}

// ---- Back Up Missing Files Now

TEST_F(BackupCommandsTest, NeedsBackupOnAndAFolderForMissingFiles) {
  backup->backupMissingNow();
  switchOn();
  backup->toggleBackupEnabled();
  backup->backupMissingNow();
  const Alert alert = {"Backup Not Set Up", "Choose a backup folder and turn Backup on first."};
  EXPECT_EQ(operatorSeam.alerts, (std::vector<Alert>{alert, alert}));
}

TEST_F(BackupCommandsTest, NeedsATargetFolderForMissingFiles) {
  switchOn();
  target = "";
  backup->backupMissingNow();
  EXPECT_EQ(operatorSeam.alerts, (std::vector<Alert>{{"No Target Folder", "Choose a Target Folder first."}}));
}

TEST_F(BackupCommandsTest, QueuesAndCopiesWhatIsMissing) {
  switchOn();
  for (const QString name : {"Ann/a.jpg", "Ann/b.jpg", "Bob/deep/c.jpg"})
    write(target + '/' + name, "photo");
  write(target + "/Ann/notes.txt", "no photo");
  write(copies + "/Ann/a.jpg", "photo");
  backup->backupMissingNow();
  ASSERT_TRUE(untilStatusBegins("Queued"));
  EXPECT_EQ(status(), (StatusText{"Queued 2 missing files for backup.", StatusKind::Busy}));
  EXPECT_EQ(backup->state().batchTotal, 2);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Ann/b.jpg"), "photo");
  EXPECT_EQ(copyOf("Bob/deep/c.jpg"), "photo");
  EXPECT_EQ(copyOf("Ann/notes.txt"), "(missing)");
}

TEST_F(BackupCommandsTest, SaysWhenNothingIsMissing) {
  switchOn();
  write(target + "/a.jpg", "photo");
  write(copies + "/a.jpg", "photo");
  backup->backupMissingNow();
  ASSERT_TRUE(untilStatusBegins("Backup is already complete"));
  EXPECT_EQ(status(), (StatusText{"Backup is already complete — nothing missing.", StatusKind::Good}));
}

TEST_F(BackupCommandsTest, DoesNotQueueAMissingPhotoTwice) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  write(target + "/b.jpg", "photo");
  backup->backupMissingNow();
  ASSERT_TRUE(untilStatusBegins("Queued"));
  EXPECT_EQ(status().text, "Queued 1 missing file for backup.");
  EXPECT_EQ(backup->queue().size(), 2);
  EXPECT_EQ(backup->state().batchTotal, 2);
}

TEST_F(BackupCommandsTest, DropsWhatWasFoundForFoldersThatAreNoLongerChosen) {
  switchOn();
  write(target + "/a.jpg", "photo");
  whileLooking = [this] {
    looking.release();
    gate.acquire();
  };
  backup->backupMissingNow();
  looking.acquire();
  QDir().mkpath(at("Other copies"));
  choose(at("Other copies"));
  backup->backupMissingNow();  // nothing while a search is under way
  gate.release(1000);
  ASSERT_TRUE(until([this] {
    backup->backupMissingNow();
    return read(at("Other copies/a.jpg")) == "photo";
  }));
  EXPECT_EQ(copyOf("a.jpg"), "(missing)");
}

// ---- Wake & Reconnect Drive

TEST_F(BackupCommandsTest, WakesTheDriveWheneverItIsAskedTo) {
  preferences.setBackupMAC(QString("1:2:3:4:5:6"));
  backup->wakeAndReconnectBackup();
  EXPECT_TRUE(drive.wakeCalls.isEmpty());
  switchOn();
  preferences.setBackupMAC(QString("1:2:3:4:5:6"));
  backup->wakeAndReconnectBackup();
  backup->wakeAndReconnectBackup();
  EXPECT_EQ(drive.wakeCalls.size(), 2);
  EXPECT_EQ(status(), (StatusText{"Sent wake signal to the backup drive…", StatusKind::Busy}));
}

TEST_F(BackupCommandsTest, WarnsAgainAfterAWake) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->wakeAndReconnectBackup();
  backup->processBackupQueue();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(operatorSeam.alerts.size(), 2u);
}
