// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <thread>

#include "WorkerSession.h"

namespace ambrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kTenMegabytes = "shoot n=1 kind=jpeg size=10000000";
constexpr const char* kSmallPhoto = "shoot n=1 kind=jpeg size=60000";
const std::string kFailed = "ERROR|download failed: IMG_0001.JPG: ";

class WorkerLoss : public WorkerSession, public ::testing::WithParamInterface<const char*> {};

TEST_P(WorkerLoss, InATransferLeavesNothingAndIsReported) {
  watch();
  camera.command(std::string("cable in=0 after=4000000 how=") + GetParam());
  camera.command(kTenMegabytes);
  EXPECT_TRUE(worker->waitFor("ERROR|").ends_with("; the photo stays on the camera's card"));
  worker->waitFor("DISCONNECTED|");
  EXPECT_EQ(worker->count("DOWNLOADED|"), 0);
  EXPECT_TRUE(folder.names().empty());
}

TEST_P(WorkerLoss, IsHealedByTheNextConnect) {
  watch();
  camera.command(std::string("cable in=0 after=4000000 how=") + GetParam());
  camera.command(kTenMegabytes);
  worker->waitFor("DISCONNECTED|");
  camera.command("cable in=1");
  EXPECT_LE(timeOf([&] { worker->connect(); }), seconds(1));
  worker->watch();
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
}

TEST_P(WorkerLoss, WithoutATransferIsReported) {
  watch();
  camera.command(std::string("cable in=0 how=") + GetParam());
  EXPECT_LE(timeOf([&] { worker->waitFor("DISCONNECTED|"); }), seconds(4));
  EXPECT_EQ(worker->count("ERROR|"), 0);
}

TEST_P(WorkerLoss, LetsTheWorkerEndWithItsInput) {
  watch();
  camera.command(std::string("cable in=0 how=") + GetParam());
  worker->closeInput();
  worker->waitForExit(seconds(10));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, WorkerLoss, ::testing::Values("close", "reset", "freeze"));

class WorkerFaults : public WorkerSession {
 protected:
  // Descriptors that the worker has open.
  std::size_t descriptors() const {
    const std::filesystem::directory_iterator open("/proc/" + std::to_string(worker->pid()) + "/fd");
    return static_cast<std::size_t>(std::distance(open, {}));
  }
};

TEST_F(WorkerFaults, SaysThatNoCameraIsThereAndFindsItLater) {
  camera.command("cable in=0");
  start();
  worker->send("CONNECT|both");
  worker->waitFor("ERROR|camera not detected");
  camera.command("cable in=1");
  worker->connect();
}

TEST_F(WorkerFaults, SaysThatAnotherHostHoldsTheCameraAndConnectsOnceItIsFree) {
  WorkerProcess first({folder.path(), camera.gphotoPort()});
  first.connect();
  start();
  worker->send("CONNECT|both");
  EXPECT_NE(worker->waitFor("ERROR|").find("camera busy (0x000000C0)"), std::string::npos);
  first.send("QUIT");
  first.waitForExit();
  worker->connect();
}

TEST_F(WorkerFaults, ConnectsToACameraThatIsBusyAtFirst) {
  camera.command("busy n=3 op=9114");
  start();
  for (int attempt = 0; attempt < 5 && worker->count("CONNECTED|") == 0; ++attempt) {
    worker->send("CONNECT|both");
    while (worker->count("CONNECTED|") == 0 && worker->count("ERROR|camera busy") == attempt) {
      ASSERT_TRUE(worker->next(seconds(20)));
    }
  }
  EXPECT_EQ(worker->count("CONNECTED|"), 1);
}

TEST_F(WorkerFaults, AsksABusyCameraAgainForAPhoto) {
  watch();
  camera.command("busy n=3 op=101B");
  camera.command("shoot n=1 kind=jpeg size=3000000");
  EXPECT_EQ(waitForPhotos(1), takenPhotos());
  EXPECT_EQ(worker->count("ERROR|"), 0);
}

TEST_F(WorkerFaults, AsksABusyCameraAgainForItsEvents) {
  watch();
  camera.command("busy n=5 op=9116");
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1), takenPhotos());
  EXPECT_EQ(worker->count("DISCONNECTED|"), 0);
}

// The library hands such a photo over within a wait for events, and never again.
TEST_F(WorkerFaults, SaysThatABusyCameraMayHaveCostAPhotoInModeDisk) {
  watch("disk");
  camera.command("busy n=1 op=101B");
  camera.command(kSmallPhoto);
  worker->waitFor("ERROR|the camera was busy: a photo taken just now may still be in its memory");
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
  EXPECT_EQ(worker->count("DISCONNECTED|"), 0);
}

TEST_F(WorkerFaults, WarnsOfAMissingCardAndGoesOnWhenThereIsOne) {
  camera.command("card in=0");
  start("both");
  worker->send("CONNECT|both");
  worker->waitFor("WARN|CARD_MISSING|");
  worker->waitFor("CONNECTED|");
  worker->watch();
  camera.command("card in=1");
  worker->waitFor("STATUS|checking camera memory card");
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1), takenPhotos());
}

TEST_F(WorkerFaults, NeedsNoCardInModeDisk) {
  camera.command("card in=0");
  watch("disk");
  EXPECT_EQ(worker->count("WARN|CARD_MISSING|"), 0);
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1), takenPhotos());
}

TEST_F(WorkerFaults, WarnsWhenTheCardIsTakenOutAndGoesOnWhenItIsBack) {
  watch();
  camera.command(kSmallPhoto);
  waitForPath();
  camera.command("card in=0");
  worker->waitFor("WARN|CARD_MISSING|");
  camera.command("card in=1");
  worker->waitFor("STATUS|checking camera memory card");
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
  expectNoMorePhotos(milliseconds(2600));
}

TEST_F(WorkerFaults, ReportsAFolderThatIsGoneAndGoesOn) {
  watch();
  std::filesystem::remove(folder.path());
  camera.command(kSmallPhoto);
  EXPECT_EQ(worker->waitFor("ERROR|"),
            kFailed + "the download folder is gone; the photo stays on the camera's card");
  std::filesystem::create_directory(folder.path());
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPath(), folder.file("IMG_0002.JPG"));
  EXPECT_EQ(worker->count("DISCONNECTED|"), 0);
}

TEST_F(WorkerFaults, ReportsAFolderThatCannotBeWrittenAndGoesOn) {
  watch();
  // Takes no files, not even from root.
  worker->send("SET_DOWNLOAD_DIR|/sys");
  camera.command(kSmallPhoto);
  EXPECT_TRUE(worker->waitFor("ERROR|").starts_with(kFailed));
  worker->send("SET_DOWNLOAD_DIR|" + folder.path());
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPath(), folder.file("IMG_0002.JPG"));
}

TEST_F(WorkerFaults, ReportsADiskThatTakesNoMoreAndGoesOn) {
  // No file of the worker may grow beyond a megabyte.
  start("both", {"/bin/sh", "-c", "ulimit -f 1000; exec \"$0\" \"$@\""});
  worker->connect();
  worker->watch();
  camera.command(kTenMegabytes);
  EXPECT_EQ(worker->waitFor("ERROR|"), kFailed + "File too large; the photo stays on the camera's card");
  EXPECT_TRUE(folder.names().empty());
  camera.command(kSmallPhoto);
  EXPECT_EQ(waitForPath(), folder.file("IMG_0002.JPG"));
}

TEST_F(WorkerFaults, LeaveNoPartOfAPhotoBehindAfterTheNextStart) {
  watch();
  camera.command("set rate=2000000");
  camera.command(kTenMegabytes);
  worker->waitFor("CAPTURE_EVENT|");
  while (folder.names().empty()) {
    std::this_thread::sleep_for(milliseconds(5));
  }
  worker->signal(SIGKILL);
  EXPECT_EQ(worker->waitForExit(), -SIGKILL);
  ASSERT_EQ(folder.names().size(), 1u);
  EXPECT_EQ(folder.names().front().substr(0, 8), ".ambrel-");
  start();
  EXPECT_TRUE(folder.names().empty());
}

// AMBREL_WORKER_RECONNECTS times.
TEST_F(WorkerFaults, ReconnectWithinASecondEachTimeAndLeakNoDescriptor) {
  const int times = numberFromEnvironment("AMBREL_WORKER_RECONNECTS", 6);
  watch();
  const std::size_t before = descriptors();
  milliseconds longest{0};
  for (int i = 0; i < times; ++i) {
    camera.command(i % 2 == 0 ? "cable in=0 how=close" : "cable in=0 how=reset");
    worker->waitFor("DISCONNECTED|");
    worker->send("CONNECT|both");
    worker->waitFor("ERROR|camera not detected");
    camera.command("cable in=1");
    longest = std::max(longest, timeOf([&] { worker->connect(); }));
    worker->watch();
    camera.command(kSmallPhoto);
    EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
  }
  EXPECT_LE(longest, seconds(1));
  EXPECT_EQ(descriptors(), before);
  RecordProperty("longest_reconnect_ms", static_cast<int>(longest.count()));
}

}  // namespace
}  // namespace ambrel
