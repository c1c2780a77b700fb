// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <unistd.h>

#include "camera/Watchdog.h"

namespace ambrel::camera {
namespace {

using std::chrono::milliseconds;
using Time = std::chrono::steady_clock::time_point;

// The rules of the watchdog without its thread: time is what the test says.
class WatchdogRules : public ::testing::Test {
 protected:
  static std::array<int, 2> newPipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    return ends;
  }
  ~WatchdogRules() override {
    for (const int fd : ends)
      close(fd);
  }
  static Time at(int ms) { return Time{} + milliseconds(ms); }

  std::array<int, 2> ends = newPipe();
  WatchdogState state{{{ends[0], POLLIN, 0}}};
};

TEST_F(WatchdogRules, LetsAnyTimePassWithoutADeadline) {
  EXPECT_EQ(state.overdue(at(1'000'000)), "");
}

TEST_F(WatchdogRules, NamesWhatWasWaitedFor) {
  state.arm("waiting for a photo", milliseconds(100), at(0));
  EXPECT_EQ(state.overdue(at(100)), "");
  EXPECT_EQ(state.overdue(at(101)), "no answer from the camera while waiting for a photo");
}

TEST_F(WatchdogRules, ForgetsADeadlineThatWasMet) {
  state.arm("waiting for a photo", milliseconds(100), at(0));
  state.disarm();
  EXPECT_EQ(state.overdue(at(200)), "");
}

TEST_F(WatchdogRules, CountsAfreshFromASignOfLife) {
  state.arm("downloading", milliseconds(100), at(0));
  state.feed(at(90));
  EXPECT_EQ(state.overdue(at(190)), "");
  EXPECT_NE(state.overdue(at(191)), "");
}

TEST_F(WatchdogRules, LetsAnEndThatWasAskedForTakeALittle) {
  EXPECT_EQ(state.overdue(at(0)), "");
  ASSERT_EQ(write(ends[1], "x", 1), 1);
  EXPECT_EQ(state.overdue(at(1000)), "");
  EXPECT_EQ(state.overdue(at(1000) + WatchdogState::kEndPatience), "");
  EXPECT_EQ(state.overdue(at(1001) + WatchdogState::kEndPatience),
            "the worker was asked to end and could not");
}

TEST_F(WatchdogRules, TakesAHangUpForAnEnd) {
  WatchdogState hungUp({{ends[0], 0, 0}});
  EXPECT_EQ(hungUp.overdue(at(0)), "");
  close(ends[1]);
  EXPECT_EQ(hungUp.overdue(at(0)), "");
  EXPECT_NE(hungUp.overdue(at(1) + WatchdogState::kEndPatience), "");
  ends[1] = dup(ends[0]);
}

TEST(Watchdog, EndsAProcessThatHangs) {
  EXPECT_EXIT(
      {
        Watchdog watchdog({}, [](const std::string& reason) {
          const std::string line = reason + "\n";
          if (write(STDERR_FILENO, line.data(), line.size()) > 0) _exit(3);
        });
        const Watchdog::Deadline deadline(watchdog, "hanging", milliseconds(1));
        poll(nullptr, 0, 60000);
      },
      ::testing::ExitedWithCode(3), "no answer from the camera while hanging");
}

TEST(Watchdog, StopsAtOnceWhenItIsNotNeededAnyMore) {
  const auto begun = std::chrono::steady_clock::now();
  {
    Watchdog watchdog({}, [](const std::string&) { ADD_FAILURE(); });
    const Watchdog::Deadline deadline(watchdog, "working", std::chrono::hours(1));
    watchdog.feed();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
}

}  // namespace
}  // namespace ambrel::camera
