// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "protocol/LineFramer.h"

using ambrel::protocol::kMaxLineBytes;
using ambrel::protocol::LineFramer;

namespace {

std::vector<std::string> linesOf(const std::vector<std::string>& blocks) {
  LineFramer framer;
  std::vector<std::string> lines;
  for (const std::string& block : blocks) {
    framer.feed(block, [&](std::string_view line) { lines.emplace_back(line); });
  }
  return lines;
}

using Lines = std::vector<std::string>;

TEST(LineFramer, CutsTwoLinesOutOfOneBlock) {
  EXPECT_EQ(linesOf({"a\nb\n"}), (Lines{"a", "b"}));
}

TEST(LineFramer, JoinsOneLineFromThreeBlocks) {
  EXPECT_EQ(linesOf({"REA", "DY", "|OK\n"}), (Lines{"READY|OK"}));
}

TEST(LineFramer, KeepsAnUnfinishedLineToItself) {
  EXPECT_EQ(linesOf({"a\nhalf"}), (Lines{"a"}));
}

TEST(LineFramer, HandsOnEmptyLines) {
  EXPECT_EQ(linesOf({"\n\n"}), (Lines{"", ""}));
}

TEST(LineFramer, NeverCutsACharacterThatIsSplitOverTwoBlocks) {
  EXPECT_EQ(linesOf({"Jos\xC3", "\xA9\n"}), (Lines{"Jos\xC3\xA9"}));
}

TEST(LineFramer, TakesALineOfTheLargestSize) {
  const std::string line(kMaxLineBytes, 'x');
  EXPECT_EQ(linesOf({line + "\n"}), (Lines{line}));
}

TEST(LineFramer, DiscardsALongerLineToItsEndAndNothingElse) {
  const std::string tooLong(kMaxLineBytes + 1, 'x');
  EXPECT_EQ(linesOf({"a\n" + tooLong, "still the same line\nb\n"}), (Lines{"a", "b"}));
}

TEST(LineFramer, StartsAfreshWhenCleared) {
  LineFramer framer;
  Lines lines;
  const auto collect = [&](std::string_view line) { lines.emplace_back(line); };
  framer.feed("old", collect);
  framer.clear();
  framer.feed("new\n", collect);
  EXPECT_EQ(lines, (Lines{"new"}));
}

}  // namespace
