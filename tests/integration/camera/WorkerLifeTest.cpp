// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <csignal>
#include <filesystem>

#include "WorkerSession.h"

namespace ambrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class WorkerLife : public WorkerSession {
 protected:
  // A temporary folder of its own: every worker that starts removes what killed ones left in it.
  WorkerLife() { setenv("TMPDIR", _temporary.path().c_str(), 1); }
  ~WorkerLife() override { unsetenv("TMPDIR"); }

  // Home folders in the temporary folder that belong to the worker with this process id.
  static int homesOf(pid_t pid) {
    const std::string prefix = "ambrel-worker-" + std::to_string(pid) + "-";
    int homes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path())) {
      homes += entry.path().filename().string().starts_with(prefix) ? 1 : 0;
    }
    return homes;
  }

 private:
  const test::TemporaryFolder _temporary;
};

TEST_F(WorkerLife, AnnouncesItselfAndItsLibrary) {
  start();
  ASSERT_EQ(worker->lines().size(), 3u);
  EXPECT_TRUE(worker->lines()[0].starts_with("CPP_WORKER|libgphoto2 2."));
  EXPECT_EQ(worker->lines()[1], "STATUS|loading canon sdk");
  EXPECT_EQ(worker->lines()[2], "READY|OK");
}

TEST_F(WorkerLife, TellsEachStepOfConnecting) {
  start().connect();
  std::vector<std::string> steps;
  for (const std::string& line : worker->lines()) {
    if (!line.starts_with("LOG|")) steps.push_back(line);
  }
  EXPECT_EQ(
      std::vector<std::string>(steps.begin() + 3, steps.end()),
      (std::vector<std::string>{"STATUS|waiting for camera usb", "STATUS|connecting to camera",
                                "STATUS|opening camera session", "STATUS|setting save destination",
                                "STATUS|checking camera memory card", "STATUS|connected", "CONNECTED|"}));
}

TEST_F(WorkerLife, EndsOnQuitWithoutACamera) {
  start().send("QUIT");
  EXPECT_EQ(worker->waitForExit(seconds(1)), 0);
}

TEST_F(WorkerLife, EndsOnQuitWhileWatching) {
  watch().send("QUIT");
  EXPECT_EQ(worker->waitForExit(seconds(1)), 0);
}

TEST_F(WorkerLife, EndsWithItsInput) {
  watch().closeInput();
  EXPECT_EQ(worker->waitForExit(seconds(1)), 0);
}

TEST_F(WorkerLife, EndsInOrderWhenTerminated) {
  watch().signal(SIGTERM);
  EXPECT_EQ(worker->waitForExit(seconds(1)), 0);
  // The camera is free for the next one at once.
  start().connect();
}

TEST_F(WorkerLife, RemovesItsPrivateHome) {
  start();
  const pid_t pid = worker->pid();
  EXPECT_EQ(homesOf(pid), 1);
  worker->send("QUIT");
  worker->waitForExit();
  EXPECT_EQ(homesOf(pid), 0);
}

TEST_F(WorkerLife, RemovesTheHomeOfAWorkerThatWasKilled) {
  start();
  const pid_t pid = worker->pid();
  worker->signal(SIGKILL);
  worker->waitForExit();
  EXPECT_EQ(homesOf(pid), 1);
  start();
  EXPECT_EQ(homesOf(pid), 0);
}

// A camera that was paired with this computer asks nobody the next time.
TEST_F(WorkerLife, IsTheSameHostToTheCameraEachTime) {
  const test::TemporaryFolder home;
  std::vector<std::string> identities;
  for (int i = 0; i < 2; ++i) {
    worker = std::make_unique<WorkerProcess>(
        WorkerProcess::Launch{folder.path(), camera.gphotoPort(), "both", {}, home.path()});
    worker->connect();
    identities.push_back(valueIn(camera.command("status"), "hostid"));
    worker->send("QUIT");
    worker->waitForExit();
  }
  EXPECT_EQ(identities[0].size(), 32u);
  EXPECT_EQ(identities[0], identities[1]);
  start().connect();
  EXPECT_NE(valueIn(camera.command("status"), "hostid"), identities[0]) << "of another user";
}

TEST_F(WorkerLife, RefusesAWrongCommandLine) {
  EXPECT_THROW(WorkerProcess({folder.path(), camera.gphotoPort(), "both", {"/bin/sh", "-c", "exec \"$0\""}}),
               std::runtime_error);
}

TEST_F(WorkerLife, ObeysWithin150MillisecondsWhileWatching) {
  watch();
  for (int i = 0; i < 10; ++i) {
    EXPECT_LE(timeOf([&] {
                worker->send("PUMP_IDLE");
                worker->waitFor("PUMP_IDLE_READY|");
              }),
              milliseconds(150));
    worker->watch();
  }
}

TEST_F(WorkerLife, ObeysWithin150MillisecondsDuringATransfer) {
  watch();
  camera.command("set rate=20000000");
  // A machine that is busy with other tests may be late once.
  milliseconds best = milliseconds::max();
  for (int attempt = 0; attempt < 3; ++attempt) {
    camera.command("shoot n=1 kind=jpeg size=15000000");
    worker->waitFor("CAPTURE_EVENT|");
    best = std::min(best, timeOf([&] {
                      worker->send("PUMP_IDLE");
                      worker->waitFor("PUMP_IDLE_READY|");
                    }));
    EXPECT_EQ(waitForPhotos(1).front(), takenPhotos().back()) << "answered after the transfer, not in it";
    worker->watch();
  }
  EXPECT_LE(best, milliseconds(150));
}

TEST_F(WorkerLife, EndsSoonInTheMiddleOfALongTransferAndLeavesNothing) {
  watch();
  camera.command("set rate=1000000");
  camera.command("shoot n=1 kind=jpeg size=30000000");
  worker->waitFor("CAPTURE_EVENT|");
  worker->closeInput();
  EXPECT_EQ(worker->waitForExit(seconds(8)), 0);
  EXPECT_TRUE(folder.names().empty());
}

}  // namespace
}  // namespace ambrel
