// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "camera/StandardStreams.h"

namespace ambrel::camera {
namespace {

std::vector<std::string> drained(StandardStreams& streams) {
  std::vector<std::string> lines;
  streams.drain([&](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

TEST(StandardStreams, CatchWhatIsPrintedLineByLine) {
  StandardStreams streams;
  std::fprintf(stderr, "connect cmd: refused\nhalf");
  std::fflush(stderr);
  EXPECT_EQ(drained(streams), std::vector<std::string>{"connect cmd: refused"});
  std::printf(" a line\n");
  std::fflush(stdout);
  EXPECT_EQ(drained(streams), std::vector<std::string>{"half a line"});
}

TEST(StandardStreams, NeverBlockAPrinter) {
  StandardStreams streams;
  const std::string much(100'000, 'x');
  const ssize_t taken = write(STDERR_FILENO, much.data(), much.size());
  EXPECT_GT(taken, 0);
  EXPECT_LT(taken, static_cast<ssize_t>(much.size()));
}

TEST(StandardStreams, GiveAnEmptyInputToOthersAndKeepTheRealOne) {
  const StandardStreams streams;
  char byte = 0;
  EXPECT_EQ(read(STDIN_FILENO, &byte, 1), 0);
  EXPECT_GT(streams.input(), STDERR_FILENO);
  EXPECT_GT(streams.output(), STDERR_FILENO);
}

TEST(StandardStreams, ArePutBackAtTheEnd) {
  ::testing::internal::CaptureStdout();
  {
    const StandardStreams streams;
    std::printf("caught\n");
    ASSERT_EQ(write(streams.output(), "said\n", 5), 5);
  }
  std::printf("afterwards\n");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "said\nafterwards\n");
}

}  // namespace
}  // namespace ambrel::camera
