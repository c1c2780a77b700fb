// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <vector>

#include "simulator/Shutter.h"

namespace ambrel::simulator {
namespace {

using std::chrono::milliseconds;

const Shutter::Clock::time_point kStart{std::chrono::hours(1)};

class ShutterTest : public ::testing::Test {
 protected:
  void press(std::uint64_t count, milliseconds interval = milliseconds(0)) {
    _shutter.press({}, count, interval,
                   [this](const Shutter::Result& result) { _results.push_back(result); });
  }

  CameraModel _camera{{1, 16, 16}};
  Shutter _shutter{_camera};
  std::vector<Shutter::Result> _results;
};

TEST_F(ShutterTest, TakesOneExposureAtATimeAndAnswersAfterTheLast) {
  press(3);
  EXPECT_EQ(_camera.shots(), 0U);
  for (std::uint32_t taken = 1; taken <= 3; ++taken) {
    EXPECT_EQ(_shutter.timeoutMs(kStart), 0);
    EXPECT_TRUE(_results.empty());
    _shutter.proceed(kStart);
    EXPECT_EQ(_camera.shots(), taken);
  }
  ASSERT_EQ(_results.size(), 1U);
  EXPECT_EQ(_results[0].first, 1U);
  EXPECT_EQ(_results[0].last, 3U);
  EXPECT_EQ(_results[0].files, 3U);
  EXPECT_EQ(_results[0].error, "");
  EXPECT_FALSE(_shutter.busy());
  EXPECT_EQ(_shutter.timeoutMs(kStart), -1);
}

TEST_F(ShutterTest, KeepsTheInterval) {
  press(2, milliseconds(100));
  _shutter.proceed(kStart);
  EXPECT_EQ(_shutter.timeoutMs(kStart + milliseconds(40)), 60);
  _shutter.proceed(kStart + milliseconds(99));
  EXPECT_EQ(_camera.shots(), 1U);
  _shutter.proceed(kStart + milliseconds(100));
  EXPECT_EQ(_camera.shots(), 2U);
  EXPECT_EQ(_results.size(), 1U);
}

TEST_F(ShutterTest, TakesOneOrderAfterTheOther) {
  press(1);
  press(1);
  _shutter.proceed(kStart);
  _shutter.proceed(kStart);
  ASSERT_EQ(_results.size(), 2U);
  EXPECT_EQ(_results[0].last, 1U);
  EXPECT_EQ(_results[1].first, 2U);
}

TEST_F(ShutterTest, EndsAnOrderAtTheFirstError) {
  press(5);
  _shutter.proceed(kStart);
  _camera.setCard(false);
  _shutter.proceed(kStart);
  ASSERT_EQ(_results.size(), 1U);
  EXPECT_NE(_results[0].error, "");
  EXPECT_EQ(_results[0].last, 1U);
  EXPECT_FALSE(_shutter.busy());
}

TEST_F(ShutterTest, AnswersAnOrderOfNothingAtOnce) {
  press(0);
  ASSERT_EQ(_results.size(), 1U);
  EXPECT_EQ(_results[0].files, 0U);
  EXPECT_LT(_results[0].last, _results[0].first);
}

TEST_F(ShutterTest, LetsGoOfEverythingWhenReleased) {
  press(5);
  press(5);
  _shutter.release("off");
  ASSERT_EQ(_results.size(), 2U);
  EXPECT_EQ(_results[1].error, "off");
  EXPECT_EQ(_camera.shots(), 0U);
}

}  // namespace
}  // namespace ambrel::simulator
