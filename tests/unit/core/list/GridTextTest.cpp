// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <random>

#include "core/list/GridText.h"

namespace ambrel {
namespace {

TEST(GridText, WritesTheStoreWithFourColumnsAndNoLastLineEnd) {
  EXPECT_EQ(writeGrid({{"a,b", ""}}, GridColumns::All), "File Name,Notes,Captured,Marker\n\"a,b\",,0,");
}

TEST(GridText, WritesTheExportWithNamesAndNotesOnly) {
  EXPECT_EQ(writeGrid({{"Anna", "left, early", "4", "1"}, {"Ben"}, {}}, GridColumns::NamesAndNotes),
            "File Name,Notes\nAnna,\"left, early\"\nBen,\n,");
}

TEST(GridText, WritesTheDefaultsOfMissingCells) {
  EXPECT_EQ(writeGrid({{}, {"a"}, {"b", "n"}, {"c", "n", ""}, {"d", "n", "2"}, {"e", "n", "2", "1"}},
                      GridColumns::All),
            "File Name,Notes,Captured,Marker\n,,0,\na,,0,\nb,n,0,\nc,n,,\nd,n,2,\ne,n,2,1");
}

TEST(GridText, WritesAnEmptyListAsItsHeaderAlone) {
  EXPECT_EQ(writeGrid({}, GridColumns::All), "File Name,Notes,Captured,Marker");
  EXPECT_EQ(writeGrid({}, GridColumns::NamesAndNotes), "File Name,Notes");
}

TEST(GridText, WritesRowsFarLargerThanUsual) {
  const std::string large(1'000'000, '"');
  const QByteArray written = writeGrid({{large, large}, {"b"}}, GridColumns::NamesAndNotes);
  EXPECT_EQ(written.size(), 15 + 1 + 2 * 2'000'002 + 1 + 3);
  EXPECT_TRUE(written.endsWith("\"\nb,"));
}

TEST(StoreText, FollowsARowThatChanges) {
  NameGrid grid;
  grid.replaceAll({{"Anna"}, {"Ben", "note", "3", "1"}, {"Cara"}});
  StoreText text;
  text.update(grid);
  grid.setBytes(1, Cell::Note, "a longer, quoted note");
  grid.setCaptured(12, 0);
  text.update(grid);
  EXPECT_EQ(text.bytes(),
            "File Name,Notes,Captured,Marker\nAnna,,12,\nBen,\"a longer, quoted note\",3,1\nCara,,0,");
}

TEST(StoreText, IsWhatWritingTheWholeListWouldGiveAfterAnyEdits) {
  std::mt19937 random(3);
  NameGrid grid;
  StoreText text;
  for (int round = 0; round < 3'000; ++round) {
    const auto row = static_cast<std::int64_t>(random() % 40);
    const std::string value(random() % 30, random() % 3 == 0 ? ',' : 'x');
    switch (random() % 12) {
      case 0:
        grid.insert(row, {value});
        break;
      case 1:
        grid.remove(row);
        break;
      case 2:
        grid.append({value, value});
        break;
      default:
        grid.setBytes(row, static_cast<Cell>(random() % 4), value);
    }
    if (random() % 3 == 0) continue;
    text.update(grid);
    ASSERT_EQ(text.bytes(), writeGrid(grid.rows(), GridColumns::All)) << "round " << round;
  }
}

}  // namespace
}  // namespace ambrel
