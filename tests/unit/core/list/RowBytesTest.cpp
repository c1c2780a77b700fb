// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/list/RowBytes.h"

namespace ambrel {
namespace {

TEST(RowBytes, HoldNothingAtFirst) {
  EXPECT_EQ(RowBytes().rowCount(), 0u);
  EXPECT_EQ(RowBytes().bytes(), QByteArray());
}

TEST(RowBytes, KnowWhereEachPieceBeginsAndEnds) {
  RowBytes rows;
  rows.assign("headonethree", {4, 7, 7, 12});
  EXPECT_EQ(rows.rowCount(), 3u);
  EXPECT_EQ(rows.startOf(0), 4);
  EXPECT_EQ(rows.endOf(0), 7);
  EXPECT_EQ(rows.startOf(1), rows.endOf(1));
  EXPECT_EQ(rows.endOf(2), 12);
}

TEST(RowBytes, ReplaceOnePieceAndMoveTheOnesBehindIt) {
  RowBytes rows;
  rows.assign("onetwothree", {0, 3, 6, 11});
  rows.replace(1, "second");
  EXPECT_EQ(rows.bytes(), "onesecondthree");
  EXPECT_EQ(rows.startOf(2), 9);
  rows.replace(2, "3");
  rows.replace(0, "1st");
  rows.replace(1, "");
  EXPECT_EQ(rows.bytes(), "1st3");
  EXPECT_EQ(rows.startOf(2), 3);
  EXPECT_EQ(rows.endOf(2), 4);
}

TEST(RowBytes, LeaveACopyOfTheBytesAsItWas) {
  RowBytes rows;
  rows.assign("ab", {0, 1, 2});
  const QByteArray before = rows.bytes();
  rows.replace(0, "x");
  EXPECT_EQ(before, "ab");
}

}  // namespace
}  // namespace ambrel
