// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <semaphore>

#include "core/app/QuitDeadline.h"

using namespace ambrel;
using namespace std::chrono_literals;

TEST(QuitDeadline, EndsAnApplicationWhoseQuittingTakesTooLong) {
  std::binary_semaphore ended{0};
  QuitDeadline deadline([&] { ended.release(); }, 0ms);
  deadline.quittingBegins();
  ended.acquire();
}

TEST(QuitDeadline, EndsNothingThatQuitsInTime) {
  bool ended = false;
  {
    QuitDeadline deadline([&] { ended = true; }, 1h);
    deadline.quittingBegins();
    deadline.quittingBegins();
  }
  EXPECT_FALSE(ended);
}

TEST(QuitDeadline, EndsNothingThatIsNotQuitting) {
  bool ended = false;
  {
    const QuitDeadline deadline([&] { ended = true; }, 0ms);
  }
  EXPECT_FALSE(ended);
}
