// SPDX-License-Identifier: Apache-2.0
#include <QLocale>
#include <gtest/gtest.h>

#include "core/list/DisplayOrder.h"

namespace ambrel {
namespace {

NameGrid gridOf(std::vector<Row> rows) {
  NameGrid grid;
  grid.replaceAll(std::move(rows));
  return grid;
}

std::vector<qint64> shown(const NameGrid& grid, const DisplayRule& rule) {
  DisplayOrder order;
  order.rebuild(grid, rule);
  return order.filteredRows();
}

std::vector<qint64> found(const NameGrid& grid, const QString& text) {
  return shown(grid, DisplayRule{text});
}

std::vector<qint64> sorted(const NameGrid& grid, SortMode mode) {
  return shown(grid, DisplayRule{QString(), CaptureFilter::All, mode});
}

using Rows = std::vector<qint64>;

TEST(DisplayOrder, MapsBothWaysAndGivesMinusOneForWhatIsNotShown) {
  const NameGrid grid =
      gridOf({{"x"}, {"x"}, {"b", "", "1"}, {"x"}, {"a", "", "1"}, {"x"}, {"x"}, {"c", "", "1"}});
  DisplayOrder order;
  order.rebuild(grid, {QString(), CaptureFilter::WithPhotos, SortMode::Ascending});
  ASSERT_EQ(order.filteredRows(), (Rows{4, 2, 7}));
  EXPECT_EQ(order.modelRowForDisplayRow(1), 2);
  EXPECT_EQ(order.displayRowForModelRow(7), 2);
  EXPECT_EQ(order.displayRowForModelRow(5), -1);
  EXPECT_EQ(order.modelRowForDisplayRow(3), -1);
  EXPECT_EQ(order.modelRowForDisplayRow(-1), -1);
  EXPECT_EQ(order.displayRowForModelRow(-1), -1);
}

TEST(DisplayOrder, MapsNothingWhenEmpty) {
  const DisplayOrder order;
  EXPECT_EQ(order.modelRowForDisplayRow(0), -1);
  EXPECT_EQ(order.displayRowForModelRow(0), -1);
}

TEST(DisplayOrder, ShowsTheListAsItIsWithoutSearchFilterAndSort) {
  EXPECT_EQ(shown(gridOf({{"c"}, {}, {"a"}}), {}), (Rows{0, 1, 2}));
  EXPECT_TRUE(DisplayRule{}.showsListAsItIs());
  EXPECT_TRUE(DisplayRule{QStringLiteral(" \n")}.showsListAsItIs());
  EXPECT_FALSE(DisplayRule{QStringLiteral("a")}.showsListAsItIs());
  EXPECT_FALSE((DisplayRule{{}, CaptureFilter::Remaining}.showsListAsItIs()));
  EXPECT_FALSE((DisplayRule{{}, CaptureFilter::All, SortMode::Descending}.showsListAsItIs()));
}

TEST(DisplayOrder, FindsTheNeedleInNamesAndNotes) {
  const NameGrid grid = gridOf({{"Joanna"}, {"Ben", "Anna's brother"}, {"Cara", "late"}});
  EXPECT_EQ(found(grid, QStringLiteral("ann")), (Rows{0, 1}));
}

TEST(DisplayOrder, IgnoresLetterCaseAndBlanksAroundTheNeedle) {
  const NameGrid grid = gridOf({{"Joanna"}, {"Ben"}, {"ŁUKASZ"}});
  EXPECT_EQ(found(grid, QStringLiteral("  Ann\t")), Rows{0});
  EXPECT_EQ(found(grid, QStringLiteral("łuk")), Rows{2});
}

TEST(DisplayOrder, TakesASearchOfBlanksForNone) {
  EXPECT_EQ(found(gridOf({{"a"}, {"b"}}), QStringLiteral("  \t ")), (Rows{0, 1}));
  EXPECT_FALSE(DisplayRule{QStringLiteral("  \t ")}.isSearchActive());
}

TEST(DisplayOrder, FindsANeedleAcrossTheEndOfTheNameAndTheStartOfTheNote) {
  const NameGrid grid = gridOf({{"Anna", "front row"}, {"Anna front"}, {"Anna"}, {"Anna", ""}});
  EXPECT_EQ(found(grid, QStringLiteral("a front")), (Rows{0, 1}));
}

TEST(DisplayOrder, FoldsNoAccents) {
  EXPECT_EQ(found(gridOf({{"José"}, {"Jose"}}), QStringLiteral("jose")), Rows{1});
}

TEST(DisplayOrder, FindsNothingInARowWithoutCellsOrOutsideNameAndNote) {
  EXPECT_EQ(found(gridOf({{}, {"Anna", "", "77", "1"}}), QStringLiteral("7")), Rows{});
}

TEST(DisplayOrder, SearchesTheNoteOfANameThatIsNotUtf8) {
  EXPECT_EQ(found(gridOf({{"Zo\xeb", "front"}}), QStringLiteral("front")), Rows{0});
}

TEST(DisplayOrder, FiltersByPhotos) {
  const NameGrid grid = gridOf({{"a", "", ""}, {"b", "", "0"}, {"c", "", "3"}, {"d"}, {"e", "", "-2"}});
  EXPECT_EQ(shown(grid, {{}, CaptureFilter::WithPhotos}), Rows{2});
  EXPECT_EQ(shown(grid, {{}, CaptureFilter::Remaining}), (Rows{0, 1, 3, 4}));
}

TEST(DisplayOrder, SearchesWithinTheFilter) {
  const NameGrid grid = gridOf({{"Anna", "", "1"}, {"Anne"}, {"Ben", "", "1"}});
  EXPECT_EQ(shown(grid, {QStringLiteral("an"), CaptureFilter::WithPhotos}), Rows{0});
}

TEST(DisplayOrder, KeepsTheListOrderOfEqualNamesInBothDirections) {
  const NameGrid grid = gridOf({{"b"}, {"A"}, {"a"}, {"B"}});
  EXPECT_EQ(sorted(grid, SortMode::Ascending), (Rows{1, 2, 0, 3}));
  EXPECT_EQ(sorted(grid, SortMode::Descending), (Rows{0, 3, 1, 2}));
}

TEST(DisplayOrder, SortsByTheAlphabetOfTheUser) {
  const NameGrid grid = gridOf({{"Zoë"}, {"Özil"}, {"Oskar"}, {"ähre"}, {"Anna"}});
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  const Rows german = sorted(grid, SortMode::Ascending);
  QLocale::setDefault(QLocale(QLocale::Swedish, QLocale::Sweden));
  const Rows swedish = sorted(grid, SortMode::Ascending);
  QLocale::setDefault(before);
  EXPECT_EQ(german, (Rows{3, 4, 2, 1, 0}));
  EXPECT_EQ(swedish, (Rows{4, 2, 0, 3, 1}));
}

TEST(DisplayOrder, IgnoresLetterCaseInTheCLocaleToo) {
  const QLocale before;
  QLocale::setDefault(QLocale::c());
  const Rows order = sorted(gridOf({{"b"}, {"C"}, {"a"}}), SortMode::Ascending);
  QLocale::setDefault(before);
  EXPECT_EQ(order, (Rows{2, 0, 1}));
}

TEST(DisplayOrder, SortsNamesThatCannotBeReadAsEmptyOnes) {
  EXPECT_EQ(sorted(gridOf({{"a"}, {"\xff"}, {}, {"b"}}), SortMode::Ascending), (Rows{1, 2, 0, 3}));
}

TEST(DisplayOrder, FollowsTheListWhenRebuilt) {
  NameGrid grid = gridOf({{"a"}, {"b"}});
  DisplayOrder order;
  order.rebuild(grid, {});
  grid.remove(0);
  order.rebuild(grid, {});
  EXPECT_EQ(order.filteredRows(), Rows{0});
  order.clear();
  EXPECT_EQ(order.filteredRows(), Rows{});
}

TEST(DisplayOrder, NamesEveryFilterAndSort) {
  EXPECT_EQ(captureFilterTitle(CaptureFilter::All), QStringLiteral("Show: All"));
  EXPECT_EQ(captureFilterTitle(CaptureFilter::WithPhotos), QStringLiteral("Show: With Photos"));
  EXPECT_EQ(captureFilterTitle(CaptureFilter::Remaining), QStringLiteral("Show: Remaining"));
  EXPECT_EQ(nameColumnBaseTitle(SortMode::ListOrder), QStringLiteral("Name"));
  EXPECT_EQ(nameColumnBaseTitle(SortMode::Ascending), QStringLiteral("Name  ↑"));
  EXPECT_EQ(nameColumnBaseTitle(SortMode::Descending), QStringLiteral("Name  ↓"));
}

}  // namespace
}  // namespace ambrel
