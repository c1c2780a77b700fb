// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "camera/LineInput.h"

namespace ambrel::camera {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds kAtOnce{0};
// Long enough to fail the test's time limit if it were ever waited for.
constexpr milliseconds kLong{600000};

class LineInput : public ::testing::Test {
 protected:
  ~LineInput() override {
    for (const int fd : {commands[0], commands[1], other[0], other[1]})
      close(fd);
  }
  static std::array<int, 2> newPipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    return ends;
  }
  static void write(const std::array<int, 2>& ends, const std::string& text) {
    ASSERT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  std::array<int, 2> commands = newPipe();
  std::array<int, 2> other = newPipe();
  camera::LineInput input{commands[0]};
};

TEST_F(LineInput, HandsOutLinesOneByOne) {
  write(commands, "PUMP_IDLE\nDISCONNECT\nQU");
  EXPECT_EQ(input.next(kLong).line, "PUMP_IDLE");
  EXPECT_EQ(input.next(kAtOnce).line, "DISCONNECT");
  EXPECT_EQ(input.next(kAtOnce).kind, LineSource::Kind::Nothing);
  write(commands, "IT\n");
  EXPECT_EQ(input.next(kLong).line, "QUIT");
}

TEST_F(LineInput, SkipsEmptyLinesAndTakesOffCarriageReturns) {
  write(commands, "\n\r\nQUIT\r\n");
  EXPECT_EQ(input.next(kLong).line, "QUIT");
  EXPECT_EQ(input.next(kAtOnce).kind, LineSource::Kind::Nothing);
}

TEST_F(LineInput, EndsWhenTheOtherSideIsGoneAfterItsLastLine) {
  write(commands, "QUIT\n");
  close(commands[1]);
  EXPECT_EQ(input.next(kLong).line, "QUIT");
  EXPECT_EQ(input.next(kLong).kind, LineSource::Kind::End);
  EXPECT_EQ(input.next(kLong).kind, LineSource::Kind::End);
}

TEST_F(LineInput, DropsAHalfLineAtTheEnd) {
  write(commands, "QUI");
  close(commands[1]);
  EXPECT_EQ(input.next(kLong).kind, LineSource::Kind::End);
}

TEST_F(LineInput, EndsWhenAskedToThroughAnotherDescriptor) {
  input.endOn(other[0]);
  write(other, "x");
  EXPECT_EQ(input.next(kLong).kind, LineSource::Kind::End);
}

TEST_F(LineInput, ServesAnotherDescriptorWhileItWaits) {
  std::string served;
  input.alsoServe(other[0], [&] {
    std::array<char, 16> bytes{};
    served.append(bytes.data(), static_cast<std::size_t>(read(other[0], bytes.data(), bytes.size())));
    write(commands, "QUIT\n");
  });
  write(other, "hello");
  EXPECT_EQ(input.next(kLong).line, "QUIT");
  EXPECT_EQ(served, "hello");
}

TEST_F(LineInput, WaitsNoLongerThanAsked) {
  const auto begun = input.now();
  EXPECT_EQ(input.next(milliseconds(20)).kind, LineSource::Kind::Nothing);
  EXPECT_GE(input.now() - begun, milliseconds(20));
}

}  // namespace
}  // namespace ambrel::camera
