// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
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
  static constexpr WatchdogState::Patience kFlat{milliseconds(100), milliseconds(100)};
  static Time at(int ms) { return Time{} + milliseconds(ms); }

  std::array<int, 2> ends = newPipe();
  WatchdogState state{{{ends[0], POLLIN, 0}}};
};

TEST_F(WatchdogRules, LetsAnyTimePassWithoutADeadline) {
  EXPECT_EQ(state.overdue(at(1'000'000)), "");
}

TEST_F(WatchdogRules, NamesWhatWasWaitedFor) {
  state.arm("waiting for a photo", kFlat, at(0));
  EXPECT_EQ(state.overdue(at(100)), "");
  EXPECT_EQ(state.overdue(at(101)), "no answer from the camera while waiting for a photo");
}

TEST_F(WatchdogRules, ForgetsADeadlineThatWasMet) {
  state.arm("waiting for a photo", kFlat, at(0));
  state.disarm();
  EXPECT_EQ(state.overdue(at(200)), "");
}

TEST_F(WatchdogRules, CountsAfreshFromASignOfLife) {
  state.arm("downloading", {milliseconds(100), milliseconds(1000)}, at(0));
  state.feed(at(90));
  EXPECT_EQ(state.overdue(at(190)), "");
  EXPECT_NE(state.overdue(at(191)), "");
}

TEST_F(WatchdogRules, HasAnEndOfItsPatienceWithSignsOfLife) {
  state.arm("downloading", {milliseconds(100), milliseconds(1000)}, at(0));
  for (int ms = 0; ms <= 1001; ms += 50)
    state.feed(at(ms));
  EXPECT_EQ(state.overdue(at(1000)), "");
  EXPECT_NE(state.overdue(at(1001)), "");
}

TEST_F(WatchdogRules, TakesBytesReceivedForSignsOfLife) {
  state.arm("waiting for a photo", {milliseconds(20000), milliseconds(60000)}, at(0));
  state.received(700, at(0));
  EXPECT_FALSE(state.isSilent(at(499)));
  EXPECT_TRUE(state.isSilent(at(500)));
  state.received(701, at(10000));
  state.received(701, at(20000));
  EXPECT_EQ(state.overdue(at(30000)), "");
  EXPECT_NE(state.overdue(at(30001)), "");
  state.disarm();
  EXPECT_FALSE(state.isSilent(at(30001)));
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
        const Watchdog::Deadline deadline(watchdog, "hanging", {milliseconds(1), milliseconds(1)});
        poll(nullptr, 0, 60000);
      },
      ::testing::ExitedWithCode(3), "no answer from the camera while hanging");
}

TEST(Watchdog, AsksForTheBytesReceivedInALongCall) {
  std::atomic<std::uint64_t> asked{0};
  Watchdog watchdog(
      {}, [](const std::string&) { ADD_FAILURE(); }, [&] { return ++asked; });
  const Watchdog::Deadline deadline(watchdog, "receiving", {std::chrono::seconds(1), std::chrono::hours(1)});
  while (asked < 3)
    poll(nullptr, 0, 10);
}

TEST(Watchdog, StopsAtOnceWhenItIsNotNeededAnyMore) {
  const auto begun = std::chrono::steady_clock::now();
  {
    Watchdog watchdog({}, [](const std::string&) { ADD_FAILURE(); });
    const Watchdog::Deadline deadline(watchdog, "working", {std::chrono::hours(1), std::chrono::hours(1)});
    watchdog.feed();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
}

}  // namespace
}  // namespace ambrel::camera
