// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "WorkerSession.h"

namespace ambrel {
namespace {

using std::chrono::milliseconds;

constexpr int kBurst = 20;

struct Session {
  const char* mode;
  const char* kind;
};

void PrintTo(const Session& session, std::ostream* stream) {
  *stream << session.mode << " " << session.kind;
}

class WorkerPhotos : public WorkerSession, public ::testing::WithParamInterface<Session> {
 protected:
  // One burst for as many single shots.
  void shoot(int shots) {
    const std::string kind = GetParam().kind;
    const std::string what = " kind=" + kind + " size=60000 rawsize=1500000";
    for (int taken = 0; taken < shots;) {
      const int single = std::min(kBurst, shots - taken);
      for (int i = 0; i < single; ++i) {
        camera.command("shoot n=1" + what);
        collect(filesOf(1));
      }
      taken += single;
      const int burst = std::min(kBurst, shots - taken);
      if (burst > 0) camera.command("shoot n=" + std::to_string(burst) + what);
      collect(filesOf(burst));
      taken += burst;
    }
  }
  std::size_t filesOf(int shots) const {
    const bool downloads = std::string_view(GetParam().mode) != "card";
    const int perShot = std::string_view(GetParam().kind) == "pair" ? 2 : 1;
    return static_cast<std::size_t>(downloads ? shots * perShot : 0);
  }
  void collect(std::size_t count) {
    for (std::string& checksum : waitForPhotos(count)) {
      reported.push_back(std::move(checksum));
    }
  }

  std::vector<std::string> reported;
};

// AMBREL_WORKER_SHOTS is for each save mode and each kind of photo.
TEST_P(WorkerPhotos, AreReportedOnceEachInOrderWithTheirOwnBytes) {
  const int shots = numberFromEnvironment("AMBREL_WORKER_SHOTS", 25);
  watch(GetParam().mode);
  shoot(shots);
  // The card is looked at after two quiet seconds; it must not show a photo again.
  expectNoMorePhotos(milliseconds(2600));
  EXPECT_EQ(worker->count("CAPTURE_EVENT|"), shots);
  EXPECT_EQ(worker->count("ERROR|"), 0);
  EXPECT_EQ(folder.names().size(), filesOf(shots));
  EXPECT_EQ(reported, filesOf(1) > 0 ? takenPhotos() : std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(AllModesAndKinds, WorkerPhotos,
                         ::testing::Values(Session{"both", "jpeg"}, Session{"both", "raw"},
                                           Session{"both", "pair"}, Session{"disk", "jpeg"},
                                           Session{"disk", "raw"}, Session{"disk", "pair"},
                                           Session{"card", "jpeg"}, Session{"card", "raw"},
                                           Session{"card", "pair"}));

class WorkerWatching : public WorkerSession {};

TEST_F(WorkerWatching, StoresEachPhotoUnderTheNameOfTheCamera) {
  watch();
  camera.command("shoot n=1 kind=pair");
  EXPECT_EQ(waitForPath(), folder.file("IMG_0001.JPG"));
  EXPECT_EQ(waitForPath(), folder.file("IMG_0001.CR3"));
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"IMG_0001.CR3", "IMG_0001.JPG"}));
}

TEST_F(WorkerWatching, OverwritesNothing) {
  folder.write("IMG_0001.JPG", "older");
  watch();
  camera.command("shoot n=1 kind=jpeg");
  EXPECT_EQ(waitForPath(), folder.file("IMG_0001-2.JPG"));
  EXPECT_EQ(folder.read("IMG_0001.JPG"), "older");
}

TEST_F(WorkerWatching, FindsPhotosOnTheCardThatNothingAnnounces) {
  watch();
  camera.command("set silent=1");
  camera.command("shoot n=1 kind=pair size=60000");
  camera.command("shoot n=3 kind=jpeg size=60000");
  std::vector<std::string> found = waitForPhotos(5);
  std::vector<std::string> taken = takenPhotos();
  std::sort(found.begin(), found.end());
  std::sort(taken.begin(), taken.end());
  EXPECT_EQ(found, taken);
  camera.command("set silent=0");
  camera.command("shoot n=1 kind=jpeg size=60000");
  EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
  expectNoMorePhotos(milliseconds(2600));
  EXPECT_EQ(worker->count("CAPTURE_EVENT|"), 5);
}

TEST_F(WorkerWatching, FindsUnannouncedPhotosOnBothSidesOfANewFolder) {
  SimulatedCamera atTheEnd({"--first-shot", "9998"});
  worker =
      std::make_unique<WorkerProcess>(WorkerProcess::Launch{folder.path(), atTheEnd.gphotoPort(), "both"});
  worker->connect();
  worker->watch();
  atTheEnd.command("set silent=1");
  atTheEnd.command("shoot n=3 kind=jpeg size=60000");
  waitForPhotos(3);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"IMG_0001.JPG", "IMG_9998.JPG", "IMG_9999.JPG"}));
}

// A question to the camera for each file would take longer than any operator waits.
TEST_F(WorkerWatching, BeginsAtOnceAlthoughTheCardHoldsThousands) {
  SimulatedCamera full({"--jpeg-size", "64x48"});
  full.command("shoot n=3000 kind=jpeg");
  worker = std::make_unique<WorkerProcess>(WorkerProcess::Launch{folder.path(), full.gphotoPort(), "both"});
  worker->connect();
  EXPECT_LE(timeOf([&] { worker->watch(); }), milliseconds(2000));
}

TEST_F(WorkerWatching, IgnoresAndReportsCapturesWhileIdleAndNeverDownloadsThemLater) {
  start().connect();
  camera.command("shoot n=2 kind=pair size=60000");
  worker->waitFor("WARN|CAPTURE_IGNORED_NOT_WATCHING|");
  worker->waitFor("WARN|CAPTURE_IGNORED_NOT_WATCHING|");
  worker->watch();
  camera.command("shoot n=1 kind=jpeg size=60000");
  EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back());
  expectNoMorePhotos(milliseconds(2600));
  EXPECT_EQ(worker->count("DOWNLOADED|"), 1);
  EXPECT_EQ(worker->count("CAPTURE_EVENT|"), 3);
}

TEST_F(WorkerWatching, StopsAndStartsAgain) {
  watch();
  camera.command("shoot n=1 kind=jpeg size=60000");
  waitForPath();
  worker->send("PUMP_IDLE");
  worker->waitFor("PUMP_IDLE_READY|");
  camera.command("shoot n=1 kind=jpeg size=60000");
  worker->waitFor("WARN|CAPTURE_IGNORED_NOT_WATCHING|");
  worker->watch();
  camera.command("shoot n=1 kind=jpeg size=60000");
  EXPECT_EQ(waitForPath(), folder.file("IMG_0003.JPG"));
  expectNoMorePhotos(milliseconds(300));
}

TEST_F(WorkerWatching, DownloadsIntoAnotherFolderFromTheNextPhotoOn) {
  const test::TemporaryFolder other;
  watch();
  worker->send("SET_DOWNLOAD_DIR|" + other.path());
  camera.command("shoot n=1 kind=jpeg size=60000");
  EXPECT_EQ(waitForPath(), other.file("IMG_0001.JPG"));
}

TEST_F(WorkerWatching, ChangesTheSaveModeOfTheOpenSession) {
  start("both").connect();
  worker->send("SET_SAVE_DEST|disk");
  worker->waitFor("STATUS|setting save destination");
  worker->watch();
  camera.command("shoot n=1 kind=jpeg size=60000");
  waitForPath();
  EXPECT_EQ(camera.photos().back().place, "host");
  worker->send("PUMP_IDLE");
  worker->send("SET_SAVE_DEST|both");
  worker->waitFor("STATUS|checking camera memory card");
  worker->watch();
  camera.command("shoot n=1 kind=jpeg size=60000");
  waitForPath();
  EXPECT_EQ(camera.photos().back().place, "card");
}

TEST_F(WorkerWatching, LeavesEveryPhotoOnTheCard) {
  watch();
  camera.command("shoot n=3 kind=pair size=60000");
  waitForPhotos(6);
  for (const SimulatedPhoto& photo : camera.photos()) {
    EXPECT_EQ(photo.place, "card");
    EXPECT_FALSE(photo.deleted);
  }
}

}  // namespace
}  // namespace ambrel
