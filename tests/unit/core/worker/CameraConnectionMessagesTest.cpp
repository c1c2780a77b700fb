// SPDX-License-Identifier: Apache-2.0
#include "ConnectionFixture.h"

namespace ambrel {
namespace {

class CameraConnectionMessagesTest : public ConnectionFixture {};

const char* const kStorageStatus =
    "Storage write failed. Check laptop free space and camera memory card space.";
const char* const kBusyStatus =
    "Camera busy — close EOS Utility / Photos / Image Capture, or replug the camera. Retrying…";

// Framing

TEST_F(CameraConnectionMessagesTest, TakesTwoLinesFromOneBlock) {
  connection.consumeWorkerChunk("DOWNLOADED|/a\nDOWNLOADED|/b\n");
  EXPECT_EQ(downloads, (std::vector<QString>{"/a", "/b"}));
}

TEST_F(CameraConnectionMessagesTest, TakesOneLineFromThreeBlocks) {
  for (const char* block : {"DOWNLO", "ADED|/a", "\n"})
    connection.consumeWorkerChunk(block);
  EXPECT_EQ(downloads, (std::vector<QString>{"/a"}));
}

TEST_F(CameraConnectionMessagesTest, TrimsLinesAndSkipsEmptyOnes) {
  connection.consumeWorkerChunk("\n \t\r\n  DOWNLOADED|/a \r\n");
  EXPECT_EQ(downloads, (std::vector<QString>{"/a"}));
}

TEST_F(CameraConnectionMessagesTest, DropsABlockThatIsNotUtf8AndNothingElse) {
  Q_EMIT link.blockArrived("DOWNLOADED|/a\n");
  Q_EMIT link.blockArrived("DOWNLOADED|/b\xC3\n");
  Q_EMIT link.blockArrived("");
  Q_EMIT link.blockArrived("DOWNLOADED|/José\n");
  EXPECT_EQ(downloads, (std::vector<QString>{"/a", "/José"}));
}

TEST_F(CameraConnectionMessagesTest, DiscardsALineBeyondAllMeasure) {
  const QString endless(100'000, 'x');
  connection.consumeWorkerChunk("DOWNLOADED|/" + endless);
  connection.consumeWorkerChunk(endless + "\nDOWNLOADED|/a\n");
  EXPECT_EQ(downloads, (std::vector<QString>{"/a"}));
}

// Messages in the order of their tests

TEST_F(CameraConnectionMessagesTest, IgnoresDiagnosticsAndWhatItDoesNotKnow) {
  connectPending();
  const std::string before = status();
  commands();
  for (const char* line : {"LOG|ERROR|disk", "CPP_WORKER|CONNECTED|", "WARN|CAPTURE_IGNORED_NOT_WATCHING|x",
                           "WARN|OTHER|", "connected|", "rubbish", "READY|OKAY", "ERROR", "\xEF\xBB\xBF"})
    link.say(line);
  EXPECT_EQ(status(), before);
  EXPECT_FALSE(connection.isConnected());
  EXPECT_TRUE(commands().empty());
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_TRUE(downloads.empty());
}

TEST_F(CameraConnectionMessagesTest, KnowsReadyWithBlanksBehindIt) {
  connection.connectCameraManual();
  link.say("READY|OK   ");
  EXPECT_EQ(commands(), (Lines{"CONNECT|both"}));
}

TEST_F(CameraConnectionMessagesTest, DoesNotTakeALongerWordForReady) {
  connection.connectCameraManual();
  link.say("READY|OK now");
  EXPECT_TRUE(commands().empty());
  EXPECT_FALSE(flags().workerReady);
}

TEST_F(CameraConnectionMessagesTest, SendsNothingOnReadyWhenNoConnectIsPending) {
  connection.startWorkerIfNeeded();
  controlsRefreshed = 0;
  link.say("READY|OK");
  EXPECT_TRUE(flags().workerReady);
  EXPECT_TRUE(commands().empty());
  EXPECT_EQ(controlsRefreshed, 1);
}

TEST_F(CameraConnectionMessagesTest, ShowsProgressOnThePillBeforeTheCameraIsThere) {
  connectPending();
  link.say("STATUS|Opening camera session");
  EXPECT_EQ(pill(), "Connecting…");
  EXPECT_EQ(pillTip(), "Camera: Opening camera session...");
  EXPECT_EQ(status(), "Connecting camera...");
}

TEST_F(CameraConnectionMessagesTest, ShowsProgressInTheStatusLineOnceTheCameraIsThere) {
  connectWhole();
  link.say("STATUS|setting save destination");
  EXPECT_EQ(status(), "Setting camera save mode...");
  EXPECT_EQ(kind(), StatusKind::Busy);
  link.say("STATUS|");
  EXPECT_EQ(status(), "");
}

TEST_F(CameraConnectionMessagesTest, TakesAnEmptyProgressTextAsNone) {
  connectPending();
  link.say("STATUS|opening camera session");
  link.say("STATUS|");
  EXPECT_EQ(pillTip(), "Camera: Connecting…");
}

TEST_F(CameraConnectionMessagesTest, WatchesOnceConnected) {
  connectPending();
  commands();
  link.say("CONNECTED|Canon EOS R6");
  EXPECT_EQ(commands(), (Lines{"SET_DOWNLOAD_DIR|" + targetDir.toStdString(), "PUMP_ACTIVE"}));
  EXPECT_TRUE(connection.isConnected());
  EXPECT_TRUE(connection.isWatching());
  EXPECT_EQ(rowSelections, 2) << "once connected, once watching";
  EXPECT_EQ(pill(), "Connected");
  EXPECT_EQ(status(), "Capturing");
}

TEST_F(CameraConnectionMessagesTest, LeavesNoTraceOfTheAttemptOnceConnected) {
  connection.startAutoDetectTimer();
  clock.advance(2500ms);
  link.say("READY|OK");
  link.say("STATUS|opening camera session");
  link.say("ERROR|camera busy");
  link.say("CONNECTED|");
  EXPECT_FALSE(flags().autoInitiatedConnect);
  EXPECT_FALSE(flags().autoReconnectScheduled);
  EXPECT_FALSE(flags().pendingConnect);
  connection.disconnectCamera();
  EXPECT_EQ(pill(), "Disconnected") << "no error is left";
}

TEST_F(CameraConnectionMessagesTest, BeginsWatchingAfreshWhenConnectedTwice) {
  connectWhole();
  commands();
  link.say("CONNECTED|");
  EXPECT_EQ(commands(), (Lines{"SET_DOWNLOAD_DIR|" + targetDir.toStdString(), "PUMP_ACTIVE"}));
}

TEST_F(CameraConnectionMessagesTest, RetriesWhenTheCameraGoesAway) {
  connectWhole();
  link.say("DISCONNECTED|");
  EXPECT_EQ(status(), "Camera disconnected. Retrying automatically...");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_FALSE(connection.isConnected());
  EXPECT_FALSE(connection.isWatching());
  EXPECT_TRUE(flags().autoReconnectScheduled);
  EXPECT_EQ(person.alerts.size(), 1U);
}

TEST_F(CameraConnectionMessagesTest, OnlyReportsACameraThatGoesAwayAfterADisconnect) {
  connectWhole();
  connection.disconnectCamera();
  link.say("DISCONNECTED|");
  EXPECT_EQ(status(), "Camera disconnected.");
  EXPECT_EQ(kind(), StatusKind::Neutral);
  EXPECT_FALSE(flags().autoReconnectScheduled);
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(CameraConnectionMessagesTest, FollowsTheWorkersWordOnWatching) {
  connectNotWatching();
  link.say("PUMP_ACTIVE_READY|");
  EXPECT_TRUE(connection.isWatching());
  EXPECT_EQ(status(), "Capturing");
  link.say("PUMP_IDLE_READY|");
  EXPECT_FALSE(connection.isWatching());
  EXPECT_EQ(status(), "No folder");
}

TEST_F(CameraConnectionMessagesTest, AlertsOnceOfAMissingCardAndShowsItEachTime) {
  connectPending();
  link.say("WARN|CARD_MISSING|");
  EXPECT_EQ(person.alerts,
            (std::vector<Alert>{{"Memory Card Required",
                                 "The camera does not appear to have a memory card inserted.\n\n"
                                 "Please insert a card when using Card or Both save mode."}}));
  EXPECT_EQ(status(), "No camera memory card detected.");
  EXPECT_EQ(kind(), StatusKind::Error);
  link.say("CONNECTED|");
  link.say("WARN|CARD_MISSING|");
  EXPECT_EQ(person.alerts.size(), 1U) << "connecting does not make it due again";
  EXPECT_EQ(status(), "No camera memory card detected.");
}

TEST_F(CameraConnectionMessagesTest, IgnoresAMissingCardWhenNoConnectionIsWanted) {
  connection.startWorkerIfNeeded();
  link.say("WARN|CARD_MISSING|");
  connectWhole();
  connection.disconnectCamera();
  link.say("WARN|CARD_MISSING|");
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_EQ(status(), "Camera disconnected.");
}

TEST_F(CameraConnectionMessagesTest, HandsOnADownloadWithBarsInItsPath) {
  connectWhole();
  link.say("DOWNLOADED|/photos/a|b|c.JPG");
  EXPECT_EQ(downloads, (std::vector<QString>{"/photos/a|b|c.JPG"}));
  EXPECT_EQ(status(), "Capturing");
}

// The shutter

TEST_F(CameraConnectionMessagesTest, WarnsOfACaptureThatIsNotWatched) {
  connectNotWatching();
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(status(), "Not watching — photos are ignored. Click Start before shooting.");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_EQ(person.alerts,
            (std::vector<Alert>{
                {"Not Watching Yet",
                 "The camera took a photo, but watching is not active, so nothing was saved.\n\nClick Start "
                 "before shooting. This reminder won't show again until you reconnect."}}));
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(person.alerts.size(), 1U);
}

TEST_F(CameraConnectionMessagesTest, SaysNothingOfACaptureThatIsWatched) {
  connectWhole();
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(status(), "Capturing");
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(CameraConnectionMessagesTest, SaysNothingOfACaptureWithoutAConnection) {
  connectPending();
  rowSelections = 0;
  currentRowValid = false;
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(status(), "Connecting camera...");
  EXPECT_EQ(rowSelections, 0);
}

TEST_F(CameraConnectionMessagesTest, SelectsAPersonForACaptureWhenNoneIs) {
  connectWhole();
  rowSelections = 0;
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(rowSelections, 0);
  currentRowValid = false;
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(rowSelections, 1);
  listHasRows = false;
  link.say("CAPTURE_EVENT|");
  EXPECT_EQ(rowSelections, 1);
}

// Errors

TEST_F(CameraConnectionMessagesTest, AlertsOnceOfAFailedWriteAndShowsItEachTime) {
  connectWhole();
  link.say("ERROR|Download failed: no space");
  EXPECT_EQ(person.alerts,
            (std::vector<Alert>{
                {"Storage Write Failed",
                 "The camera or laptop could not write the photo. Check laptop free space and the camera "
                 "memory card. Disk mode only needs laptop space; Card mode needs card space; Both mode may "
                 "fail if either destination cannot complete on some Canon bodies."}}));
  EXPECT_EQ(status(), kStorageStatus);
  EXPECT_EQ(kind(), StatusKind::Error);
  link.say("CONNECTED|");
  link.say("ERROR|disk");
  EXPECT_EQ(person.alerts.size(), 1U);
  EXPECT_EQ(status(), kStorageStatus);
  EXPECT_FALSE(flags().autoReconnectScheduled);
}

TEST_F(CameraConnectionMessagesTest, TakesAFailedWriteWithTheBusyCodeAsAFailedWrite) {
  connectWhole();
  link.say("ERROR|DOWNLOAD FAILED 0x000000C0");
  EXPECT_EQ(status(), kStorageStatus);
  EXPECT_FALSE(flags().autoReconnectScheduled);
}

TEST_F(CameraConnectionMessagesTest, RetriesWhenTheCameraIsBusy) {
  connectPending();
  link.say("STATUS|opening camera session");
  link.say("ERROR|open session 0x000000C0");
  EXPECT_EQ(status(), kBusyStatus);
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_TRUE(flags().autoReconnectScheduled);
  EXPECT_EQ(pillTip(), "Camera: Connecting…") << "the progress is forgotten";
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(CameraConnectionMessagesTest, ReportsAMissingCameraThatTheOperatorAskedFor) {
  connectPending();
  link.say("ERROR|camera not detected");
  EXPECT_EQ(status(), "Camera not detected. Check USB/camera power. Retrying...");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_EQ(pill(), "Connecting…");
  EXPECT_TRUE(flags().autoReconnectScheduled);
}

TEST_F(CameraConnectionMessagesTest, TakesAMissingCameraAsNoErrorWhenNobodyAsked) {
  connection.autoDetectTick();
  EXPECT_EQ(status(), "Connecting camera...");
  link.say("READY|OK");
  controlsRefreshed = 0;
  link.say("ERROR|CAMERA NOT DETECTED");
  EXPECT_EQ(status(), "Looking for camera... (plug in and power on your camera)");
  EXPECT_EQ(kind(), StatusKind::Busy);
  EXPECT_EQ(pill(), "Searching…");
  EXPECT_TRUE(flags().autoReconnectScheduled);
  EXPECT_EQ(controlsRefreshed, 1);
}

TEST_F(CameraConnectionMessagesTest, ShowsAnyOtherErrorAsItIsAndWaits) {
  connectPending();
  link.say("ERROR|Lens Error: 0xAB");
  EXPECT_EQ(status(), "Lens Error: 0xAB");
  EXPECT_EQ(kind(), StatusKind::Error);
  EXPECT_FALSE(flags().autoReconnectScheduled);
  clock.advance(60000ms);
  EXPECT_EQ(link.launches.size(), 1U);
}

TEST_F(CameraConnectionMessagesTest, RetriesNothingAfterADisconnect) {
  connectPending();
  connection.disconnectCamera();
  link.say("ERROR|camera busy");
  link.say("ERROR|camera not detected");
  EXPECT_FALSE(flags().autoReconnectScheduled);
}

TEST_F(CameraConnectionMessagesTest, ReturnsToReadinessThreeAndAHalfSecondsAfterAMessage) {
  connectNotWatching();
  link.say("STATUS|setting save destination");
  clock.advance(3500ms);
  EXPECT_EQ(status(), "No folder");
}

TEST_F(CameraConnectionMessagesTest, SurvivesEveryByteAsALine) {
  connectWhole();
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    Q_EMIT link.blockArrived(QByteArray(1, character) + '\n');
    Q_EMIT link.blockArrived(QByteArray("ERROR|") + character + '\n');
    Q_EMIT link.blockArrived(QByteArray("DOWNLOADED|/") + character + '\n');
  }
  EXPECT_TRUE(connection.isConnected());
}

}  // namespace
}  // namespace ambrel
