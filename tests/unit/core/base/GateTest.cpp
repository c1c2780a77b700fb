// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <semaphore>
#include <thread>

#include "core/base/Gate.h"

using namespace ambrel;

TEST(Gate, IsOpenAtFirst) {
  const Gate gate;
  EXPECT_TRUE(gate.isOpen());
  gate.waitUntilOpen();
}

TEST(Gate, LetsEverybodyGoOnWhoHasWaited) {
  Gate gate;
  gate.shut();
  std::atomic<int> gone = 0;
  std::counting_semaphore<> come{0};
  const auto wait = [&] {
    come.release();
    gate.waitUntilOpen();
    EXPECT_TRUE(gate.isOpen());
    ++gone;
  };
  std::thread one(wait);
  std::thread other(wait);
  come.acquire();
  come.acquire();
  EXPECT_EQ(gone, 0);
  gate.open();
  one.join();
  other.join();
  EXPECT_EQ(gone, 2);
}
