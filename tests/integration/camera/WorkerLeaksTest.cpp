// SPDX-License-Identifier: Apache-2.0
// What the worker keeps of a long session, and what it leaves behind.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "WorkerSession.h"

namespace ambrel {
namespace {

using std::chrono::seconds;

// A sanitizer keeps freed memory for a while, so that there it says nothing how much is held.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kFiguresCount = false;
#else
constexpr bool kFiguresCount = true;
#endif

constexpr int kBurst = 20;
// The camera library remembers every file of the card for as long as a session lasts, and we its name and
// size.
constexpr long kMostBytesPerPhoto = 1200;
constexpr long kSlackKb = 2048;

class WorkerLeaks : public WorkerSession {
 protected:
  long residentKb() const {
    std::ifstream status("/proc/" + std::to_string(worker->pid()) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    }
    return 0;
  }
  std::size_t descriptors() const {
    const std::filesystem::directory_iterator open("/proc/" + std::to_string(worker->pid()) + "/fd");
    return static_cast<std::size_t>(std::distance(open, {}));
  }
  void shootBurst() {
    camera.command("shoot n=" + std::to_string(kBurst) + " kind=jpeg size=60000");
    for (int i = 0; i < kBurst; ++i)
      std::filesystem::remove(waitForPath());
  }
};

class WorkerMemory : public WorkerLeaks, public ::testing::WithParamInterface<const char*> {};

// AMBREL_WORKER_SOAK photos; with 10000 the figure for one photo is exact.
TEST_P(WorkerMemory, GrowsByLittleForEachPhotoAndDescriptorsByNone) {
  const int photos = numberFromEnvironment("AMBREL_WORKER_SOAK", 400);
  watch(GetParam());
  for (int i = 0; i < 10; ++i)
    shootBurst();
  const long before = residentKb();
  const std::size_t open = descriptors();
  for (int taken = 0; taken < photos; taken += kBurst)
    shootBurst();
  const long grown = residentKb() - before;
  std::cout << GetParam() << ": " << before << " KB, after " << photos << " photos " << grown << " KB more\n";
  if (kFiguresCount) {
    EXPECT_LE(grown, kSlackKb + photos * kMostBytesPerPhoto / 1024);
  }
  EXPECT_EQ(descriptors(), open);
}

INSTANTIATE_TEST_SUITE_P(BothModes, WorkerMemory, ::testing::Values("both", "disk"));

class WorkerUnderValgrind : public WorkerLeaks, public ::testing::WithParamInterface<const char*> {};

TEST_P(WorkerUnderValgrind, LeaksNothingAndTouchesNoMemoryOfOthers) {
  if (!kFiguresCount) GTEST_SKIP() << "a sanitizer does this here";
  if (std::system("valgrind --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "needs the program valgrind";
  const test::TemporaryFolder reports;
  constexpr int kComplaint = 99;
  startPatience = seconds(300);
  const std::string suppressions = std::string("--suppressions=") + AMBREL_CAMERA_LIBRARY_SUPP;
  start(GetParam(),
        {"valgrind", "--quiet", "--keep-debuginfo=yes", "--leak-check=full",
         "--errors-for-leak-kinds=definite,indirect", "--show-leak-kinds=definite,indirect", suppressions,
         "--error-exitcode=" + std::to_string(kComplaint), "--log-file=" + reports.file("report")});
  worker->send(std::string("CONNECT|") + GetParam());
  worker->waitFor("CONNECTED|", seconds(60));
  worker->watch();
  camera.command("shoot n=3 kind=pair size=60000");
  EXPECT_EQ(waitForPhotos(6), takenPhotos());
  // A loss in the middle of a photo, and a new session.
  camera.command("drop after=500000");
  camera.command("shoot n=1 kind=jpeg size=6000000");
  worker->waitFor("DISCONNECTED|", seconds(60));
  worker->send(std::string("CONNECT|") + GetParam());
  worker->waitFor("CONNECTED|", seconds(60));
  worker->send("QUIT");
  EXPECT_EQ(worker->waitForExit(seconds(60)), 0) << reports.read("report");
}

INSTANTIATE_TEST_SUITE_P(BothModes, WorkerUnderValgrind, ::testing::Values("both", "disk"));

}  // namespace
}  // namespace ambrel
