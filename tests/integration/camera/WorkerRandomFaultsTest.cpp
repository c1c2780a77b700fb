// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <set>

#include "WorkerSession.h"

namespace ambrel {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Shoots photos while everything breaks, and accounts for each one of them: reported whole and once, still on
// the card, or gone with an error that said so.
class WorkerRandomFaults : public WorkerSession, public ::testing::WithParamInterface<const char*> {
 protected:
  int below(int limit) { return std::uniform_int_distribution<>(0, limit - 1)(random); }

  // A worker that watches, started afresh where the old one is gone or gets no connection; as the application
  // does it.
  void bringUp() {
    for (int attempt = 0; !watching && attempt < 20; ++attempt) {
      if (!worker) start(GetParam());
      worker->send(std::string("CONNECT|") + GetParam());
      worker->send("PUMP_ACTIVE");
      watching = hearUntil({"PUMP_ACTIVE_READY|", "ERROR|", "DISCONNECTED|"}, milliseconds(20000)) ==
                 "PUMP_ACTIVE_READY|";
      if (!watching) worker.reset();
    }
    ASSERT_TRUE(watching) << "the camera never came back";
  }

  void breakSomething() {
    const std::string after = " after=" + std::to_string(below(2'500'000));
    const std::string how = below(2) == 0 ? " how=close" : " how=reset";
    const bool hasCard = std::string_view(GetParam()) != "disk";
    switch (below(10)) {
      case 0:
      case 1:
        return inject("drop" + how + after);
      case 2:
      case 3:
        return inject("cable in=0" + how + after);
      case 4:
        if (below(4) == 0) inject("cable in=0 how=freeze" + after);
        return;
      case 5:
      case 6:
        return inject("busy n=" + std::to_string(1 + below(4)));
      case 7:
        if (hasCard) inject("card in=0");
        return;
      case 8:
        killed = true;
        return;
      default:
        return;
    }
  }

  void inject(const std::string& command) {
    fault = command;
    camera.command(command);
  }

  void shoot() {
    const std::string size = std::to_string(1000 * (40 + below(2000)));
    const std::string answer = camera.answer("shoot n=1 kind=jpeg size=" + size);
    if (killed) {
      hearUntil({"DOWNLOADED|"}, milliseconds(below(60)));
      worker->signal(SIGKILL);
      worker->waitForExit();
      hearUntil({}, milliseconds(0));
      worker.reset();
      watching = false;
    } else {
      const auto until = Clock::now() + milliseconds(answer.starts_with("ok") ? 8000 : 100);
      const std::vector<SimulatedPhoto> photos = camera.photos();
      const std::string newest = photos.empty() ? "" : photos.back().sha256;
      // One that was announced before an error may still come.
      while (watching && reported.count(newest) == 0 && Clock::now() < until) {
        hearUntil({"DOWNLOADED|", "DISCONNECTED|"}, milliseconds(failed ? 200 : 8000));
        if (failed) break;
      }
      hearUntil({"DISCONNECTED|"}, milliseconds(20));
    }
  }

  void heal() {
    camera.command("cable in=1");
    camera.command("card in=1");
    if (watching) hearUntil({"DISCONNECTED|"}, milliseconds(60));
  }

  // Photos of a round in which an error was told, or the worker killed, may be lost.
  void closeRound() {
    for (std::size_t i = rounds.size(); i < camera.photos().size(); ++i) {
      rounds.push_back({killed || failed, fault + "; the worker said\n  " + heardThisRound});
    }
  }

  void accountForAll() {
    const std::vector<SimulatedPhoto> photos = camera.photos();
    for (std::size_t i = 0; i < photos.size(); ++i) {
      const bool wasReported = reported.erase(photos[i].sha256) > 0;
      const bool onCard = photos[i].place == "card" && !photos[i].deleted;
      EXPECT_TRUE(wasReported || onCard || rounds[i].excused)
          << photos[i].name << " is lost without a word; " << rounds[i].story;
      ++(wasReported ? kept : onCard ? leftOnCard : lost);
    }
    EXPECT_TRUE(reported.empty()) << "a file was reported that is no photo of the camera";
    std::cout << GetParam() << ": " << photos.size() << " photos taken, " << kept << " reported, "
              << leftOnCard << " left on the card, " << lost << " lost with an error or a killed worker\n";
  }

  // Listens until a line begins with one of `prefixes`, which is returned.
  std::string hearUntil(const std::vector<std::string>& prefixes, milliseconds patience) {
    const auto until = Clock::now() + patience;
    while (true) {
      const auto left = std::chrono::duration_cast<milliseconds>(until - Clock::now());
      const std::optional<std::string> line = worker->next(std::max(left, milliseconds(0)));
      if (!line) return {};
      hear(*line);
      for (const std::string& prefix : prefixes) {
        if (line->starts_with(prefix)) return prefix;
      }
    }
  }

  void hear(const std::string& line) {
    heardThisRound += line + "\n  ";
    if (line.starts_with("DISCONNECTED|")) watching = false;
    if (line.starts_with("ERROR|")) failed = true;
    if (!line.starts_with("DOWNLOADED|")) return;
    const std::string path = line.substr(std::string_view("DOWNLOADED|").size());
    const std::string checksum = sha256OfFile(path);
    EXPECT_TRUE(reported.insert(checksum).second) << path << " was reported twice";
    // The application takes the photo away.
    std::filesystem::remove(path);
  }

  std::mt19937 random{4711};
  bool watching = false;
  bool killed = false;  // this round: the worker, by us
  bool failed = false;  // this round: the worker said so
  std::string fault;    // the last command that broke something
  std::string heardThisRound;
  std::set<std::string> reported;
  struct Round {
    bool excused;
    std::string story;
  };
  std::vector<Round> rounds;  // by photo
  int kept = 0;
  int leftOnCard = 0;
  int lost = 0;
};

// AMBREL_WORKER_FAULTS photos in each save mode.
TEST_P(WorkerRandomFaults, LeaveEveryPhotoAccountedFor) {
  const int count = numberFromEnvironment("AMBREL_WORKER_FAULTS", 25);
  while (static_cast<int>(rounds.size()) < count) {
    killed = false;
    failed = false;
    heardThisRound.clear();
    bringUp();
    if (HasFatalFailure()) return;
    breakSomething();
    shoot();
    heal();
    closeRound();
  }
  accountForAll();
  EXPECT_GT(kept, count / 3) << "too little went well for the test to mean anything";
}

INSTANTIATE_TEST_SUITE_P(BothModes, WorkerRandomFaults, ::testing::Values("both", "disk"));

}  // namespace
}  // namespace ambrel
