// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/NameCells.h"

namespace ambrel::ui {
namespace {

const Palette kPalette;

NameCellLook name(const NameCellState& state) {
  return nameCellLook(NameColumn::Name, state, kPalette);
}

NameGrid gridOf(std::vector<Row> rows) {
  NameGrid grid;
  grid.replaceAll(std::move(rows));
  return grid;
}

TEST(NameCells, ANameWithoutPhotosIsPlainInThePrimaryTextColour) {
  EXPECT_EQ(name({}), (NameCellLook{kPalette.primaryTextColor(), 13, QFont::Normal}));
}

TEST(NameCells, ANameWithPhotosIsBoldAndGreen) {
  EXPECT_EQ(name({.captured = 4}), (NameCellLook{kPalette.greenColor(), 13, QFont::Bold}));
}

TEST(NameCells, ADuplicatedNameIsRedAndNotBoldWhateverItsCount) {
  for (const std::int64_t captured : {0, 4})
    EXPECT_EQ(name({.duplicate = true, .captured = captured}),
              (NameCellLook{kPalette.redColor(), 13, QFont::Normal}));
}

TEST(NameCells, ASelectedNameIsWhiteAndBoldWhenItHasPhotos) {
  EXPECT_EQ(name({.selected = true, .duplicate = true}), (NameCellLook{Qt::white, 13, QFont::Normal}));
  EXPECT_EQ(name({.selected = true, .captured = 1}), (NameCellLook{Qt::white, 13, QFont::Bold}));
}

TEST(NameCells, CountsAreBoldCentredInTheBrandColourOrWhiteWhenSelected) {
  const auto count = [](bool selected) {
    return nameCellLook(NameColumn::Count, {.selected = selected}, kPalette);
  };
  EXPECT_EQ(count(false), (NameCellLook{kPalette.brandColor(), 12, QFont::Bold, Qt::AlignCenter}));
  EXPECT_EQ(count(true), (NameCellLook{Qt::white, 12, QFont::Bold, Qt::AlignCenter}));
}

TEST(NameCells, MarkersAreCentredAndTheSameWhenSelected) {
  const NameCellLook plain = nameCellLook(NameColumn::Marker, {}, kPalette);
  EXPECT_EQ(plain.alignment, Qt::AlignCenter);
  EXPECT_EQ(nameCellLook(NameColumn::Marker, {.selected = true}, kPalette), plain);
}

TEST(NameCells, AMarkedAndNotedRowShowsFlagThenNote) {
  const NameGrid grid =
      gridOf({{"Anna", "left early", "0", "1"}, {"Ben", "late"}, {"Cara", "", "", "1"}, {}});
  EXPECT_EQ(nameCellText(grid, 0, NameColumn::Marker), QStringLiteral("🚩📝"));
  EXPECT_EQ(nameCellText(grid, 1, NameColumn::Marker), QStringLiteral("📝"));
  EXPECT_EQ(nameCellText(grid, 2, NameColumn::Marker), QStringLiteral("🚩"));
  EXPECT_EQ(nameCellText(grid, 3, NameColumn::Marker), QString());
}

TEST(NameCells, CountsShowFromOneUpwards) {
  const NameGrid grid = gridOf({{"Anna", "", "0"}, {"Ben", "", "4"}, {"Cara"}});
  EXPECT_EQ(nameCellText(grid, 0, NameColumn::Count), QString());
  EXPECT_EQ(nameCellText(grid, 1, NameColumn::Count), QStringLiteral("4"));
  EXPECT_EQ(nameCellText(grid, 2, NameColumn::Count), QString());
}

TEST(NameCells, RowsOutOfRangeOrWithoutCellsShowEmptyText) {
  const NameGrid grid = gridOf({{}});
  for (const std::int64_t row : {-1, 0, 1}) {
    EXPECT_EQ(nameCellText(grid, row, NameColumn::Name), QString());
    EXPECT_EQ(nameCellToolTip(grid, row, NameColumn::Name), QString());
  }
}

TEST(NameCells, TheNoteIsTheTooltipOfNameAndMarkerOnly) {
  const NameGrid grid = gridOf({{"Anna", "left early", "2"}, {"Ben", ""}});
  EXPECT_EQ(nameCellToolTip(grid, 0, NameColumn::Name), QStringLiteral("📝 left early"));
  EXPECT_EQ(nameCellToolTip(grid, 0, NameColumn::Marker), QStringLiteral("📝 left early"));
  EXPECT_EQ(nameCellToolTip(grid, 0, NameColumn::Count), QString());
  EXPECT_EQ(nameCellToolTip(grid, 1, NameColumn::Name), QString());
}

TEST(NameCells, EveryColumnHasATitleAndATooltip) {
  EXPECT_EQ(nameColumnHeader(NameColumn::Marker), QStringLiteral("🚩"));
  EXPECT_EQ(nameColumnHeader(NameColumn::Count), QStringLiteral("Count"));
  for (const NameColumn column : {NameColumn::Marker, NameColumn::Name, NameColumn::Count})
    EXPECT_FALSE(nameColumnToolTip(column).isEmpty());
}

}  // namespace
}  // namespace ambrel::ui
