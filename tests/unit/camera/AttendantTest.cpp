// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <thread>

#include "camera/Attendant.h"

namespace ambrel::camera {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// What the calling thread and the attendant share is guarded by nothing but the attendant.
class Attendant : public ::testing::Test {
 protected:
  // Lasts until the attendant has acted so often.
  bool callUntilActs(int wanted) {
    const camera::Attendant::Call call(attendant);
    const auto until = std::chrono::steady_clock::now() + seconds(10);
    while (std::chrono::steady_clock::now() < until) {
      {
        const auto back = attendant.back();
        if (acts >= wanted) return true;
      }
      std::this_thread::yield();
    }
    return false;
  }

  int acts = 0;
  camera::Attendant attendant;
};

TEST_F(Attendant, ActsAgainAndAgainDuringALongCall) {
  attendant.actWith([this] { ++acts; });
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_TRUE(callUntilActs(3));
  EXPECT_GE(std::chrono::steady_clock::now() - begun, 3 * camera::Attendant::kTick - milliseconds(1));
}

TEST_F(Attendant, LeavesTheCallerAloneAfterTheCall) {
  attendant.actWith([this] { ++acts; });
  ASSERT_TRUE(callUntilActs(1));
  // Were it to act from here on, it would do so beside us; ThreadSanitizer would tell.
  acts = 0;
  ASSERT_TRUE(callUntilActs(1));
  EXPECT_EQ(acts, 1);
}

TEST_F(Attendant, DoesNotActInShortCalls) {
  attendant.actWith([this] { ++acts; });
  for (int i = 0; i < 1000; ++i) {
    const camera::Attendant::Call call(attendant);
  }
  EXPECT_EQ(acts, 0);
}

TEST_F(Attendant, WaitsWhileTheCallRunsCodeOfTheCallersOwn) {
  attendant.actWith([this] { ++acts; });
  const camera::Attendant::Call call(attendant);
  const auto until = std::chrono::steady_clock::now() + 3 * camera::Attendant::kTick;
  const auto back = attendant.back();
  while (std::chrono::steady_clock::now() < until)
    std::this_thread::yield();
  EXPECT_EQ(acts, 0);
}

}  // namespace
}  // namespace ambrel::camera
