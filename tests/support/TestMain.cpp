// SPDX-License-Identifier: Apache-2.0
#include <clocale>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "C.UTF-8");
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
