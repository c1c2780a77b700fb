// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/app/PathLine.h"

using namespace ambrel;

namespace {

TEST(PathLine, SaysThatTheListIsEmptyAndNoFolderIsSelected) {
  EXPECT_EQ(pathLine({}), "List: Empty (import a CSV or paste names)  |  Save to: Not selected");
}

TEST(PathLine, CountsOneNameWithoutAnS) {
  EXPECT_EQ(pathLine({1, "", "/photos"}), "List: 1 name  |  Save to: photos");
}

TEST(PathLine, CountsTwoNamesAndNamesTheFileTheyCameFrom) {
  EXPECT_EQ(pathLine({2, "/lists/class 4b.csv", "/jobs/School"}),
            "List: 2 names (from class 4b.csv)  |  Save to: School");
}

TEST(ShortPathDisplay, ShowsTheLastComponent) {
  EXPECT_EQ(shortPathDisplay("/a/b/Photos", 20), "Photos");
  EXPECT_EQ(shortPathDisplay("/a/b/Photos/", 20), "Photos");
}

TEST(ShortPathDisplay, ShowsNothingForNoPath) {
  EXPECT_EQ(shortPathDisplay("", 20), "");
}

TEST(ShortPathDisplay, CutsThirtyCharactersToNineAndDotsForAMaximumOfTwelve) {
  EXPECT_EQ(shortPathDisplay("/x/abcdefghijklmnopqrstuvwxyz.jpg", 12), "abcdefghi...");
}

TEST(ShortPathDisplay, LeavesNoRoomForDotsAtAMaximumOfThree) {
  EXPECT_EQ(shortPathDisplay("/x/abcdefghijklmnopqrstuvwxyz.jpg", 3), "abc");
}

TEST(ShortPathDisplay, KeepsANameOfExactlyTheMaximum) {
  EXPECT_EQ(shortPathDisplay("/x/abcde", 5), "abcde");
}

}  // namespace
