// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/list/SortedNames.h"

namespace ambrel {
namespace {

using Rows = std::vector<qint64>;

TEST(SortedNames, AreNoneForAnEmptyList) {
  SortedNames names;
  names.update(NameGrid());
  EXPECT_EQ(names.ascending(), Rows{});
  EXPECT_EQ(names.descending(), Rows{});
}

TEST(SortedNames, KeepEqualNamesInListOrderBothWays) {
  NameGrid grid;
  grid.replaceAll({{"b"}, {"A"}, {}, {"a"}, {"B"}, {"\xff"}, {"c"}, {""}});
  SortedNames names;
  names.update(grid);
  EXPECT_EQ(names.ascending(), (Rows{2, 5, 7, 1, 3, 0, 4, 6}));
  EXPECT_EQ(names.descending(), (Rows{6, 0, 4, 1, 3, 2, 5, 7}));
}

TEST(SortedNames, PutNoNameBeforeOneThatTheAlphabetPassesOver) {
  NameGrid grid;
  grid.replaceAll({{"a"}, {"\uFEFF"}, {""}, {"\u200B"}});
  SortedNames names;
  names.update(grid);
  EXPECT_EQ(names.ascending(), (Rows{2, 1, 3, 0}));
  EXPECT_EQ(names.descending(), (Rows{0, 1, 3, 2}));
}

TEST(SortedNames, FollowEveryChangeOfNames) {
  NameGrid grid;
  grid.replaceAll({{"b"}, {"a"}});
  SortedNames names;
  names.update(grid);
  grid.setBytes(1, Cell::Name, "c");
  names.update(grid);
  EXPECT_EQ(names.ascending(), (Rows{0, 1}));
  grid.insert(0, {"d"});
  names.update(grid);
  EXPECT_EQ(names.ascending(), (Rows{1, 2, 0}));
  grid.remove(1);
  names.update(grid);
  EXPECT_EQ(names.descending(), (Rows{0, 1}));
}

}  // namespace
}  // namespace ambrel
