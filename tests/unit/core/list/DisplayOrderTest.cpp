// SPDX-License-Identifier: Apache-2.0
#include <QCollator>
#include <QLocale>
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "core/base/Text.h"
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

// What the table is to show, row by row and without anything prepared.
Rows slowlyShown(const NameGrid& grid, const DisplayRule& rule) {
  const QString needle = NSTrim(rule.searchText).toLower();
  Rows rows;
  for (qint64 row = 0; row < grid.rowCount(); ++row) {
    const bool hasPhotos = grid.capturedForModelRow(row) >= 1;
    if (rule.captureFilter == CaptureFilter::WithPhotos && !hasPhotos) continue;
    if (rule.captureFilter == CaptureFilter::Remaining && hasPhotos) continue;
    const std::size_t cells = grid.rows()[static_cast<std::size_t>(row)].size();
    QString haystack;
    if (cells >= 1) haystack = grid.text(row, Cell::Name);
    if (cells >= 2) haystack += QLatin1Char(' ') + grid.text(row, Cell::Note);
    if (haystack.toLower().contains(needle)) rows.push_back(row);
  }
  if (rule.sortMode == SortMode::ListOrder) return rows;
  QCollator collator{QLocale(QLocale::English)};
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::stable_sort(rows.begin(), rows.end(), [&](qint64 a, qint64 b) {
    const int order = collator.compare(grid.text(a, Cell::Name), grid.text(b, Cell::Name));
    return rule.sortMode == SortMode::Ascending ? order < 0 : order > 0;
  });
  return rows;
}

// Pieces of which random names, notes and needles are made: letters whose lower case is longer, shorter or in
// another alphabet, marks, bytes that are no text.
const std::vector<std::string> kPieces = {
    "a", "A",    "n",    "N",  "an", " ",  "ß",  "É", "é",      "e\u0301", "Σ", "ς", "İ", "\u212A", "Ł",
    "😀", "\xFF", "\xC3", "山", "Ⱥ",  "\n", "\t", ",", "\uFEFF", "1",       "-", "'", "B", "ﬁ",      "ǅ"};

class RandomLists {
 public:
  explicit RandomLists(unsigned seed) : _random(seed) {}

  std::size_t below(std::size_t count) { return _random() % count; }
  std::string text(std::size_t most) {
    std::string bytes;
    for (std::size_t left = below(most + 1); left > 0; --left)
      bytes += kPieces[below(kPieces.size())];
    return bytes;
  }
  Row row() {
    Row row(below(5));
    if (!row.empty()) row[0] = text(6);
    if (row.size() > 1) row[1] = text(6);
    if (row.size() > 2) row[2] = std::to_string(static_cast<int>(below(4)) - 1);
    if (row.size() > 3) row[3] = below(2) == 0 ? "1" : "";
    return row;
  }
  std::vector<Row> rows() {
    std::vector<Row> rows(below(60));
    for (Row& each : rows)
      each = row();
    return rows;
  }
  DisplayRule rule() {
    const QString needle = std_to_ns(text(3));
    return {below(3) == 0 ? QString() : needle, static_cast<CaptureFilter>(below(3)),
            static_cast<SortMode>(below(3))};
  }
  void edit(NameGrid& grid) {
    const auto row = static_cast<std::int64_t>(below(static_cast<std::size_t>(grid.rowCount()) + 1));
    switch (below(8)) {
      case 0:
        return grid.insert(row, this->row());
      case 1:
        return grid.remove(row);
      case 2:
        return grid.append(this->row());
      case 3:
        return grid.setBytes(row, Cell::Name, text(6));
      case 4:
        return grid.setBytes(row, Cell::Note, text(6));
      default:
        return grid.setCaptured(static_cast<std::int64_t>(below(3)), row);
    }
  }

 private:
  std::mt19937 _random;
};

TEST(DisplayOrder, IsWhatLookingAtEveryRowGivesThroughAnyEditsSearchesFiltersAndSorts) {
  RandomLists random(20260504);
  for (int list = 0; list < 150; ++list) {
    NameGrid grid = gridOf(random.rows());
    DisplayOrder order;
    for (int step = 0; step < 40; ++step) {
      if (random.below(2) == 0) random.edit(grid);
      const DisplayRule rule = random.rule();
      order.rebuild(grid, rule);
      ASSERT_EQ(order.filteredRows(), slowlyShown(grid, rule))
          << "list " << list << ", step " << step << ", search " << rule.searchText.toStdString();
    }
  }
}

TEST(DisplayOrder, NeverFindsANeedleAcrossTwoRows) {
  const NameGrid grid = gridOf({{"Anna"}, {"Ben"}, {"Cara", "x"}, {"y"}});
  for (const char* needle : {"annaben", "anna ben", "ab", "nnab", "xy", "x y", "x\ny"})
    EXPECT_EQ(found(grid, QString::fromUtf8(needle)), Rows{}) << needle;
}

TEST(DisplayOrder, FindsNothingForHalfACharacter) {
  const NameGrid grid = gridOf({{"😀"}, {"?"}, {"\uFFFD"}});
  EXPECT_EQ(found(grid, QString(QChar(0xD83D))), Rows{});
  EXPECT_EQ(found(grid, QString(QChar(0xDE00)) + QLatin1Char('x')), Rows{});
}

TEST(DisplayOrder, FollowsAPhotoInTheFilterAndANoteInTheSearch) {
  NameGrid grid = gridOf({{"a"}, {"b"}});
  DisplayOrder order;
  const DisplayRule remaining{{}, CaptureFilter::Remaining};
  order.rebuild(grid, remaining);
  grid.setCaptured(1, 0);
  order.rebuild(grid, remaining);
  EXPECT_EQ(order.filteredRows(), Rows{1});
  const DisplayRule late{QStringLiteral("late")};
  order.rebuild(grid, late);
  grid.setBytes(0, Cell::Note, "LATE again");
  order.rebuild(grid, late);
  EXPECT_EQ(order.filteredRows(), Rows{0});
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
