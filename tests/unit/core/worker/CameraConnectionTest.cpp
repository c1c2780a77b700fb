// SPDX-License-Identifier: Apache-2.0
#include "ConnectionFixture.h"
#include "core/worker/CameraConnection.h"

namespace ambrel {
namespace {

class CameraConnectionTest : public ConnectionFixture {};

// Auto-detect

TEST_F(CameraConnectionTest, LooksForACameraEveryTwoAndAHalfSeconds) {
  connection.startAutoDetectTimer();
  clock.advance(2499ms);
  EXPECT_TRUE(link.launches.empty());
  clock.advance(1ms);
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_TRUE(flags().autoInitiatedConnect);
  EXPECT_EQ(pill(), "Searching…");
}

TEST_F(CameraConnectionTest, StartsTheAutoDetectTimerOnce) {
  connection.startAutoDetectTimer();
  connection.startAutoDetectTimer();
  EXPECT_EQ(clock.pendingTimers(), 1U);
}

TEST_F(CameraConnectionTest, StopsLookingWhenTheTimerIsStopped) {
  connection.startAutoDetectTimer();
  connection.stopAutoDetectTimer();
  clock.advance(10000ms);
  EXPECT_TRUE(link.launches.empty());
}

TEST_F(CameraConnectionTest, KeepsQuietOnceAConnectIsWanted) {
  connection.startAutoDetectTimer();
  clock.advance(2500ms);
  clock.advance(10000ms);
  EXPECT_EQ(connectsStarted, 1);
}

TEST_F(CameraConnectionTest, SearchesWithoutAlertsWhileNoCameraIsThere) {
  connection.startAutoDetectTimer();
  clock.advance(2500ms);
  for (int attempt = 1; attempt <= 5; ++attempt) {
    SCOPED_TRACE(attempt);
    link.say("READY|OK");
    EXPECT_EQ(commands().back(), "CONNECT|both");
    link.say("ERROR|Camera not detected");
    EXPECT_EQ(pill(), "Searching…");
    EXPECT_EQ(status(), "Looking for camera... (plug in and power on your camera)");
    EXPECT_EQ(kind(), StatusKind::Busy);
    clock.advance(CameraConnection::kReconnectDelay);
    EXPECT_EQ(commands(), (Lines{"PUMP_IDLE", "DISCONNECT", "QUIT"}));
    link.exit();
    EXPECT_EQ(link.launches.size(), static_cast<std::size_t>(attempt + 1));
  }
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_EQ(connectsStarted, 1);
}

TEST_F(CameraConnectionTest, TurnsAutoConnectOnAndOffAndRemembersIt) {
  connection.toggleAutoConnect();
  EXPECT_FALSE(connection.isAutoConnect());
  EXPECT_EQ(preferences.autoConnect(), false);
  EXPECT_EQ(status(), "Auto-connect OFF: click Connect Camera to connect.");
  EXPECT_EQ(kind(), StatusKind::Neutral);
  EXPECT_EQ(pill(), "Auto off");
  connection.toggleAutoConnect();
  EXPECT_TRUE(connection.isAutoConnect());
  EXPECT_EQ(preferences.autoConnect(), true);
  EXPECT_EQ(status(), "Auto-connect ON: the camera connects on its own once a folder is set.");
  EXPECT_EQ(pill(), "No camera");
}

TEST_F(CameraConnectionTest, RestoresAutoConnectWhichIsOnByDefault) {
  connection.restoreAutoConnect();
  EXPECT_TRUE(connection.isAutoConnect());
  preferences.setAutoConnect(false);
  connection.restoreAutoConnect();
  EXPECT_FALSE(connection.isAutoConnect());
  connection.startAutoDetectTimer();
  clock.advance(10000ms);
  EXPECT_TRUE(link.launches.empty());
}

// Connecting

TEST_F(CameraConnectionTest, StartsTheWorkerAndConnectsWhenItIsReady) {
  connection.connectCameraManual();
  EXPECT_EQ(status(), "Connecting camera...");
  EXPECT_EQ(kind(), StatusKind::Busy);
  EXPECT_EQ(pill(), "Connecting…");
  EXPECT_TRUE(connection.isConnectPending());
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_TRUE(commands().empty());
  saveMode = "card";
  link.say("READY|OK");
  EXPECT_EQ(commands(), (Lines{"CONNECT|card"}));
  EXPECT_FALSE(connection.isConnectPending());
}

TEST_F(CameraConnectionTest, ConnectsAtOnceWhenTheWorkerIsReadyAndHasTheCamera) {
  connectWhole();
  commands();
  connection.connectCameraManual();
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_EQ(link.terminations, 0);
}

TEST_F(CameraConnectionTest, RestartsAWorkerThatHasNoCamera) {
  connectPending();
  commands();
  connection.connectCameraManual();
  EXPECT_EQ(commands(), (Lines{"QUIT"}));
  EXPECT_EQ(link.terminations, 1);
  link.exit();
  EXPECT_EQ(link.launches.size(), 2U) << "the exit restarts it at once";
  EXPECT_EQ(status(), "Connecting camera...");
  clock.advance(CameraConnection::kRestartDelay);
  EXPECT_EQ(link.launches.size(), 2U) << "the delay finds it running";
  link.say("READY|OK");
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
}

TEST_F(CameraConnectionTest, ConnectsTheNewWorkerWhateverTheOldOneSaidWhileItEnded) {
  for (const char* lastWords : {"READY|OK", "CONNECTED|"}) {
    SCOPED_TRACE(lastWords);
    connection.connectCameraManual();
    connection.connectCameraManual();
    link.say(lastWords);
    commands();
    link.exit();
    link.say("READY|OK");
    EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
    link.exit();
  }
}

TEST_F(CameraConnectionTest, WaitsForAWorkerThatIsSlowToEnd) {
  connectPending();
  connection.connectCameraManual();
  clock.advance(5000ms);
  EXPECT_EQ(link.launches.size(), 1U);
  link.exit();
  EXPECT_EQ(link.launches.size(), 2U);
}

TEST_F(CameraConnectionTest, MakesTheWarningsOfAConnectionDueAgain) {
  connectNotWatching();
  link.say("ERROR|disk full");
  link.say("CAPTURE_EVENT|");
  link.say("WARN|CARD_MISSING|");
  ASSERT_EQ(person.alerts.size(), 3U);
  connection.connectCameraManual();
  EXPECT_EQ(connectsStarted, 2);
  link.say("ERROR|disk full");
  link.say("CAPTURE_EVENT|");
  link.say("WARN|CARD_MISSING|");
  EXPECT_EQ(person.alerts.size(), 6U);
}

TEST_F(CameraConnectionTest, ForgetsTheLastErrorWhenItConnectsAgain) {
  connectPending();
  link.say("ERROR|Lens error");
  connection.disconnectCamera();
  EXPECT_EQ(pill(), "Error");
  connection.connectCameraManual();
  EXPECT_EQ(pill(), "Connecting…");
}

TEST_F(CameraConnectionTest, ConnectsOrDisconnectsWithOneControl) {
  connection.toggleCameraConnection();
  EXPECT_TRUE(flags().connectRequested);
  EXPECT_FALSE(flags().autoInitiatedConnect);
  link.say("READY|OK");
  link.say("CONNECTED|");
  connection.toggleCameraConnection();
  EXPECT_FALSE(connection.isConnected());
  EXPECT_EQ(status(), "Camera disconnected.");
}

TEST_F(CameraConnectionTest, StopsRetryingWhenTheControlIsPressedMeanwhile) {
  connectPending();
  link.say("ERROR|camera not detected");
  commands();
  connection.toggleCameraConnection();
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE", "DISCONNECT", "QUIT"}));
  link.exit();
  clock.advance(20000ms);
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_FALSE(flags().connectRequested);
}

// Disconnecting

TEST_F(CameraConnectionTest, DisconnectsInOrderAndEndsTheWorkerHalfASecondLater) {
  connectWhole();
  commands();
  connection.disconnectCamera();
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE", "DISCONNECT", "QUIT"}));
  EXPECT_EQ(status(), "Camera disconnected.");
  EXPECT_EQ(kind(), StatusKind::Neutral);
  EXPECT_EQ(pill(), "Disconnected");
  EXPECT_FALSE(connection.isWatching());
  clock.advance(499ms);
  EXPECT_EQ(link.terminations, 0);
  EXPECT_TRUE(link.isRunning());
  clock.advance(1ms);
  EXPECT_EQ(link.terminations, 1);
  EXPECT_FALSE(link.isRunning());
  EXPECT_FALSE(flags().workerReady);
}

TEST_F(CameraConnectionTest, EndsSilentlyAfterAManualDisconnect) {
  connectWhole();
  connection.disconnectCamera();
  link.exit();
  clock.advance(CameraConnection::kDisconnectGrace);
  EXPECT_EQ(link.terminations, 0);
  EXPECT_EQ(status(), "Camera disconnected.");
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(CameraConnectionTest, StaysAwayAfterAManualDisconnect) {
  connection.startAutoDetectTimer();
  connectWhole();
  connection.disconnectCamera();
  link.exit();
  clock.advance(60000ms);
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_EQ(pill(), "Disconnected");
}

TEST_F(CameraConnectionTest, ComesBackAfterAManualDisconnectWhenAutoConnectIsToggled) {
  connection.startAutoDetectTimer();
  connectWhole();
  connection.disconnectCamera();
  link.exit();
  connection.toggleAutoConnect();
  connection.toggleAutoConnect();
  clock.advance(2500ms);
  EXPECT_EQ(link.launches.size(), 2U);
}

TEST_F(CameraConnectionTest, ConnectsAgainAfterAManualDisconnectWhenToldTo) {
  connectWhole();
  connection.disconnectCamera();
  link.exit();
  connection.connectCameraManual();
  link.say("READY|OK");
  EXPECT_EQ(commands().back(), "CONNECT|both");
}

TEST_F(CameraConnectionTest, DisconnectsWithoutAWorkerAtOnce) {
  connection.disconnectCamera();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(status(), "Camera disconnected.");
  clock.advance(1000ms);
  EXPECT_EQ(link.terminations, 0);
}

TEST_F(CameraConnectionTest, NeverConnectsAfterADisconnectThatCameBeforeReady) {
  connection.connectCameraManual();
  connection.disconnectCamera();
  EXPECT_EQ(pill(), "Disconnected");
  EXPECT_FALSE(connection.isConnectPending());
  commands();
  link.say("READY|OK");
  EXPECT_TRUE(commands().empty());
}

TEST_F(CameraConnectionTest, StartsNothingAfterADisconnectInTheMiddleOfARestart) {
  connectPending();
  connection.connectCameraManual();  // restarts the worker
  connection.disconnectCamera();
  link.exit();
  clock.advance(10000ms);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionTest, LeavesANewWorkerAloneThatStartedWithinTheGraceOfADisconnect) {
  connectWhole();
  connection.disconnectCamera();
  link.exit();
  connection.connectCameraManual();
  clock.advance(1000ms);
  EXPECT_EQ(link.terminations, 0);
  EXPECT_TRUE(link.isRunning());
}

// Forced reconnect

TEST_F(CameraConnectionTest, ForcesAReconnectStepByStep) {
  connectWhole();
  commands();
  const qint64 oldWorker = link.processId();
  connection.forceCameraReconnect();
  EXPECT_EQ(commands(), (Lines{"QUIT"}));
  EXPECT_EQ(link.terminations, 1);
  EXPECT_FALSE(link.isRunning());
  EXPECT_EQ(status(), "Forcing camera session restart…");
  EXPECT_EQ(kind(), StatusKind::Busy);
  clock.advance(799ms);
  EXPECT_TRUE(link.kills.empty());
  clock.advance(1ms);
  EXPECT_EQ(link.kills, (std::vector<qint64>{oldWorker}));
  clock.advance(199ms);
  EXPECT_TRUE(sweeps.empty());
  clock.advance(1ms);
  EXPECT_EQ(sweeps, (std::vector<qint64>{0}));
  clock.advance(799ms);
  EXPECT_EQ(link.launches.size(), 1U);
  clock.advance(1ms);
  EXPECT_EQ(link.launches.size(), 2U);
  EXPECT_EQ(status(), "Connecting camera...");
}

TEST_F(CameraConnectionTest, ReportsTheOldWorkersEndOnlyAsStoppedDuringAForcedReconnect) {
  connectWhole();
  connection.forceCameraReconnect();
  link.exitDropped();
  EXPECT_EQ(status(), "Camera worker stopped.");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_FALSE(flags().autoReconnectScheduled);
  EXPECT_FALSE(flags().watching);
}

TEST_F(CameraConnectionTest, StartsNothingEarlyWhenForcedInTheMiddleOfARestart) {
  connectPending();
  connection.connectCameraManual();  // restarts the worker
  connection.forceCameraReconnect();
  link.exitDropped();
  EXPECT_EQ(link.launches.size(), 1U);
  EXPECT_EQ(status(), "Camera worker stopped.");
}

TEST_F(CameraConnectionTest, ForcesAReconnectWithoutAWorker) {
  connection.forceCameraReconnect();
  clock.advance(CameraConnection::kForceConnectDelay);
  EXPECT_TRUE(link.kills.empty());
  EXPECT_EQ(sweeps.size(), 1U);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionTest, ForgetsAForcedReconnectWhenTheOperatorDisconnects) {
  connectWhole();
  connection.forceCameraReconnect();
  connection.disconnectCamera();
  clock.advance(10000ms);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionTest, LiftsTheRestOfAutoConnectByAForcedReconnect) {
  connection.disconnectCamera();
  connection.forceCameraReconnect();
  EXPECT_FALSE(flags().autoConnectSuppressed);
  EXPECT_FALSE(flags().manualDisconnect);
}

// Automatic reconnection

TEST_F(CameraConnectionTest, RestartsARunningWorkerTwoSecondsAfterTheLoss) {
  connectWhole();
  link.say("DISCONNECTED|");
  commands();
  clock.advance(1999ms);
  EXPECT_TRUE(commands().empty());
  clock.advance(1ms);
  EXPECT_EQ(status(), "Trying to reconnect camera...");
  EXPECT_EQ(kind(), StatusKind::Busy);
  EXPECT_TRUE(connection.isConnectPending());
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE", "DISCONNECT", "QUIT"}));
  clock.advance(699ms);
  EXPECT_EQ(link.terminations, 0);
  clock.advance(1ms);
  EXPECT_EQ(link.terminations, 1);
  link.exit();
  EXPECT_EQ(link.launches.size(), 2U);
  link.say("READY|OK");
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
}

TEST_F(CameraConnectionTest, DoesNotTerminateTheSuccessorOfAWorkerThatQuitByItself) {
  connectWhole();
  link.say("DISCONNECTED|");
  clock.advance(CameraConnection::kReconnectDelay);
  link.exit();
  ASSERT_EQ(link.launches.size(), 2U);
  clock.advance(CameraConnection::kReconnectGrace);
  EXPECT_EQ(link.terminations, 0);
}

TEST_F(CameraConnectionTest, StartsAnotherWorkerTwoSecondsAfterOneWasLost) {
  connectWhole();
  link.exit();
  clock.advance(1999ms);
  EXPECT_EQ(link.launches.size(), 1U);
  clock.advance(1ms);
  EXPECT_EQ(link.launches.size(), 2U);
  commands();
  link.say("READY|OK");
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
}

TEST_F(CameraConnectionTest, RestartsACrashingWorkerOnceInTwoSecondsOnly) {
  connectWhole();
  for (int crash = 0; crash < 10; ++crash) {
    link.exit();
    clock.advance(CameraConnection::kReconnectDelay);
  }
  EXPECT_EQ(link.launches.size(), 11U);
  EXPECT_EQ(person.alerts.size(), 1U);
}

TEST_F(CameraConnectionTest, SchedulesOneAttemptHoweverOftenTheLossIsReported) {
  connectWhole();
  for (int report = 0; report < 5; ++report)
    link.say("DISCONNECTED|");
  link.say("ERROR|camera busy");
  commands();
  clock.advance(CameraConnection::kReconnectDelay);
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE", "DISCONNECT", "QUIT"}));
}

TEST_F(CameraConnectionTest, GivesUpAnAttemptWhenTheCameraIsBack) {
  connectWhole();
  link.say("DISCONNECTED|");
  link.say("CONNECTED|");
  commands();
  clock.advance(10000ms);
  EXPECT_TRUE(commands().empty());
  EXPECT_TRUE(connection.isConnected());
}

TEST_F(CameraConnectionTest, WaitsTheFullTwoSecondsAgainAfterADisconnectAndConnect) {
  connectWhole();
  link.say("DISCONNECTED|");
  clock.advance(1500ms);
  connection.disconnectCamera();
  link.exit();
  connectWhole();
  link.say("DISCONNECTED|");
  commands();
  clock.advance(1999ms);
  EXPECT_TRUE(commands().empty());
  clock.advance(1ms);
  EXPECT_FALSE(commands().empty());
}

TEST_F(CameraConnectionTest, AlertsOfALostCameraOncePerConnection) {
  connectWhole();
  for (int loss = 0; loss < 3; ++loss)
    link.say("DISCONNECTED|");
  EXPECT_EQ(person.alerts,
            (std::vector<Alert>{
                {"Camera Disconnected",
                 "The camera is no longer detected. Ambrel Photo Tether will try to reconnect automatically. "
                 "If it does not reconnect, check the USB cable and camera power."}}));
  link.say("CONNECTED|");
  link.say("DISCONNECTED|");
  EXPECT_EQ(person.alerts.size(), 2U);
}

// Watching

TEST_F(CameraConnectionTest, WatchesByItselfOnceCameraFolderAndNamesAreThere) {
  targetDir.clear();
  listHasRows = false;
  connectWhole();
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
  EXPECT_EQ(status(), "Setup needed");
  targetDir = home.filePath("target");
  connection.updateAutoWatch();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(status(), "No names");
  listHasRows = true;
  rowSelections = 0;
  connection.updateAutoWatch();
  EXPECT_EQ(commands(), (Lines{"SET_DOWNLOAD_DIR|" + targetDir.toStdString(), "PUMP_ACTIVE"}));
  EXPECT_EQ(rowSelections, 1);
  EXPECT_TRUE(connection.isWatching());
  EXPECT_EQ(status(), "Capturing");
  EXPECT_EQ(kind(), StatusKind::Watching);
  connection.updateAutoWatch();
  EXPECT_TRUE(commands().empty());
}

TEST_F(CameraConnectionTest, StopsWatchingWithoutNamesOrFolder) {
  connectWhole();
  commands();
  listHasRows = false;
  connection.updateAutoWatch();
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE"}));
  EXPECT_FALSE(connection.isWatching());
  EXPECT_TRUE(connection.isConnected());
  listHasRows = true;
  connection.updateAutoWatch();
  commands();
  targetDir.clear();
  connection.updateAutoWatch();
  EXPECT_EQ(commands(), (Lines{"PUMP_IDLE"}));
}

TEST_F(CameraConnectionTest, WarnsOfIgnoredCapturesAgainAfterWatchingBegan) {
  connectNotWatching();
  link.say("CAPTURE_EVENT|");
  targetDir = home.filePath("target");
  connection.updateAutoWatch();
  targetDir.clear();
  connection.updateAutoWatch();
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(person.alerts.size(), 2U);
}

// Settings that change meanwhile

TEST_F(CameraConnectionTest, TellsTheCameraANewSaveMode) {
  connectNotWatching();
  saveMode = "disk";
  connection.saveModeChanged();
  EXPECT_EQ(commands(), (Lines{"SET_SAVE_DEST|disk"}));
  EXPECT_EQ(status(), "Save mode changed to DISK.");
  EXPECT_EQ(kind(), StatusKind::Good);
}

TEST_F(CameraConnectionTest, SendsNoSaveModeWhileWatching) {
  connectWhole();
  commands();
  controlsRefreshed = 0;
  connection.saveModeChanged();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(status(), "Capturing");
  EXPECT_EQ(controlsRefreshed, 1);
}

TEST_F(CameraConnectionTest, SendsNoSaveModeWithoutACamera) {
  connectPending();
  commands();
  connection.saveModeChanged();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(status(), "Connecting camera...");
}

TEST_F(CameraConnectionTest, TellsARunningWorkerANewTargetFolder) {
  connection.downloadFolderChanged();
  EXPECT_TRUE(commands().empty());
  connectPending();
  commands();
  targetDir = "/photos/été|1";
  connection.downloadFolderChanged();
  EXPECT_EQ(commands(), (Lines{"SET_DOWNLOAD_DIR|/photos/été|1"}));
}

// Quitting

TEST_F(CameraConnectionTest, EndsTheWorkerAtOnceWhenTheApplicationQuits) {
  connectWhole();
  commands();
  connection.shutDown();
  EXPECT_EQ(commands(), (Lines{"QUIT"}));
  EXPECT_EQ(link.terminations, 1);
  const std::string before = status();
  link.exit();
  EXPECT_EQ(status(), before);
  EXPECT_TRUE(person.alerts.empty());
  clock.advance(10000ms);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionTest, StartsNoWorkerWhenTheApplicationQuitsInTheMiddleOfARestart) {
  connectPending();
  connection.connectCameraManual();
  connection.shutDown();
  link.exit();
  clock.advance(10000ms);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionTest, QuitsWithoutAWorker) {
  connection.shutDown();
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(link.terminations, 0);
}

TEST_F(CameraConnectionTest, ReportsAChangeOfThePillOnce) {
  int changes = 0;
  QObject::connect(&connection, &CameraConnection::pillChanged, [&changes] { ++changes; });
  connection.refreshCameraStatus();
  EXPECT_EQ(changes, 1);
  connection.refreshCameraStatus();
  EXPECT_EQ(changes, 1);
  targetDir.clear();
  connection.refreshCameraStatus();
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(pill(), "No folder");
}

}  // namespace
}  // namespace ambrel
