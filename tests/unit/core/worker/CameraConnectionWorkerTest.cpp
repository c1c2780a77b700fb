// SPDX-License-Identifier: Apache-2.0
#include "ConnectionFixture.h"

namespace ambrel {
namespace {

class CameraConnectionWorkerTest : public ConnectionFixture {};

TEST_F(CameraConnectionWorkerTest, StartsTheWorkerWithTheTargetFolder) {
  saveMode = "disk";
  connection.startWorkerIfNeeded();
  ASSERT_EQ(link.launches.size(), 1U);
  EXPECT_EQ(link.launches[0].program, files.workerPath());
  EXPECT_EQ(link.launches[0].arguments, (QStringList{targetDir, files.sdkPath(), "disk"}));
}

TEST_F(CameraConnectionWorkerTest, StartsTheWorkerWithAFolderOfItsOwnBeforeOneIsChosen) {
  targetDir.clear();
  for (int start = 0; start < 2; ++start) {
    connection.startWorkerIfNeeded();
    link.exit();
  }
  ASSERT_EQ(link.launches.size(), 2U);
  EXPECT_EQ(link.launches[0].arguments[0], home.filePath("tmp/AmbrelTether-unset"));
  EXPECT_TRUE(QFileInfo(home.filePath("tmp/AmbrelTether-unset")).isDir());
}

TEST_F(CameraConnectionWorkerTest, ChangesNothingWhenAWorkerRuns) {
  connectWhole();
  commands();
  connection.startWorkerIfNeeded();
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_TRUE(connection.isConnected());
  EXPECT_TRUE(flags().workerReady);
  EXPECT_TRUE(commands().empty());
}

TEST_F(CameraConnectionWorkerTest, ForgetsTheOldWorkersHalfLineWhenAnotherStarts) {
  connectWhole();
  connection.consumeWorkerChunk("ERROR|half a li");
  link.exit();
  clock.advance(CameraConnection::kReconnectDelay);
  connection.consumeWorkerChunk("READY|OK\n");
  EXPECT_TRUE(flags().workerReady);
}

// What stands in the way of a start

TEST_F(CameraConnectionWorkerTest, TellsWhenTheWorkerIsMissing) {
  ASSERT_TRUE(QFile::remove(files.workerPath()));
  connection.connectCameraManual();
  EXPECT_EQ(
      person.alerts,
      (std::vector<Alert>{{"Worker Missing", "Cannot find executable worker:\n" + files.workerPath()}}));
  EXPECT_EQ(status(), "Camera worker is missing.");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_TRUE(link.launches.empty());
}

TEST_F(CameraConnectionWorkerTest, TellsWhenTheWorkerIsAFolder) {
  ASSERT_TRUE(QFile::remove(files.workerPath()));
  ASSERT_TRUE(QDir().mkpath(files.workerPath()));
  connection.startWorkerIfNeeded();
  EXPECT_EQ(status(), "Camera worker is missing.");
}

TEST_F(CameraConnectionWorkerTest, TellsWhenTheWorkerIsNotExecutable) {
  ASSERT_TRUE(QFile(files.workerPath()).setPermissions(QFile::ReadOwner));
  connection.startWorkerIfNeeded();
  EXPECT_EQ(status(), "Camera worker is missing.");
}

TEST_F(CameraConnectionWorkerTest, TellsWhenTheTargetFolderIsGoneAtEveryAttempt) {
  targetDir = home.filePath("deleted");
  for (std::size_t attempt = 1; attempt <= 3; ++attempt) {
    connection.connectCameraManual();
    ASSERT_EQ(person.alerts.size(), attempt);
    EXPECT_EQ(person.alerts.back(),
              (Alert{"Target Folder Missing",
                     "The selected Target Folder no longer exists. Please choose it again."}));
    EXPECT_EQ(status(), "Target folder missing.");
    EXPECT_EQ(kind(), StatusKind::Error);
  }
  EXPECT_TRUE(link.launches.empty());
}

TEST_F(CameraConnectionWorkerTest, TellsWhenTheTargetFolderIsAFile) {
  targetDir = files.workerPath();
  connection.startWorkerIfNeeded();
  EXPECT_EQ(status(), "Target folder missing.");
}

TEST_F(CameraConnectionWorkerTest, TellsWhyALaunchFailed) {
  link.failLaunchWith = "Too many open files";
  connection.connectCameraManual();
  EXPECT_EQ(person.alerts, (std::vector<Alert>{{"Worker Launch Failed", "Too many open files"}}));
  EXPECT_EQ(status(), "Unable to start camera worker.");
  EXPECT_EQ(kind(), StatusKind::Error);
}

TEST_F(CameraConnectionWorkerTest, TellsWhyALaunchFailedLate) {
  connection.connectCameraManual();
  link.failLaunchLate("Exec format error");
  EXPECT_EQ(person.alerts, (std::vector<Alert>{{"Worker Launch Failed", "Exec format error"}}));
  EXPECT_EQ(status(), "Unable to start camera worker.");
}

TEST_F(CameraConnectionWorkerTest, LeavesTheFolderButtonUsableAfterAFailedStart) {
  targetDir = home.filePath("deleted");
  connection.connectCameraManual();
  EXPECT_FALSE(connection.isConnectPending());
}

// The end of a worker

TEST_F(CameraConnectionWorkerTest, TreatsTheExitOfAWantedWorkerAsALostCamera) {
  connectWhole();
  link.exit();
  EXPECT_EQ(status(), "Camera connection was lost.");
  EXPECT_EQ(kind(), StatusKind::Error);
  ASSERT_EQ(person.alerts.size(), 1U);
  EXPECT_EQ(person.alerts[0].title, "Camera Disconnected");
  EXPECT_FALSE(flags().workerReady);
  EXPECT_FALSE(connection.isConnected());
  EXPECT_FALSE(connection.isWatching());
  EXPECT_TRUE(flags().autoReconnectScheduled);
}

TEST_F(CameraConnectionWorkerTest, ReportsTheExitOfAWorkerThatNobodyWanted) {
  connection.startWorkerIfNeeded();
  link.exit();
  EXPECT_EQ(status(), "Camera worker stopped.");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(CameraConnectionWorkerTest, StartsAnotherAtOnceAndSaysNothingWhenTheExitWasWanted) {
  connectPending();
  connection.connectCameraManual();
  const std::string before = status();
  link.exit();
  EXPECT_EQ(link.launches.size(), 2U);
  EXPECT_EQ(status(), before);
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_FALSE(flags().restartingWorkerForConnect);
}

TEST_F(CameraConnectionWorkerTest, IgnoresTheEndOfAWorkerThatHasASuccessor) {
  connectWhole();
  connection.forceCameraReconnect();
  clock.advance(CameraConnection::kForceConnectDelay);
  link.say("READY|OK");
  link.say("CONNECTED|");
  const std::string before = status();
  link.exitDropped();
  EXPECT_TRUE(connection.isConnected());
  EXPECT_TRUE(connection.isWatching());
  EXPECT_TRUE(flags().workerReady);
  EXPECT_EQ(status(), before);
}

TEST_F(CameraConnectionWorkerTest, RefreshesTheControlsAfterEveryExit) {
  connectWhole();
  connection.disconnectCamera();
  controlsRefreshed = 0;
  link.exit();
  EXPECT_EQ(controlsRefreshed, 1);
}

// Sending

TEST_F(CameraConnectionWorkerTest, TellsWhenThePipeIsBroken) {
  connectWhole();
  link.pipeBroken = true;
  connection.downloadFolderChanged();
  EXPECT_EQ(status(), "Unable to communicate with camera worker.");
  EXPECT_EQ(kind(), StatusKind::Error);
}

TEST_F(CameraConnectionWorkerTest, DropsCommandsSilentlyWithoutAWorker) {
  const std::string before = status();
  connection.downloadFolderChanged();
  EXPECT_EQ(status(), before);
  EXPECT_TRUE(commands().empty());
}

TEST_F(CameraConnectionWorkerTest, NeverMakesTwoCommandsOfAFolderWithALineBreak) {
  connectWhole();
  commands();
  targetDir = "/photos\nQUIT";
  connection.downloadFolderChanged();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(status(), "Unable to communicate with camera worker.");
}

}  // namespace
}  // namespace ambrel
