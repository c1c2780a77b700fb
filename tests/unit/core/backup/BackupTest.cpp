// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <gtest/gtest.h>
#include <mutex>

#include "core/backup/QueueFile.h"
#include "unit/core/backup/BackupFixture.h"

using namespace ambrel;
using namespace std::chrono_literals;
using Alert = ScriptedOperator::Alert;
using Operation = BrokenFiles::Operation;

namespace {

class BackupTest : public BackupFixture {
 protected:
  QStringList storedQueue() {
    backup.reset();  // the last write is over
    return readQueueFile(locations.dataFile("backup_queue.plist")).value();
  }
};

}  // namespace

// ---- Filed photos

TEST_F(BackupTest, CopiesAFiledPhotoToTheMirroredPath) {
  switchOn();
  save("Ann/Ann_0001.jpg");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Ann/Ann_0001.jpg"), "photo");
  EXPECT_EQ(backup->backupDoneCount(), 1);
  EXPECT_EQ(storedQueue(), QStringList());
}

TEST_F(BackupTest, CopiesPhotosInTheOrderOfTheirFiling) {
  QStringList order;
  files.callBefore(Operation::CopyToNew, [&](const QString& from, const QString&) { order.append(from); });
  switchOn();
  QStringList filed;
  for (const QString name : {"c.jpg", "a.jpg", "b.jpg"})
    filed.append(save(name));
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(order, filed);
}

TEST_F(BackupTest, NeverCopiesAPhotoBeforeItIsInTheQueueFile) {
  QStringList inFile;
  files.callBefore(Operation::CopyToNew, [&](const QString&, const QString&) {
    inFile = readQueueFile(locations.dataFile("backup_queue.plist")).value();
  });
  switchOn();
  const QString path = save("a.jpg");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(inFile, QStringList{path});
}

TEST_F(BackupTest, QueuesNothingWhileOffOrForAnEmptyPath) {
  save("a.jpg");
  EXPECT_EQ(backup->queue().size(), 0);
  switchOn();
  backup->backupSavedFile("");
  EXPECT_EQ(backup->queue().size(), 0);
  backup->toggleBackupEnabled();
  save("a.jpg");
  EXPECT_EQ(backup->queue().size(), 0);
}

TEST_F(BackupTest, QueuesAPhotoOnceThatIsSavedTwice) {
  switchOn();
  save("a.jpg");
  save("a.jpg");
  EXPECT_EQ(backup->queue().size(), 1);
  EXPECT_EQ(backup->state().batchTotal, 1);
}

TEST_F(BackupTest, PutsAPhotoFromElsewhereAtTheTopLevel) {
  switchOn();
  write(at("Elsewhere/deep/b.jpg"), "photo");
  backup->backupSavedFile(at("Elsewhere/deep/b.jpg"));
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("b.jpg"), "photo");
}

TEST_F(BackupTest, TellsThePathThatMirrorsAFolder) {
  switchOn();
  EXPECT_EQ(backup->backupDestForSource(target + "/Ann_FR"), copies + "/Ann_FR");
}

TEST_F(BackupTest, ForgetsAPhotoThatHasVanishedWithoutCountingIt) {
  switchOn();
  holdCopies();
  save("a.jpg");
  const QString gone = save("b.jpg");
  ASSERT_TRUE(untilBusy());
  ASSERT_TRUE(QFile::remove(gone));
  letGo();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->backupDoneCount(), 1);
  EXPECT_EQ(operatorSeam.alerts, std::vector<Alert>());
}

TEST_F(BackupTest, CountsTheBatchUntilTheQueueIsEmpty) {
  switchOn();
  holdCopies();
  save("a.jpg");
  save("b.jpg");
  ASSERT_TRUE(untilBusy());
  EXPECT_EQ(backup->state().batchTotal, 2);
  EXPECT_EQ(backup->backupStateText(), "0% (0/2) · copying…");
  letGo();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->state().batchDone, 0);
  EXPECT_EQ(backup->state().batchTotal, 0);
  EXPECT_EQ(backup->backupStateText(), "up to date");
  EXPECT_EQ(backup->backupDoneCount(), 2);
}

TEST_F(BackupTest, ShowsItsProgressBetweenTwoCopies) {
  switchOn();
  int held = 0;
  files.callBefore(Operation::CopyToNew, [&](const QString&, const QString&) {
    if (++held == 4) gate.acquire();
  });
  for (const QString name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"})
    save(name);
  ASSERT_TRUE(until([this] { return backup->state().batchDone == 3 && backup->state().busy; }));
  EXPECT_EQ(backup->button().title, "Backup 75%");
  EXPECT_EQ(backup->backupStateText(), "75% (3/4) · copying…");
  letGo();
  ASSERT_TRUE(untilEmpty());
}

// ---- Copies made ahead

namespace {

class BackupAhead : public BackupTest {
 protected:
  static constexpr int kPhotos = 20;
  void saveMany() {
    for (int i = 0; i < kPhotos; ++i)
      filed.append(save(QStringLiteral("%1.jpg").arg(i)));
  }
  // What the queue file forgets before a crash could no longer undo the name of its copy.
  void watchForForgottenPhotos() {
    files.callAfter(Operation::MoveReplacing, [this](const QString&, const QString& to) {
      const std::lock_guard lock(mutex);
      unflushed.append(target + '/' + to.section('/', -1));
    });
    files.callAfter(Operation::FlushFolder, [this](const QString&, const QString&) {
      const std::lock_guard lock(mutex);
      unflushed.clear();
    });
    files.callAfter(Operation::Replace, [this](const QString& path, const QString&) {
      const std::lock_guard lock(mutex);
      const QStringList inFile = readQueueFile(path).value();
      for (const QString& photo : unflushed)
        if (!inFile.contains(photo)) forgotten.append(photo);
    });
  }
  QStringList temporaries() const { return QDir(copies).entryList({"*.ambrel_tmp"}, QDir::Files); }
  bool untilDone(qint64 count) {
    return until([=, this] { return backup->state().batchDone >= count; });
  }
  QStringList filed;
  std::mutex mutex;  // guards the next two
  QStringList unflushed;
  QStringList forgotten;
};

}  // namespace

TEST_F(BackupAhead, CopiesEveryPhotoAndLeavesNothingElse) {
  switchOn();
  saveMany();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->backupDoneCount(), kPhotos);
  EXPECT_EQ(QDir(copies).entryList(QDir::Files | QDir::Hidden).size(), kPhotos);
  EXPECT_EQ(storedQueue(), QStringList());
}

// A crash may undo a move whose folder is not flushed.
TEST_F(BackupAhead, NeverTakesAPhotoOutOfTheQueueFileBeforeTheNameOfItsCopyIsFlushed) {
  watchForForgottenPhotos();
  switchOn();
  saveMany();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(storedQueue(), QStringList());
  EXPECT_EQ(forgotten, QStringList());
}

TEST_F(BackupAhead, LosesNoPhotoFromTheQueueWhenTheFlushOfTheirNamesFailsOnce) {
  watchForForgottenPhotos();
  switchOn();
  saveMany();
  ASSERT_TRUE(untilDone(3));
  files.failCall(Operation::FlushFolder, 1, "Input/output error");
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(backup->state().batchDone + backup->queue().size(), kPhotos);
  EXPECT_EQ(backup->state().batchTotal, kPhotos);
  {
    const std::lock_guard lock(mutex);
    for (const QString& photo : unflushed)
      EXPECT_TRUE(backup->queue().paths().contains(photo)) << photo.toStdString();
    EXPECT_GT(unflushed.size(), 0);
  }
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(storedQueue(), QStringList());
  EXPECT_EQ(forgotten, QStringList());
  EXPECT_EQ(unflushed, QStringList());
}

TEST_F(BackupAhead, KeepsEveryPhotoQueuedWhileTheirNamesCannotBeFlushedAndGoesOnOnceTheyCan) {
  watchForForgottenPhotos();
  files.failAlways(Operation::FlushFolder, "Input/output error");
  switchOn();
  saveMany();
  for (int tick = 0; tick < 4; ++tick) {
    ASSERT_TRUE(untilFailed());
    EXPECT_EQ(backup->queue().paths(), filed);
    EXPECT_EQ(backup->state().batchDone, 0);
    EXPECT_EQ(backup->state().batchTotal, kPhotos);
    const int tried = files.calls(Operation::FlushFolder);
    clock.advance(Backup::kRetryPeriod);
    ASSERT_TRUE(until([&] { return files.calls(Operation::FlushFolder) > tried; }));
  }
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(storedQueue(), filed);
  EXPECT_EQ(forgotten, QStringList());
  files.mend(Operation::FlushFolder);
  restart();
  clock.advance(Backup::kStartDelay);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(storedQueue(), QStringList());
  EXPECT_EQ(unflushed, QStringList());
}

TEST_F(BackupAhead, TakesPhotosBackWhoseCopiesWentWithTheDriveBeforeTheirNamesWereFlushed) {
  switchOn();
  int copied = 0;
  files.callBefore(Operation::CopyToNew, [&](const QString&, const QString&) {
    if (++copied == 4) gate.acquire();
  });
  for (const QString name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"})
    save(name);
  ASSERT_TRUE(untilDone(3));
  pullDrive();
  letGo();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(backup->state().batchDone + backup->queue().size(), 4);
  EXPECT_EQ(operatorSeam.alerts.size(), 1u);
  plugDrive();
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("d.jpg"), "photo");
  EXPECT_EQ(storedQueue(), QStringList());
}

// Somebody has removed the folder since: the copies are made anew.
TEST_F(BackupAhead, CopiesAnewWhatWasInAFolderThatIsGoneWhenItIsToBeFlushed) {
  const QString lost = copies + "/Ann";
  std::atomic<bool> removed = false;
  files.callBefore(Operation::FlushFolder, [&](const QString&, const QString&) {
    if (!removed.exchange(true)) QDir(lost).removeRecursively();
  });
  switchOn();
  for (int i = 0; i < kPhotos; ++i)
    save(QStringLiteral("Ann/%1.jpg").arg(i));
  ASSERT_TRUE(untilFailed());
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(QDir(lost).entryList(QDir::Files).size(), kPhotos);
}

TEST_F(BackupAhead, KeepsThePhotosOfABatchWhoseNamesCannotBeFlushedAfterItIsSwitchedOff) {
  watchForForgottenPhotos();
  switchOn();
  saveMany();
  ASSERT_TRUE(untilDone(3));
  files.failCall(Operation::FlushFolder, 1, "Input/output error");
  backup->toggleBackupEnabled();
  ASSERT_TRUE(until([this] { return !backup->state().busy && temporaries().isEmpty(); }));
  backup->toggleBackupEnabled();
  backup->retryBackupNow();
  ASSERT_TRUE(until([this] {
    if (!backup->state().busy) clock.advance(Backup::kRetryPeriod);
    return backup->queue().isEmpty() && !backup->state().busy;
  }));
  EXPECT_EQ(storedQueue(), QStringList());
  EXPECT_EQ(forgotten, QStringList());
  EXPECT_EQ(unflushed, QStringList());
}

TEST_F(BackupAhead, RemovesThemWhenItIsSwitchedOff) {
  switchOn();
  saveMany();
  ASSERT_TRUE(untilDone(3));
  backup->toggleBackupEnabled();
  ASSERT_TRUE(until([this] { return !backup->state().busy && temporaries().isEmpty(); }));
  const qint64 waiting = backup->queue().size();
  EXPECT_EQ(waiting + backup->backupDoneCount(), kPhotos);
  backup->toggleBackupEnabled();
  backup->retryBackupNow();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->backupDoneCount(), kPhotos);
}

TEST_F(BackupAhead, RemovesThemWhenTheQueueIsCleared) {
  switchOn();
  saveMany();
  ASSERT_TRUE(untilDone(3));
  operatorSeam.willAnswer(0);
  backup->clearBackupQueue();
  ASSERT_TRUE(until([this] { return !backup->state().busy && temporaries().isEmpty(); }));
  save("another.jpg");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("another.jpg"), "photo");
  EXPECT_EQ(storedQueue(), QStringList());
}

TEST_F(BackupAhead, RemovesThemWhenOneInFrontOfThemFails) {
  switchOn();
  for (int i = 0; i < 5; ++i)
    save(QStringLiteral("%1.jpg").arg(i));
  save("empty.jpg", "");
  for (int i = 6; i < kPhotos; ++i)
    save(QStringLiteral("%1.jpg").arg(i));
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(temporaries(), QStringList());
  EXPECT_EQ(backup->backupDoneCount(), 5);
  EXPECT_EQ(backup->queue().size(), kPhotos - 5);
}

TEST_F(BackupAhead, StartsAnewInAnotherFolder) {
  switchOn();
  saveMany();
  ASSERT_TRUE(untilDone(3));
  ASSERT_TRUE(QDir().mkpath(at("Other")));
  choose(at("Other"));
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(temporaries(), QStringList());
  const qsizetype inBoth = QDir(copies).entryList(QDir::Files).size() +
                           QDir(at("Other")).entryList(QDir::Files | QDir::Hidden).size();
  EXPECT_EQ(inBoth, kPhotos);
}

// ---- A slow copy

TEST_F(BackupTest, CallsACopySlowThatTakesLongerThanFourSeconds) {
  switchOn();
  holdCopies();
  save("a.jpg");
  ASSERT_TRUE(untilBusy());
  clock.advance(Backup::kSlowAfter - 1ms);
  EXPECT_FALSE(backup->state().slow);
  clock.advance(1ms);
  EXPECT_EQ(backup->backupStateText(), "0% (0/1) · 1 left — slow network");
  letGo();
  ASSERT_TRUE(untilEmpty());
  EXPECT_FALSE(backup->state().slow);
}

TEST_F(BackupTest, DoesNotHoldTheSlownessOfOneCopyAgainstTheNext) {
  switchOn();
  save("a.jpg");
  ASSERT_TRUE(untilEmpty());
  clock.advance(3s);
  holdCopies();
  save("b.jpg");
  ASSERT_TRUE(untilBusy());
  clock.advance(3s);  // six since the first
  EXPECT_FALSE(backup->state().slow);
  letGo();
  ASSERT_TRUE(untilEmpty());
}

// ---- A drive that goes and comes back

TEST_F(BackupTest, PausesWithOneAlertWhenTheDriveIsGone) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  save("b.jpg");
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(operatorSeam.alerts, std::vector<Alert>({{"Backup Paused", backupPausedMessage(1, "")}}));
  EXPECT_EQ(backup->button().title, "Backup ⚠ 2");
  EXPECT_EQ(backup->button().color, BackupColor::Red);
  EXPECT_EQ(backup->backupStateText(), "0% (0/2) · 2 waiting — drive offline");
  EXPECT_EQ(backup->card(), (BackupCardLook{"2 queued", BackupColor::Orange}));
}

TEST_F(BackupTest, PausesWithTheProgressOfItsBatchWhenACopyFails) {
  switchOn();
  int copied = 0;
  files.failCall(Operation::CopyToNew, 4, "Input/output error");
  files.callBefore(Operation::CopyToNew, [&](const QString&, const QString&) {
    if (++copied == 4) gate.acquire();
  });
  for (const QString name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"})
    save(name);
  ASSERT_TRUE(until([this] { return backup->state().batchDone == 3 && backup->state().busy; }));
  files.failAlways(Operation::CopyToNew, "Input/output error");  // it is tried in its turn as well
  letGo();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(backup->button().title, "Backup ⚠ 1");
  EXPECT_EQ(backup->backupStateText(), "75% (3/4) · 1 waiting — drive offline");
  EXPECT_EQ(operatorSeam.alerts.size(), 1u);
  files.mend(Operation::CopyToNew);
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("d.jpg"), "photo");
  EXPECT_EQ(storedQueue(), QStringList());
}

TEST_F(BackupTest, GoesOnAtTheNextTickOnceTheDriveIsBack) {
  switchOn();
  pullDrive();
  save("a.jpg");
  save("b.jpg");
  ASSERT_TRUE(untilFailed());
  plugDrive();
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("a.jpg"), "photo");
  EXPECT_EQ(copyOf("b.jpg"), "photo");
  EXPECT_FALSE(backup->state().offline);
}

TEST_F(BackupTest, WarnsAgainAfterASuccess) {
  switchOn();
  for (const QString name : {"a.jpg", "b.jpg"}) {
    pullDrive();
    save(name);
    ASSERT_TRUE(untilFailed());
    plugDrive();
    clock.advance(Backup::kRetryPeriod);
    ASSERT_TRUE(untilEmpty());
  }
  EXPECT_EQ(operatorSeam.alerts.size(), 2u);
}

TEST_F(BackupTest, SaysWhyACopyFailed) {
  files.failAlways(Operation::CopyToNew, "No space left on device");
  switchOn();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(operatorSeam.alerts,
            std::vector<Alert>({{"Backup Paused", backupPausedMessage(1, "No space left on device")}}));
}

TEST_F(BackupTest, LetsAnEmptyPhotoHoldUpThoseBehindIt) {
  switchOn();
  save("empty.jpg", "");
  save("b.jpg");
  for (int attempt = 0; attempt < 3; ++attempt) {
    ASSERT_TRUE(untilFailed());
    clock.advance(Backup::kRetryPeriod);
  }
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(backup->queue().size(), 2);
  EXPECT_EQ(copyOf("b.jpg"), "(missing)");
  EXPECT_EQ(operatorSeam.alerts.front().message,
            backupPausedMessage(2, "incomplete copy (connection dropped)"));
}

TEST_F(BackupTest, NeverGivesUp) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  for (int hour = 0; hour < 2; ++hour) {
    clock.advance(1h);
    ASSERT_TRUE(untilFailed());
  }
  EXPECT_EQ(backup->queue().size(), 1);
}

TEST_F(BackupTest, EndsTheRetryTimerAtTheFirstTickWithNothingToDo) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  const std::size_t withTimer = clock.pendingTimers();
  plugDrive();
  backup->retryBackupNow();
  ASSERT_TRUE(untilEmpty());
  clock.advance(StatusLine::kRevertDelay);
  const std::size_t before = clock.pendingTimers();
  clock.advance(Backup::kRetryPeriod);
  EXPECT_EQ(clock.pendingTimers(), before - 1);
  EXPECT_LT(clock.pendingTimers(), withTimer);
}

TEST_F(BackupTest, NeverStartsASecondRetryTimer) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  const std::size_t timers = clock.pendingTimers();
  backup->processBackupQueue();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(clock.pendingTimers(), timers);
}

TEST_F(BackupTest, DoesNotWriteTheQueueAnewWhenACopyFails) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  const int writes = files.calls(Operation::Replace);
  backup->processBackupQueue();
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(files.calls(Operation::Replace), writes);
}

TEST_F(BackupTest, WaitsForADriveWhoseEmptyMountPointIsStillThere) {
  drive.setVolume(MountedVolume{"//nas/photos", "cifs"});
  switchOn();
  drive.setVolume(MountedVolume{"/dev/sda1", "ext4"});
  drive.remountSucceeds = false;
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(copyOf("a.jpg"), "(missing)");
  drive.setVolume(MountedVolume{"//nas.local/photos", "cifs"});
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("a.jpg"), "photo");
}

// ---- Recovery

TEST_F(BackupTest, TriesToBringTheDriveBackAfterAFailure) {
  drive.setVolume(MountedVolume{"//nas/photos", "cifs"});
  switchOn();
  pullDrive();
  drive.whenRemounted = [this] { plugDrive(); };
  save("a.jpg");
  ASSERT_TRUE(until([this] { return copyOf("a.jpg") == "photo"; }));
  EXPECT_EQ(drive.remounts, QStringList{"smb://nas/photos"});
  EXPECT_EQ(status(), (StatusText{"Backup drive reconnected — resuming backups.", StatusKind::Good}));
}

TEST_F(BackupTest, TriesNoRecoveryForACopyThatFailsAfterBackupWasSwitchedOff) {
  drive.setVolume(MountedVolume{"//nas/photos", "cifs"});
  switchOn();
  files.failAlways(Operation::CopyToNew, "gone");
  holdCopies();
  save("a.jpg");
  ASSERT_TRUE(untilBusy());
  backup->toggleBackupEnabled();
  letGo();
  ASSERT_TRUE(untilFailed());
  clock.advance(1min);
  EXPECT_EQ(drive.remountCount(), 0);
}

// ---- The queue file

TEST_F(BackupTest, GoesOnTwoSecondsAfterARestartWithWhatWaits) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  plugDrive();
  restart();
  EXPECT_EQ(backup->queue().size(), 1);
  EXPECT_EQ(backup->button().title, "Backup 1⏳");
  clock.advance(Backup::kStartDelay - 1ms);
  EXPECT_FALSE(backup->state().busy);
  clock.advance(1ms);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("a.jpg"), "photo");
}

TEST_F(BackupTest, KeepsWhatWaitsWhileItIsOff) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->toggleBackupEnabled();
  restart();
  clock.advance(1min);
  EXPECT_EQ(backup->queue().size(), 1);
  EXPECT_FALSE(backup->state().busy);
}

TEST_F(BackupTest, StartsOffWithoutAStoredFolder) {
  preferences.setBackupEnabled(true);
  restart();
  EXPECT_FALSE(backup->isEnabled());
}

TEST_F(BackupTest, StartsOffWithAnEmptyFolderStored) {
  preferences.setBackupDir("");
  preferences.setBackupEnabled(true);
  restart();
  EXPECT_FALSE(backup->isEnabled());
  save("a.jpg");
  EXPECT_TRUE(backup->queue().isEmpty());
  backup->backupMissingNow();
  EXPECT_EQ(operatorSeam.alerts,
            std::vector<Alert>({{"Backup Not Set Up", "Choose a backup folder and turn Backup on first."}}));
  operatorSeam.willChoose(copies);
  backup->toggleBackupEnabled();
  EXPECT_EQ(backup->backupDir(), copies);
}

TEST_F(BackupTest, StartsEmptyAndSilentWithoutAQueueFile) {
  switchOn();
  QFile::remove(locations.dataFile("backup_queue.plist"));
  restart();
  EXPECT_TRUE(backup->queue().isEmpty());
  EXPECT_EQ(backup->button().title, "Backup ✓");
  EXPECT_EQ(operatorSeam.alerts, std::vector<Alert>());
}

TEST_F(BackupTest, StartsAsItWasLeft) {
  switchOn();
  restart();
  EXPECT_TRUE(backup->isEnabled());
  EXPECT_EQ(backup->backupDir(), copies);
}

TEST_F(BackupTest, StartsEmptyAndSilentWithABrokenQueueFile) {
  write(locations.dataFile("backup_queue.plist"), "no list");
  restart();
  EXPECT_TRUE(backup->queue().isEmpty());
  EXPECT_EQ(operatorSeam.alerts, std::vector<Alert>());
}

TEST_F(BackupTest, SaysOnceThatTheQueueCannotBeSavedAndTriesAgainByItself) {
  switchOn();
  files.failCall(Operation::Replace, 1, "disk full");
  pullDrive();
  const QString path = save("a.jpg");
  ASSERT_TRUE(untilFailed());
  EXPECT_EQ(status(), (StatusText{"The backup queue cannot be saved: disk full", StatusKind::Error}));
  clock.advance(Backup::kRetryPeriod);
  EXPECT_EQ(storedQueue(), QStringList{path});
}

// ---- Photos that are being filed

TEST_F(BackupTest, WantsToHearOfPhotosBeforeTheyAreFiledWhileItIsOn) {
  EXPECT_EQ(backup->pendingPhotos(), nullptr);
  switchOn();
  EXPECT_NE(backup->pendingPhotos(), nullptr);
  backup->toggleBackupEnabled();
  EXPECT_EQ(backup->pendingPhotos(), nullptr);
}

TEST_F(BackupTest, CopiesAPhotoThatWasFiledJustBeforeTheApplicationDied) {
  switchOn();
  const QString path = target + "/Ann/Ann_0001.jpg";
  backup->pendingPhotos()->add(path);
  write(path, "photo");
  restart();
  EXPECT_EQ(backup->queue().paths(), QStringList{path});
  EXPECT_EQ(backup->button().title, "Backup 1⏳");
  clock.advance(Backup::kStartDelay);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Ann/Ann_0001.jpg"), "photo");
  restart();
  EXPECT_TRUE(backup->queue().isEmpty());
}

TEST_F(BackupTest, ForgetsAPhotoWhoseFilingEndedAfterItWasSwitchedOff) {
  switchOn();
  backup->pendingPhotos()->add(target + "/a.jpg");
  backup->toggleBackupEnabled();
  save("a.jpg");
  restart();
  EXPECT_TRUE(backup->queue().isEmpty());
}

// ---- Photos that come

TEST_F(BackupTest, BeginsNoCopyWhileAPhotoIsOnItsWayFromTheCamera) {
  switchOn();
  bool wasOpen = false;
  files.callBefore(Operation::CopyToNew,
                   [&](const QString&, const QString&) { wasOpen = backup->rightOfWay().gate()->isOpen(); });
  backup->rightOfWay().photoArrived();
  save("a.jpg");
  ASSERT_TRUE(untilBusy());
  backup->rightOfWay().photosAreFiled();
  ASSERT_TRUE(untilEmpty());
  EXPECT_TRUE(wasOpen);
  EXPECT_EQ(copyOf("a.jpg"), "photo");
}

// ---- Quitting

TEST_F(BackupTest, NeverWaitsForACopyThatHangs) {
  switchOn();
  holdCopies();
  save("a.jpg");
  ASSERT_TRUE(untilBusy());
  backup->stop();
  const auto begun = std::chrono::steady_clock::now();
  backup.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 2s);
  letGo();
  ASSERT_TRUE(until([this] { return files.calls(Operation::FlushFolder) > 0; }));  // it still uses the files
  EXPECT_EQ(copyOf("a.jpg"), "photo");
}

TEST_F(BackupTest, StartsNothingMoreOnceStopped) {
  switchOn();
  pullDrive();
  save("a.jpg");
  ASSERT_TRUE(untilFailed());
  backup->stop();
  plugDrive();
  clock.advance(1min);
  backup->processBackupQueue();
  EXPECT_FALSE(backup->state().busy);
}

TEST_F(BackupTest, StillQueuesAPhotoThatIsFiledWhileQuitting) {
  switchOn();
  pullDrive();
  backup->stop();
  const QString path = save("a.jpg");
  EXPECT_EQ(storedQueue(), QStringList{path});
}

TEST_F(BackupTest, SaysWheneverWhatIsShownBecameStale) {
  int times = 0;
  QObject::connect(backup.get(), &Backup::changed, [&] { ++times; });
  const auto changes = [&](const std::function<void()>& act) {
    times = 0;
    act();
    return times > 0;
  };
  EXPECT_TRUE(changes([this] { switchOn(); }));
  EXPECT_TRUE(changes([this] { save("a.jpg"); }));
  EXPECT_TRUE(changes([this] { ASSERT_TRUE(untilEmpty()); }));
  EXPECT_TRUE(changes([this] { backup->toggleBackupEnabled(); }));
}
