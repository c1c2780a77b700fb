// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "unit/core/backup/BackupFixture.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

const QString kAddress = "0:1a:2b:3c:4d:5e";

class DriveRecoveryTest : public ::testing::Test {
 protected:
  DriveRecoveryTest() : recovery(clock, preferences, statusLine, drive.means()) {
    QDir().mkpath(present);
    QObject::connect(&recovery, &DriveRecovery::driveBack, [this] { ++timesBack; });
  }
  // With what an earlier choice of a folder stored.
  void remember(const QString& url, const QString& address) {
    preferences.setBackupShareURL(url.isEmpty() ? std::nullopt : std::optional(url));
    preferences.setBackupMAC(address.isEmpty() ? std::nullopt : std::optional(address));
  }
  bool untilBack() {
    return runEventsUntil([this] { return timesBack > 0; });
  }
  bool untilRemounts(qsizetype count) {
    return runEventsUntil([this, count] { return drive.remountCount() >= count; }, 5s);
  }
  StatusText status() const { return {statusLine.text(), statusLine.kind()}; }

  QTemporaryDir folder;
  const QString present = folder.filePath("present");
  const QString gone = folder.filePath("gone");
  Preferences preferences{folder.filePath("preferences.ini")};
  TestClock clock;
  StatusLine statusLine{clock, [] { return Readiness{}; }};
  PlayedDrive drive;
  DriveRecovery recovery;
  int timesBack = 0;
  Heartbeat heartbeat;  // what happens on another thread wakes no event loop
};

}  // namespace

// ---- What is remembered of a drive

TEST_F(DriveRecoveryTest, RemembersAShareItsServerAndItsHardwareAddress) {
  drive.setVolume(MountedVolume{"//guest@server:445/Photos", "smbfs"});
  drive.hardwareAddress = kAddress;
  recovery.captureBackupShareInfo(present);
  EXPECT_EQ(preferences.backupShareURL(), QString("smb://guest@server:445/Photos"));
  EXPECT_EQ(preferences.backupHost(), QString("server"));
  ASSERT_TRUE(runEventsUntil([this] { return preferences.backupMAC() == kAddress; }));
  EXPECT_EQ(drive.lookedUp(), QStringList{"server"});
}

TEST_F(DriveRecoveryTest, CallsAnAppleShareByItsName) {
  drive.setVolume(MountedVolume{"//guest@server/Photos", "afpfs"});
  recovery.captureBackupShareInfo(present);
  EXPECT_EQ(preferences.backupShareURL(), QString("afp://guest@server/Photos"));
}

TEST_F(DriveRecoveryTest, ForgetsTheShareButNotTheServerForALocalVolume) {
  remember("smb://nas/photos", kAddress);
  preferences.setBackupHost("nas");
  recovery.captureBackupShareInfo(present);
  EXPECT_EQ(preferences.backupShareURL(), std::nullopt);
  EXPECT_EQ(preferences.backupMAC(), std::nullopt);
  EXPECT_EQ(preferences.backupHost(), QString("nas"));
}

TEST_F(DriveRecoveryTest, KeepsEverythingWhenTheVolumeIsUnknown) {
  remember("smb://nas/photos", kAddress);
  drive.setVolume(std::nullopt);
  recovery.captureBackupShareInfo(present);
  recovery.captureBackupShareInfo("");
  EXPECT_EQ(preferences.backupShareURL(), QString("smb://nas/photos"));
  EXPECT_EQ(preferences.backupMAC(), kAddress);
}

TEST_F(DriveRecoveryTest, KeepsAHardwareAddressWhenNoOtherIsFound) {
  remember("", kAddress);
  drive.setVolume(MountedVolume{"//other/photos", "cifs"});
  recovery.captureBackupShareInfo(present);
  ASSERT_TRUE(runEventsUntil([this] { return !drive.lookedUp().isEmpty(); }));
  EXPECT_EQ(preferences.backupMAC(), kAddress);
}

TEST_F(DriveRecoveryTest, LooksNoServerUpThatHasNoName) {
  remember("", kAddress);
  preferences.setBackupHost("nas");
  drive.setVolume(MountedVolume{"///photos", "cifs"});
  recovery.captureBackupShareInfo(present);
  EXPECT_EQ(preferences.backupShareURL(), QString("smb:///photos"));
  EXPECT_EQ(preferences.backupHost(), QString("nas"));
  EXPECT_TRUE(drive.lookedUp().isEmpty());
}

// ---- Recovery

TEST_F(DriveRecoveryTest, DoesNothingVisibleWithNothingRemembered) {
  const StatusText before = status();
  recovery.attemptBackupDriveRecovery(gone, true);
  clock.advance(1min);
  EXPECT_EQ(status(), before);
  EXPECT_TRUE(drive.wakeCalls.isEmpty());
  EXPECT_EQ(drive.remountCount(), 0);
}

TEST_F(DriveRecoveryTest, WakesADriveWithoutAShareAndLeavesItAtThat) {
  remember("", kAddress);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls, QStringList{kAddress});
  EXPECT_EQ(status(), (StatusText{"Sent wake signal to the backup drive…", StatusKind::Busy}));
  clock.advance(10s);
  EXPECT_EQ(drive.remountCount(), 0);
}

TEST_F(DriveRecoveryTest, GivesAServerThreeSecondsToWakeUp) {
  remember("smb://nas/photos", kAddress);
  recovery.attemptBackupDriveRecovery(gone, false);
  clock.advance(DriveRecovery::kTimeToWakeUp - 1ms);
  EXPECT_EQ(drive.remountCount(), 0);
  clock.advance(1ms);
  ASSERT_TRUE(untilRemounts(1));
}

TEST_F(DriveRecoveryTest, MountsAtOnceWhereNoWakePacketWentOut) {
  remember("smb://nas/photos", kAddress);
  drive.wakeSucceeds = false;
  const StatusText before = status();
  recovery.attemptBackupDriveRecovery(gone, false);
  ASSERT_TRUE(untilBack());
  EXPECT_EQ(drive.remounts, QStringList{"smb://nas/photos"});
  EXPECT_NE(status(), before);
  EXPECT_EQ(status(), (StatusText{"Backup drive reconnected — resuming backups.", StatusKind::Good}));
}

TEST_F(DriveRecoveryTest, DoesNotMountWhatIsThereAlready) {
  remember("smb://nas/photos", "");
  drive.setVolume(MountedVolume{"//nas/photos", "cifs"});
  const StatusText before = status();
  recovery.attemptBackupDriveRecovery(present, false);
  ASSERT_TRUE(untilBack());
  EXPECT_EQ(drive.remountCount(), 0);
  EXPECT_EQ(status(), before);
}

TEST_F(DriveRecoveryTest, MountsOverTheEmptyMountPointOfADriveThatIsGone) {
  remember("smb://nas/photos", "");
  recovery.attemptBackupDriveRecovery(present, false);
  ASSERT_TRUE(untilBack());
  EXPECT_EQ(drive.remountCount(), 1);
}

TEST_F(DriveRecoveryTest, EncodesTheAddress) {
  remember("smb://nas/My 100% Photos", "");
  recovery.attemptBackupDriveRecovery(gone, false);
  ASSERT_TRUE(untilBack());
  EXPECT_EQ(drive.remounts, QStringList{"smb://nas/My%20100%25%20Photos"});
}

TEST_F(DriveRecoveryTest, StaysSilentWhenTheMountFails) {
  remember("smb://nas/photos", "");
  drive.remountSucceeds = false;
  const StatusText before = status();
  for (qsizetype attempt = 1; attempt <= 3; ++attempt) {
    recovery.attemptBackupDriveRecovery(gone, true);
    ASSERT_TRUE(untilRemounts(attempt));
  }
  EXPECT_EQ(status(), before);
  EXPECT_EQ(timesBack, 0);
}

TEST_F(DriveRecoveryTest, GoesOnWhenTheFolderIsThereAlthoughTheMountFailed) {
  remember("smb://nas/photos", "");
  drive.remountSucceeds = false;
  drive.whenRemounted = [this] {
    QDir().mkpath(gone);
    drive.setVolume(MountedVolume{"//nas/photos", "cifs"});
  };
  recovery.attemptBackupDriveRecovery(gone, false);
  ASSERT_TRUE(untilBack());
  EXPECT_EQ(status(), (StatusText{"Backup drive reconnected — resuming backups.", StatusKind::Good}));
}

// ---- How often

TEST_F(DriveRecoveryTest, TriesAtMostOnceAMinute) {
  remember("", kAddress);
  recovery.attemptBackupDriveRecovery(gone, false);
  clock.advance(30s);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls.size(), 1);
  clock.advance(30s - 1ms);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls.size(), 1);
  clock.advance(1ms);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls.size(), 2);
}

TEST_F(DriveRecoveryTest, IsNotHeldBackByAClockThatIsSet) {
  remember("", kAddress);
  recovery.attemptBackupDriveRecovery(gone, false);
  clock.setWallTime(clock.wallTime().addSecs(-3600));
  clock.advance(60s);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls.size(), 2);
}

TEST_F(DriveRecoveryTest, IgnoresTheLimitWhenForcedAndStartsItAnew) {
  remember("", kAddress);
  recovery.attemptBackupDriveRecovery(gone, false);
  clock.advance(30s);
  recovery.attemptBackupDriveRecovery(gone, true);
  EXPECT_EQ(drive.wakeCalls.size(), 2);
  clock.advance(40s);
  recovery.attemptBackupDriveRecovery(gone, false);
  EXPECT_EQ(drive.wakeCalls.size(), 2);
}
