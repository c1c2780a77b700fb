// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "FakeCamera.h"
#include "camera/CommandLoop.h"
#include "support/TemporaryFolder.h"

namespace ambrel::camera {
namespace {

using std::chrono::milliseconds;
using Lines = std::vector<std::string>;

const std::string kJpeg = std::string("\xFF\xD8\xFF\xE1") + "picture" + "\xFF\xD9";
const std::string kRaw = "raw raw raw";
const Failure kBusy{Failure::Kind::Busy, "I/O in progress (-110)"};
const Failure kLost{Failure::Kind::Lost, "I/O problem (-7)"};

CameraFile jpegOnCard(const std::string& name) {
  return {"/store_00010001/DCIM/100CANON", name, kJpeg.size()};
}
CameraFile rawOnCard(const std::string& name) {
  return {"/store_00010001/DCIM/100CANON", name, kRaw.size()};
}
CameraFile jpegInMemory(const std::string& name) {
  return {"/", name, kJpeg.size()};
}

class CommandLoop : public ::testing::Test {
 protected:
  CommandLoop() { folder.use(target.path()); }

  void connectAt(milliseconds at, const std::string& mode = "both") { channel.send(at, "CONNECT|" + mode); }
  // Connects, and watches from 100 ms on.
  void watch(const std::string& mode = "both") {
    connectAt(milliseconds(0), mode);
    channel.send(milliseconds(100), "PUMP_ACTIVE");
  }
  // Everything that was said but LOG and STATUS, from READY to the end.
  const Lines& run() {
    camera::CommandLoop(camera, folder, channel, channel, SaveMode::Both).run();
    EXPECT_FALSE(camera.sessionOpen) << "the session was left open";
    return channel.said;
  }
  // Between the times at which the camera was asked for events.
  std::vector<milliseconds> pausesBetween(milliseconds from, milliseconds to) const {
    std::vector<milliseconds> pauses;
    for (std::size_t i = 1; i < camera.askedAt.size(); ++i)
      if (camera.askedAt[i - 1] >= from && camera.askedAt[i] <= to)
        pauses.push_back(camera.askedAt[i] - camera.askedAt[i - 1]);
    EXPECT_GT(pauses.size(), 10u);
    return pauses;
  }
  milliseconds longestPauseBetween(milliseconds from, milliseconds to) const {
    return std::ranges::max(pausesBetween(from, to));
  }
  milliseconds shortestPauseBetween(milliseconds from, milliseconds to) const {
    return std::ranges::min(pausesBetween(from, to));
  }
  std::string downloaded(const std::string& name) { return "DOWNLOADED|" + target.file(name); }
  // Folders that cannot be written, also for root, are those that are not there.
  void loseTarget() { std::filesystem::remove(target.path()); }

  ambrel::test::TemporaryFolder target;
  test::FakeChannel channel;
  test::FakeCamera camera{channel};
  DownloadFolder folder;
};

// ---- Connecting

TEST_F(CommandLoop, IsReadyAtOnceAndEndsWithItsInput) {
  EXPECT_EQ(run(), (Lines{"READY|OK"}));
}

TEST_F(CommandLoop, EndsOnQuit) {
  channel.send(milliseconds(50), "QUIT");
  run();
  EXPECT_EQ(channel.elapsed(), milliseconds(50));
}

TEST_F(CommandLoop, ConnectsStepByStep) {
  connectAt(milliseconds(0));
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|"}));
  EXPECT_EQ(channel.statuses,
            (Lines{"waiting for camera usb", "connecting to camera", "opening camera session",
                   "setting save destination", "checking camera memory card", "connected"}));
}

TEST_F(CommandLoop, OpensTheCameraInTheSaveModeOfTheCommand) {
  connectAt(milliseconds(0), "disk");
  run();
  EXPECT_EQ(camera.modes, (std::vector<SaveMode>{SaveMode::Disk, SaveMode::Disk}));
}

TEST_F(CommandLoop, KeepsTheSaveModeItWasStartedWithWhenTheWordIsUnknown) {
  connectAt(milliseconds(0), "nonsense");
  run();
  EXPECT_EQ(camera.modes.front(), SaveMode::Both);
}

TEST_F(CommandLoop, SaysThatThereIsNoCamera) {
  camera.findFailures = {{Failure::Kind::NotFound, "none is plugged in"}};
  connectAt(milliseconds(0));
  EXPECT_EQ(run(), (Lines{"READY|OK", "ERROR|camera not detected: none is plugged in"}));
}

TEST_F(CommandLoop, SaysThatAnotherProgramHoldsTheCamera) {
  camera.openFailures = {{Failure::Kind::InUse, "Could not claim the USB device (-53)"}};
  connectAt(milliseconds(0));
  EXPECT_EQ(run(),
            (Lines{"READY|OK", "ERROR|camera busy (0x000000C0): Could not claim the USB device (-53)"}));
}

TEST_F(CommandLoop, TreatsALossWhileConnectingAsNoCameraAndNotAsALostConnection) {
  camera.confirmFailures = {kLost};
  connectAt(milliseconds(0));
  EXPECT_EQ(run(), (Lines{"READY|OK", "ERROR|camera not detected: I/O problem (-7)"}));
}

TEST_F(CommandLoop, WaitsForACameraThatIsBusyWhileConnecting) {
  camera.confirmFailures = {kBusy, kBusy};
  connectAt(milliseconds(0));
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|"}));
}

TEST_F(CommandLoop, ConnectsAgainAfterAFailure) {
  camera.openFailures = {kLost};
  connectAt(milliseconds(0));
  connectAt(milliseconds(500));
  run();
  EXPECT_EQ(channel.said.back(), "CONNECTED|");
}

TEST_F(CommandLoop, WarnsOfAMissingCardInEveryModeThatNeedsOne) {
  camera.card = false;
  connectAt(milliseconds(0), "both");
  connectAt(milliseconds(100), "card");
  connectAt(milliseconds(200), "disk");
  EXPECT_EQ(run(), (Lines{"READY|OK", "WARN|CARD_MISSING|", "CONNECTED|", "WARN|CARD_MISSING|", "CONNECTED|",
                          "CONNECTED|"}));
}

TEST_F(CommandLoop, SaysDisconnectedOnlyOfACameraThatWasConnected) {
  channel.send(milliseconds(0), "DISCONNECT");
  connectAt(milliseconds(10));
  channel.send(milliseconds(20), "DISCONNECT");
  channel.send(milliseconds(30), "DISCONNECT");
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "DISCONNECTED|"}));
}

TEST_F(CommandLoop, SaysOnceThatTheCameraWentAway) {
  connectAt(milliseconds(0));
  camera.failFrom(milliseconds(500), kLost);
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "DISCONNECTED|"}));
  EXPECT_LE(channel.saidAt("DISCONNECTED|"), milliseconds(600));
}

TEST_F(CommandLoop, StaysConnectedToABusyCamera) {
  connectAt(milliseconds(0));
  camera.failFrom(milliseconds(500), kBusy);
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|"}));
}

TEST_F(CommandLoop, IgnoresLinesItDoesNotKnow) {
  channel.send(milliseconds(0), "MAKE_COFFEE");
  channel.send(milliseconds(0), "PUMP_ACTIVE|now");
  EXPECT_EQ(run(), (Lines{"READY|OK"}));
}

// ---- Watching

TEST_F(CommandLoop, AnswersWatchingAndIdling) {
  watch();
  channel.send(milliseconds(200), "PUMP_IDLE");
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "PUMP_ACTIVE_READY|", "PUMP_IDLE_READY|"}));
}

TEST_F(CommandLoop, DoesNotWatchWithoutACamera) {
  channel.send(milliseconds(0), "PUMP_ACTIVE");
  channel.send(milliseconds(10), "PUMP_IDLE");
  EXPECT_EQ(run(), (Lines{"READY|OK", "PUMP_IDLE_READY|"}));
}

TEST_F(CommandLoop, ActsOnEveryCommandWithin150Milliseconds) {
  watch();
  for (int i = 0; i < 20; ++i) {
    channel.send(milliseconds(1000 + 97 * i), i % 2 == 0 ? "PUMP_IDLE" : "PUMP_ACTIVE");
  }
  run();
  EXPECT_LE(channel.saidAt("PUMP_ACTIVE_READY|"), milliseconds(1000 + 97 * 19 + 150));
  EXPECT_EQ(std::count(channel.said.begin(), channel.said.end(), "PUMP_IDLE_READY|"), 10);
}

TEST_F(CommandLoop, DownloadsAPhotoAndReportsItsPath) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "PUMP_ACTIVE_READY|", "CAPTURE_EVENT|",
                          downloaded("IMG_0001.JPG")}));
  EXPECT_EQ(target.read("IMG_0001.JPG"), kJpeg);
  EXPECT_LE(channel.saidAt(downloaded("IMG_0001.JPG")), milliseconds(500) + kWatchingPause);
}

TEST_F(CommandLoop, ReportsAPairAsOneExposureAndTwoFiles) {
  watch();
  camera.shoot(milliseconds(500), rawOnCard("IMG_0001.CR3"), kRaw);
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"CAPTURE_EVENT|", downloaded("IMG_0001.CR3"), downloaded("IMG_0001.JPG")}));
}

TEST_F(CommandLoop, ReportsABurstInOrder) {
  watch();
  Lines expected;
  for (int i = 10; i < 30; ++i) {
    const std::string name = "IMG_00" + std::to_string(i) + ".JPG";
    camera.shoot(milliseconds(500), jpegOnCard(name), kJpeg);
    expected.push_back("CAPTURE_EVENT|");
    expected.push_back(downloaded(name));
  }
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()), expected);
}

TEST_F(CommandLoop, DownloadsFromHostMemoryInModeDisk) {
  watch("disk");
  camera.shoot(milliseconds(500), jpegInMemory("capt0000.jpg"), kJpeg);
  run();
  EXPECT_EQ(channel.said.back(), downloaded("capt0000.jpg"));
  EXPECT_EQ(camera.listings, 0);
}

TEST_F(CommandLoop, DownloadsNothingFromTheCardInModeCard) {
  watch("card");
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(run().back(), "CAPTURE_EVENT|");
  EXPECT_TRUE(camera.fetched.empty());
}

TEST_F(CommandLoop, SavesInModeCardWhatNoCardTook) {
  camera.card = false;
  watch("card");
  camera.shoot(milliseconds(500), jpegInMemory("capt0000.jpg"), kJpeg);
  EXPECT_EQ(run().back(), downloaded("capt0000.jpg"));
}

TEST_F(CommandLoop, LeavesFilmsAlone) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("MVI_0001.MP4"), kJpeg);
  EXPECT_EQ(run().back(), "PUMP_ACTIVE_READY|");
}

TEST_F(CommandLoop, IgnoresAndReportsCapturesWhileIdleOncePerExposure) {
  connectAt(milliseconds(0));
  camera.shoot(milliseconds(200), rawOnCard("IMG_0001.CR3"), kRaw);
  camera.shoot(milliseconds(200), jpegOnCard("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "CAPTURE_EVENT|", "WARN|CAPTURE_IGNORED_NOT_WATCHING|"}));
  EXPECT_TRUE(camera.fetched.empty());
}

TEST_F(CommandLoop, NeverDownloadsLaterWhatWasTakenWhileIdle) {
  connectAt(milliseconds(0));
  camera.shoot(milliseconds(200), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.shootSilently(milliseconds(210), jpegOnCard("IMG_0002.JPG"), kJpeg);
  channel.send(milliseconds(300), "PUMP_ACTIVE");
  camera.tell(milliseconds(400), CameraEvent::Kind::CaptureComplete);
  run();
  EXPECT_TRUE(camera.fetched.empty());
}

TEST_F(CommandLoop, IgnoresACaptureThatWasAnnouncedJustBeforeWatchingBegan) {
  connectAt(milliseconds(0));
  // Between two looks at the camera.
  camera.shoot(milliseconds(99), jpegOnCard("IMG_0001.JPG"), kJpeg);
  channel.send(milliseconds(100), "PUMP_ACTIVE");
  EXPECT_EQ(run(), (Lines{"READY|OK", "CONNECTED|", "CAPTURE_EVENT|", "WARN|CAPTURE_IGNORED_NOT_WATCHING|",
                          "PUMP_ACTIVE_READY|"}));
}

TEST_F(CommandLoop, DownloadsIntoTheFolderThatIsSetMeanwhile) {
  const ambrel::test::TemporaryFolder other;
  watch();
  channel.send(milliseconds(200), "SET_DOWNLOAD_DIR|" + other.path());
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(run().back(), "DOWNLOADED|" + other.file("IMG_0001.JPG"));
}

TEST_F(CommandLoop, KeepsItsFolderWhenTheNewOneIsNoAbsolutePath) {
  watch();
  channel.send(milliseconds(200), "SET_DOWNLOAD_DIR|somewhere");
  channel.send(milliseconds(200), "SET_DOWNLOAD_DIR|");
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(run().back(), downloaded("IMG_0001.JPG"));
}

TEST_F(CommandLoop, FetchesTheRestOfABurstThatWasTakenBeforeWatchingStopped) {
  watch();
  Lines expected;
  for (int i = 10; i < 30; ++i) {
    const std::string name = "IMG_00" + std::to_string(i) + ".JPG";
    camera.shoot(milliseconds(500), jpegOnCard(name), kJpeg);
    expected.push_back("CAPTURE_EVENT|");
    if (i == 13) expected.push_back("PUMP_IDLE_READY|");
    expected.push_back(downloaded(name));
  }
  camera.duringDownload = [&] {
    if (camera.fetched.size() == 4) channel.send(channel.elapsed(), "PUMP_IDLE");
  };
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()), expected);
}

TEST_F(CommandLoop, FetchesWhatWasTakenBetweenTheLastLookAndTheEndOfWatching) {
  watch();
  camera.shoot(milliseconds(505), jpegOnCard("IMG_0001.JPG"), kJpeg);
  channel.send(milliseconds(506), "PUMP_IDLE");
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"PUMP_IDLE_READY|", "CAPTURE_EVENT|", downloaded("IMG_0001.JPG")}));
}

TEST_F(CommandLoop, IgnoresWhatIsTakenFromTheAnswerOn) {
  watch();
  channel.send(milliseconds(500), "PUMP_IDLE");
  camera.shoot(milliseconds(501), jpegOnCard("IMG_0001.JPG"), kJpeg);
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"PUMP_IDLE_READY|", "CAPTURE_EVENT|", "WARN|CAPTURE_IGNORED_NOT_WATCHING|"}));
}

TEST_F(CommandLoop, GoesOnWatchingWithTheRestOfABurstWhenAskedTo) {
  watch();
  for (int i = 1; i < 6; ++i)
    camera.shoot(milliseconds(500), jpegOnCard("IMG_000" + std::to_string(i) + ".JPG"), kJpeg);
  camera.duringDownload = [&] {
    if (camera.fetched.size() != 2) return;
    channel.send(channel.elapsed(), "PUMP_IDLE");
    channel.send(channel.elapsed(), "PUMP_ACTIVE");
  };
  camera.shoot(milliseconds(1000), jpegOnCard("IMG_0006.JPG"), kJpeg);
  run();
  EXPECT_EQ(camera.fetched.size(), 6u);
  EXPECT_EQ(std::count(channel.said.begin(), channel.said.end(), "PUMP_ACTIVE_READY|"), 2);
}

TEST_F(CommandLoop, FetchesWhatIsInHostMemoryBeforeItLetsTheCameraGo) {
  watch("disk");
  for (int i = 0; i < 5; ++i)
    camera.shoot(milliseconds(500), jpegInMemory("capt000" + std::to_string(i) + ".jpg"), kJpeg);
  camera.duringDownload = [&] {
    if (camera.fetched.size() != 2) return;
    for (const char* command : {"PUMP_IDLE", "DISCONNECT", "QUIT"})
      channel.send(channel.elapsed(), command);
  };
  run();
  EXPECT_EQ(camera.fetched.size(), 5u);
  EXPECT_EQ(channel.said.back(), downloaded("capt0004.jpg"));
}

TEST_F(CommandLoop, SaysThatPhotosInHostMemoryAreGoneWhenTheyTakeTooLong) {
  watch("disk");
  for (int i = 0; i < 5; ++i)
    camera.shoot(milliseconds(500), jpegInMemory("capt000" + std::to_string(i) + ".jpg"), kJpeg);
  camera.duringDownload = [&] {
    if (camera.fetched.size() == 1) channel.send(channel.elapsed(), "DISCONNECT");
    channel.advance(milliseconds(2000));
  };
  run();
  EXPECT_EQ(Lines(channel.said.end() - 2, channel.said.end()),
            (Lines{"ERROR|disconnected: photos that were still in the camera's memory are gone with it",
                   "DISCONNECTED|"}));
  EXPECT_EQ(camera.fetched.size(), 3u);
}

TEST_F(CommandLoop, LeavesTheRestOfABurstOnTheCardWhenItLetsTheCameraGo) {
  watch();
  for (int i = 1; i < 6; ++i)
    camera.shoot(milliseconds(500), jpegOnCard("IMG_000" + std::to_string(i) + ".JPG"), kJpeg);
  camera.duringDownload = [&] {
    if (camera.fetched.size() == 2) channel.send(channel.elapsed(), "DISCONNECT");
  };
  run();
  EXPECT_EQ(camera.fetched.size(), 2u);
  EXPECT_EQ(channel.said.back(), "DISCONNECTED|");
}

TEST_F(CommandLoop, SetsANewSaveModeInTheOpenSession) {
  connectAt(milliseconds(0));
  channel.send(milliseconds(100), "SET_SAVE_DEST|disk");
  run();
  EXPECT_EQ(camera.modes.back(), SaveMode::Disk);
  EXPECT_EQ(camera.opened, 1);
  EXPECT_EQ(channel.statuses.back(), "setting save destination");
}

TEST_F(CommandLoop, ChecksTheCardForANewSaveMode) {
  camera.card = false;
  connectAt(milliseconds(0), "disk");
  channel.send(milliseconds(100), "SET_SAVE_DEST|card");
  EXPECT_EQ(run().back(), "WARN|CARD_MISSING|");
}

// ---- Commands during a transfer

TEST_F(CommandLoop, AnswersWhileTheCameraKeepsItWaiting) {
  watch("disk");
  camera.waitTakes = milliseconds(700);
  channel.send(milliseconds(2000), "PUMP_IDLE");
  run();
  EXPECT_LE(channel.saidAt("PUMP_IDLE_READY|"), milliseconds(2000) + camera.waitTakes);
}

TEST_F(CommandLoop, ObeysIdleAndFolderDuringATransfer) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.duringDownload = [&] { channel.send(channel.elapsed(), "PUMP_IDLE"); };
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"CAPTURE_EVENT|", "PUMP_IDLE_READY|", downloaded("IMG_0001.JPG")}));
}

TEST_F(CommandLoop, LetsCommandsForTheCameraWaitForTheEndOfATransferInOrder) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.duringDownload = [&] {
    channel.send(channel.elapsed(), "DISCONNECT");
    channel.send(channel.elapsed(), "PUMP_IDLE");
  };
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"CAPTURE_EVENT|", downloaded("IMG_0001.JPG"), "DISCONNECTED|", "PUMP_IDLE_READY|"}));
}

TEST_F(CommandLoop, FinishesATransferThatIsQuickWhenAskedToEnd) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.duringDownload = [&] { channel.send(channel.elapsed(), "QUIT"); };
  EXPECT_EQ(run().back(), downloaded("IMG_0001.JPG"));
}

TEST_F(CommandLoop, BreaksOffATransferThatTakesTooLongWhenAskedToEnd) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.pieces = 5;
  camera.duringDownload = [&] {
    channel.send(channel.elapsed(), "QUIT");
    channel.advance(milliseconds(1000));
  };
  EXPECT_EQ(run().back(),
            "ERROR|download failed: IMG_0001.JPG: the worker was asked to end; the photo stays on the "
            "camera's card");
  EXPECT_TRUE(target.names().empty());
}

// ---- Failed downloads

TEST_F(CommandLoop, AsksABusyCameraAgainForThePhoto) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.downloadFailures = {kBusy, kBusy, kBusy};
  EXPECT_EQ(run().back(), downloaded("IMG_0001.JPG"));
}

TEST_F(CommandLoop, GivesUpAPhotoOfACameraThatStaysBusyAndGoesOn) {
  watch();
  channel.endAt(milliseconds(30000));
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0002.JPG"), kJpeg);
  camera.downloadFailures.assign(102, kBusy);
  run();
  EXPECT_EQ(
      Lines(channel.said.begin() + 3, channel.said.end()),
      (Lines{
          "CAPTURE_EVENT|",
          "ERROR|download failed: IMG_0001.JPG: I/O in progress (-110); the photo stays on the camera's card",
          "CAPTURE_EVENT|", downloaded("IMG_0002.JPG")}));
}

TEST_F(CommandLoop, SaysWhichPhotoALossCutAndThenThatTheCameraIsGone) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.downloadFailures = {kLost};
  run();
  EXPECT_EQ(
      Lines(channel.said.begin() + 3, channel.said.end()),
      (Lines{"CAPTURE_EVENT|",
             "ERROR|download failed: IMG_0001.JPG: I/O problem (-7); the photo stays on the camera's card",
             "DISCONNECTED|"}));
  EXPECT_TRUE(target.names().empty());
}

TEST_F(CommandLoop, SaysThatALossInModeDiskMayHaveCostAPhoto) {
  watch("disk");
  camera.failFrom(milliseconds(500), kLost);
  run();
  EXPECT_EQ(
      Lines(channel.said.begin() + 3, channel.said.end()),
      (Lines{"ERROR|camera lost: a photo taken in the last moment may be gone with it", "DISCONNECTED|"}));
}

TEST_F(CommandLoop, SaysOnceThatABusyCameraMayHaveCostAPhotoInModeDiskAndGoesOn) {
  watch("disk");
  camera.eventFailures = {kBusy, kBusy};
  camera.shoot(milliseconds(500), jpegInMemory("capt0000.jpg"), kJpeg);
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"ERROR|the camera was busy: a photo taken just now may still be in its memory",
                   "CAPTURE_EVENT|", downloaded("capt0000.jpg")}));
}

TEST_F(CommandLoop, ReportsAFolderThatIsGoneAndGoesOnWithTheSession) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.shoot(milliseconds(1000), jpegOnCard("IMG_0002.JPG"), kJpeg);
  channel.send(milliseconds(900), "SET_DOWNLOAD_DIR|" + target.path());
  loseTarget();
  const ambrel::test::TemporaryFolder other;
  channel.send(milliseconds(950), "SET_DOWNLOAD_DIR|" + other.path());
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"CAPTURE_EVENT|",
                   "ERROR|download failed: IMG_0001.JPG: the download folder is gone; the photo stays on the "
                   "camera's card",
                   "CAPTURE_EVENT|", "DOWNLOADED|" + other.file("IMG_0002.JPG")}));
  std::filesystem::create_directory(target.path());
}

TEST_F(CommandLoop, SaysThatAPhotoIsLostThatNeitherDiskNorCardTook) {
  watch("disk");
  camera.shoot(milliseconds(500), jpegInMemory("capt0000.jpg"), kJpeg);
  loseTarget();
  EXPECT_EQ(run().back(),
            "ERROR|download failed: capt0000.jpg: the download folder is gone; the photo is lost, "
            "the camera kept no copy");
  std::filesystem::create_directory(target.path());
}

TEST_F(CommandLoop, ReportsNoFileThatIsNotWhole) {
  watch();
  camera.shoot(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg.substr(0, 5));
  run();
  EXPECT_EQ(channel.said.back(),
            "ERROR|download failed: IMG_0001.JPG: the camera sent 5 of 13 bytes; the photo stays "
            "on the camera's card");
  EXPECT_TRUE(target.names().empty());
}

// ---- How often the camera is asked

TEST_F(CommandLoop, AsksAWatchedCameraHalfAsOftenAfterFiveSecondsWithoutAWord) {
  watch();
  run();
  EXPECT_EQ(longestPauseBetween(milliseconds(100), milliseconds(5100)), kWatchingPause);
  EXPECT_EQ(longestPauseBetween(milliseconds(5200), milliseconds(9900)), kRestingPause);
  EXPECT_EQ(shortestPauseBetween(milliseconds(5200), milliseconds(9900)), kRestingPause);
}

TEST_F(CommandLoop, AsksAtItsFormerPaceOnceTheCameraHasSpoken) {
  watch();
  camera.tell(milliseconds(8000), CameraEvent::Kind::Other);
  run();
  EXPECT_EQ(shortestPauseBetween(milliseconds(5200), milliseconds(8000)), kRestingPause);
  EXPECT_EQ(longestPauseBetween(milliseconds(8050), milliseconds(9900)), kWatchingPause);
}

TEST_F(CommandLoop, BeginsWatchingAtFullPace) {
  connectAt(milliseconds(0));
  channel.send(milliseconds(7000), "PUMP_ACTIVE");
  run();
  EXPECT_EQ(longestPauseBetween(milliseconds(7000), milliseconds(9900)), kWatchingPause);
}

// ---- Photos that nothing announced

TEST_F(CommandLoop, FindsOnTheCardWhatAnExposureDidNotAnnounce) {
  watch();
  camera.shootSilently(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.tell(milliseconds(500), CameraEvent::Kind::CaptureComplete);
  run();
  EXPECT_EQ(Lines(channel.said.begin() + 3, channel.said.end()),
            (Lines{"CAPTURE_EVENT|", downloaded("IMG_0001.JPG")}));
  EXPECT_LE(channel.saidAt(downloaded("IMG_0001.JPG")),
            milliseconds(500) + kAnnouncementDelay + 2 * kWatchingPause);
}

TEST_F(CommandLoop, FindsOnTheCardWhatCameWithoutAnySignAfterTwoQuietSeconds) {
  watch();
  camera.shootSilently(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.shootSilently(milliseconds(5000), rawOnCard("IMG_0002.CR3"), kRaw);
  run();
  EXPECT_EQ(
      Lines(channel.said.begin() + 3, channel.said.end()),
      (Lines{"CAPTURE_EVENT|", downloaded("IMG_0001.JPG"), "CAPTURE_EVENT|", downloaded("IMG_0002.CR3")}));
  EXPECT_LE(channel.saidAt(downloaded("IMG_0001.JPG")),
            milliseconds(500) + kQuietBeforeLook + kAnnouncementDelay + 2 * kWatchingPause);
}

TEST_F(CommandLoop, WaitsForAnAnnouncementBeforeItLooksAtTheCard) {
  watch();
  camera.shootSilently(milliseconds(2050), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.announce(milliseconds(2300), jpegOnCard("IMG_0001.JPG"));
  run();
  EXPECT_EQ(camera.fetched.size(), 1u);
  EXPECT_EQ(camera.listings, 1);
}

TEST_F(CommandLoop, StartsAfreshWhenPhotosWereDeletedOnTheCard) {
  camera.shootSilently(milliseconds(0), jpegOnCard("IMG_0001.JPG"), kJpeg);
  watch();
  camera.freed = {milliseconds(1000), 10};
  run();
  EXPECT_EQ(camera.listings, 2);
  EXPECT_TRUE(camera.fetched.empty());
}

TEST_F(CommandLoop, LooksAtTheCardOnceWhileItsRoomStaysTheSame) {
  watch();
  channel.endAt(milliseconds(60000));
  run();
  EXPECT_EQ(camera.listings, 1) << "only the one that watching begins with";
}

TEST_F(CommandLoop, DoesNotLookAtTheCardForAnnouncedPhotos) {
  watch();
  for (int i = 0; i < 10; ++i) {
    camera.shoot(milliseconds(500 + 3000 * i), jpegOnCard("IMG_000" + std::to_string(i) + ".JPG"), kJpeg);
  }
  channel.endAt(milliseconds(60000));
  run();
  EXPECT_EQ(camera.listings, 1);
  EXPECT_EQ(camera.fetched.size(), 10u);
}

TEST_F(CommandLoop, ReportsAPhotoOnceThatIsFoundAndThenAnnounced) {
  watch();
  camera.shootSilently(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.tell(milliseconds(500), CameraEvent::Kind::CaptureComplete);
  camera.shoot(milliseconds(2000), jpegOnCard("IMG_0001.JPG"), kJpeg);
  run();
  EXPECT_EQ(camera.fetched.size(), 1u);
}

TEST_F(CommandLoop, FindsAnUnannouncedPairAsOneExposure) {
  watch();
  camera.shootSilently(milliseconds(500), jpegOnCard("IMG_0001.JPG"), kJpeg);
  camera.shootSilently(milliseconds(500), rawOnCard("IMG_0001.CR3"), kRaw);
  run();
  EXPECT_EQ(std::count(channel.said.begin(), channel.said.end(), "CAPTURE_EVENT|"), 1);
  EXPECT_EQ(camera.fetched.size(), 2u);
}

TEST_F(CommandLoop, SaysDisconnectedWhenTheCameraIsLostInALookAtTheCard) {
  watch();
  camera.tell(milliseconds(500), CameraEvent::Kind::CaptureComplete);
  camera.duringDownload = [] {};
  camera.listFailures = {};
  camera.failFrom(milliseconds(990), kLost);
  EXPECT_EQ(run().back(), "DISCONNECTED|");
}

TEST_F(CommandLoop, WarnsWhenTheCardIsTakenOut) {
  connectAt(milliseconds(0));
  camera.tell(milliseconds(500), CameraEvent::Kind::CardChanged);
  camera.card = true;
  channel.send(milliseconds(100), "PUMP_ACTIVE");
  run();
  EXPECT_EQ(channel.said.back(), "PUMP_ACTIVE_READY|");
}

TEST_F(CommandLoop, DownloadsNothingThatANewCardBrought) {
  watch();
  camera.shootSilently(milliseconds(450), jpegOnCard("IMG_0900.JPG"), kJpeg);
  camera.tell(milliseconds(500), CameraEvent::Kind::CardChanged);
  camera.tell(milliseconds(1000), CameraEvent::Kind::CaptureComplete);
  run();
  EXPECT_TRUE(camera.fetched.empty());
}

}  // namespace
}  // namespace ambrel::camera
