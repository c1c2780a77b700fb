// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <random>
#include <utility>

#include "core/list/NameGrid.h"

namespace ambrel {
namespace {

NameGrid gridOf(std::vector<Row> rows) {
  NameGrid grid;
  grid.replaceAll(std::move(rows));
  return grid;
}

TEST(NameGrid, StartsEmpty) {
  const NameGrid grid;
  EXPECT_TRUE(grid.isEmpty());
  EXPECT_EQ(grid.rowCount(), 0);
  EXPECT_FALSE(grid.contains(0));
}

TEST(NameGrid, GivesTheDefaultOfAMissingCell) {
  const NameGrid grid = gridOf({{"Anna", ""}, {}});
  EXPECT_EQ(grid.capturedForModelRow(0), 0);
  EXPECT_FALSE(grid.markerForModelRow(0));
  EXPECT_EQ(grid.text(1, Cell::Name), QString());
  EXPECT_EQ(grid.bytes(1, Cell::Note), "");
}

TEST(NameGrid, GivesDefaultsForRowsOutOfRange) {
  const NameGrid grid = gridOf({{"Anna", "", "3", "1"}});
  for (const std::int64_t row : {std::int64_t{-1}, std::int64_t{1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(grid.bytes(row, Cell::Name), "");
    EXPECT_EQ(grid.capturedForModelRow(row), 0);
    EXPECT_FALSE(grid.markerForModelRow(row));
  }
}

TEST(NameGrid, IgnoresWritesToRowsOutOfRange) {
  const std::vector<Row> rows = {{"Anna"}};
  NameGrid grid = gridOf(rows);
  for (const std::int64_t row : {-1, 1}) {
    grid.setCaptured(5, row);
    grid.setMarker(true, row);
    grid.setBytes(row, Cell::Name, "Ben");
    grid.remove(row);
  }
  EXPECT_EQ(grid.rows(), rows);
}

TEST(NameGrid, FillsAShortRowUpToTheCellThatItWrites) {
  NameGrid grid = gridOf({{"Anna", "note"}, {"Ben"}, {}});
  grid.setMarker(true, 0);
  grid.setCaptured(2, 1);
  grid.setBytes(2, Cell::Note, "who?");
  EXPECT_EQ(grid.rows(), (std::vector<Row>{{"Anna", "note", "", "1"}, {"Ben", "", "2"}, {"", "who?"}}));
}

TEST(NameGrid, StoresANegativeCountAsZero) {
  NameGrid grid = gridOf({{"Anna"}});
  grid.setCaptured(-5, 0);
  EXPECT_EQ(grid.bytes(0, Cell::Captured), "0");
}

TEST(NameGrid, ReadsTheLeadingNumberOfACount) {
  const std::vector<std::pair<std::string, std::int64_t>> cases = {
      {"", 0},       {"12", 12},
      {"12abc", 12}, {"abc", 0},
      {" \t7", 7},   {"+4", 4},
      {"-3", -3},    {"- 3", 0},
      {"007", 7},    {"1.9", 1},
      {"0x10", 0},   {"1,000", 1},
      {"٣", 0},      {"9000000000", 9'000'000'000},
  };
  for (const auto& [cell, count] : cases)
    EXPECT_EQ(gridOf({{"Anna", "", cell}}).capturedForModelRow(0), count) << cell;
}

TEST(NameGrid, HoldsACountTooLargeForANumberAtTheLargest) {
  EXPECT_EQ(gridOf({{"Anna", "", "99999999999999999999"}}).capturedForModelRow(0), INT64_MAX);
}

TEST(NameGrid, TakesOnlyTheTextOneForAMarker) {
  for (const char* cell : {"", "0", "01", "1 ", " 1", "true", "11"})
    EXPECT_FALSE(gridOf({{"Anna", "", "", cell}}).markerForModelRow(0)) << cell;
  EXPECT_TRUE(gridOf({{"Anna", "", "", "1"}}).markerForModelRow(0));
}

TEST(NameGrid, ClearsAMarkerToEmptyText) {
  NameGrid grid = gridOf({{"Anna", "", "", "1"}});
  grid.setMarker(false, 0);
  EXPECT_EQ(grid.bytes(0, Cell::Marker), "");
}

TEST(NameGrid, ReadsBytesThatAreNotUtf8AsEmptyTextAndKeepsThem) {
  const NameGrid grid = gridOf({{"Zo\xeb"}});
  EXPECT_EQ(grid.text(0, Cell::Name), QString());
  EXPECT_EQ(grid.bytes(0, Cell::Name), "Zo\xeb");
}

TEST(NameGrid, FindsNamesThatDifferOnlyInLetterCase) {
  const NameGrid grid = gridOf({{"Anna"}, {"ANNA"}, {"Ben"}, {""}, {""}, {"Ben "}, {}, {}});
  EXPECT_EQ(grid.duplicateNameSet(), QSet<QString>{QStringLiteral("anna")});
}

TEST(NameGrid, FoldsTheCaseOfEveryAlphabetButNoAccents) {
  const NameGrid grid = gridOf({{"ŁUKASZ"}, {"łukasz"}, {"ΣΟΦΊΑ"}, {"σοφία"}, {"José"}, {"Jose"}});
  EXPECT_EQ(grid.duplicateNameSet(), (QSet<QString>{QStringLiteral("łukasz"), QStringLiteral("σοφία")}));
}

TEST(NameGrid, CountsANameOnceHoweverOftenItIsShared) {
  EXPECT_EQ(gridOf({{"a"}, {"A"}, {"a"}}).duplicateNameSet().size(), 1u);
}

TEST(NameGrid, FindsDuplicatesAnewAfterANameHasChanged) {
  NameGrid grid = gridOf({{"Anna"}, {"anna"}, {"Ben"}});
  EXPECT_EQ(grid.duplicateNameSet().size(), 1);
  grid.setBytes(1, Cell::Name, "ben");
  EXPECT_EQ(grid.duplicateNameSet(), QSet<QString>{QStringLiteral("ben")});
  grid.remove(2);
  EXPECT_TRUE(grid.duplicateNameSet().isEmpty());
}

TEST(NameGrid, FindsTheDuplicatesOfAFreshGridWhateverWasDoneToIt) {
  const std::vector<Row> rows = {{},        {""},      {"Anna"},         {"ANNA", "front row"},
                                 {"anna "}, {"José"},  {"JOSÉ"},         {"Jose"},
                                 {"ΣΟΦΊΑ"}, {"σοφία"}, {"\xef\xbb\xbf"}, {"Zo\xeb"}};
  std::mt19937 random(1);
  NameGrid grid;
  for (int step = 0; step < 5000; ++step) {
    const auto number = [&](std::int64_t below) { return static_cast<std::int64_t>(random() % below); };
    const std::int64_t at = number(grid.rowCount() + 2) - 1;
    const Row row = step % 3 == 0 ? Row{"Somebody " + std::to_string(step)} : rows[random() % rows.size()];
    const std::string name = row.empty() ? std::string() : row.front();
    switch (random() % 8) {
      case 0:
        grid.append(row);
        break;
      case 1:
        grid.insert(at, row);
        break;
      case 2:
        grid.remove(at);
        break;
      case 3:
      case 4:
        grid.setBytes(at, Cell::Name, name);
        break;
      case 5:
        grid.setCaptured(step, at);
        break;
      case 6: {
        if (!grid.contains(at)) break;
        Row moved = grid.rows()[static_cast<std::size_t>(at)];
        grid.remove(at);
        grid.insert(number(grid.rowCount() + 1), std::move(moved));
        break;
      }
      default:
        if (step % 100 == 7) grid.replaceAll(rows);
    }
    // Now and then several changes have come since it was asked for.
    if (number(3) > 0) continue;
    ASSERT_EQ(grid.duplicateNameSet(), gridOf(grid.rows()).duplicateNameSet()) << "step " << step;
  }
}

TEST(NameGrid, TakesTheDuplicatesThatWereFoundInItsRows) {
  NameGrid grid;
  std::vector<Row> rows = {{"Anna"}, {"anna"}};
  DuplicateNames duplicates = duplicateNamesAmong(rows);
  grid.replaceAll(std::move(rows), std::move(duplicates));
  EXPECT_EQ(grid.duplicateNameSet(), QSet<QString>{QStringLiteral("anna")});
  grid.setBytes(0, Cell::Name, "Ben");
  EXPECT_TRUE(grid.duplicateNameSet().isEmpty());
}

TEST(NameGrid, InsertsAtAPositionClampedToTheList) {
  NameGrid grid = gridOf({{"b"}});
  grid.insert(-7, {"a"});
  grid.insert(99, {"d"});
  grid.insert(2, {"c"});
  EXPECT_EQ(grid.rows(), (std::vector<Row>{{"a"}, {"b"}, {"c"}, {"d"}}));
}

TEST(NameGrid, RemovesOneRow) {
  NameGrid grid = gridOf({{"a"}, {"b"}, {"c"}});
  grid.remove(1);
  EXPECT_EQ(grid.rows(), (std::vector<Row>{{"a"}, {"c"}}));
}

TEST(NameGrid, TellsWhichRowsChangedSinceARevision) {
  NameGrid grid = gridOf({{"a"}, {"b"}, {"c"}});
  const std::uint64_t first = grid.revision();
  EXPECT_EQ(grid.changesSince(first), GridChanges{});
  grid.setCaptured(1, 2);
  const std::uint64_t second = grid.revision();
  grid.setMarker(true, 0);
  EXPECT_EQ(grid.changesSince(first), (GridChanges{false, {2, 0}}));
  EXPECT_EQ(grid.changesSince(second), (GridChanges{false, {0}}));
  EXPECT_EQ(grid.changesSince(grid.revision()), GridChanges{});
}

TEST(NameGrid, TellsThatEverythingChangedToWhomeverHasSeenNothing) {
  EXPECT_EQ(NameGrid().changesSince(0), GridChanges{true});
  NameGrid grid = gridOf({{"a"}});
  grid.setCaptured(1, 0);
  EXPECT_EQ(grid.changesSince(0), GridChanges{true});
}

TEST(NameGrid, TellsThatEverythingChangedWhenRowsComeOrGoOrManyChange) {
  NameGrid grid = gridOf({{"a"}, {"b"}});
  std::uint64_t last = grid.revision();
  const auto changes = [&] { return grid.changesSince(std::exchange(last, grid.revision())); };
  grid.append({"c"});
  EXPECT_EQ(changes(), GridChanges{true});
  grid.insert(0, {"d"});
  EXPECT_EQ(changes(), GridChanges{true});
  grid.remove(0);
  grid.setCaptured(1, 0);
  EXPECT_EQ(changes(), GridChanges{true});
  for (int i = 0; i < 1000; ++i)
    grid.setCaptured(i, i % 2);
  EXPECT_EQ(changes(), GridChanges{true});
  grid.clear();
  EXPECT_EQ(changes(), GridChanges{true});
  EXPECT_EQ(changes(), GridChanges{});
}

TEST(NameGrid, GivesAnotherNamesRevisionAfterEveryChangeOfNamesAndOnlyThen) {
  NameGrid grid;
  std::uint64_t last = grid.namesRevision();
  const auto moved = [&] { return std::exchange(last, grid.namesRevision()) != grid.namesRevision(); };
  grid.append({"Anna"});
  EXPECT_TRUE(moved());
  grid.insert(0, {"Ben"});
  EXPECT_TRUE(moved());
  grid.setBytes(0, Cell::Name, "Cara");
  EXPECT_TRUE(moved());
  grid.setCaptured(3, 0);
  grid.setMarker(true, 0);
  grid.setBytes(0, Cell::Note, "front row");
  EXPECT_FALSE(moved());
  grid.remove(0);
  EXPECT_TRUE(moved());
  grid.replaceAll({{"Dora"}});
  EXPECT_TRUE(moved());
  grid.clear();
  EXPECT_TRUE(moved());
}

}  // namespace
}  // namespace ambrel
