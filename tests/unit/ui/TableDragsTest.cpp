// SPDX-License-Identifier: Apache-2.0
#include <QUrl>
#include <gtest/gtest.h>
#include <memory>

#include "ui/TableDrags.h"

namespace ambrel::ui {
namespace {

constexpr int kRowHeight = 36;

TEST(TableDrags, TheMiddleOfARowIsTheRowAndItsEdgesLieBetweenRows) {
  struct Case {
    int y;
    DropPlace place;
  };
  const Case cases[] = {
      {-5, {false, 0}}, {0, {false, 0}},  {8, {false, 0}},   {9, {true, 0}},    {26, {true, 0}},
      {27, {false, 1}}, {36, {false, 1}}, {44, {false, 1}},  {45, {true, 1}},   {62, {true, 1}},
      {63, {false, 2}}, {72, {false, 2}}, {107, {false, 3}}, {108, {false, 3}}, {5000, {false, 3}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(dropPlaceAt(c.y, kRowHeight, 3), c.place) << c.y;
}

TEST(TableDrags, AnEmptyTableHasOnePlace) {
  EXPECT_EQ(dropPlaceAt(50, kRowHeight, 0), (DropPlace{false, 0}));
}

TEST(TableDrags, ARowTravelsAsItsNumberInDecimalDigits) {
  const std::unique_ptr<QMimeData> data(rowPayload(41));
  EXPECT_EQ(data->data(QStringLiteral("com.ambrel.tether.row-reorder")), "41");
  const TableDrop drop = tableDrop(*data, {true, 7});
  EXPECT_EQ(drop.draggedRow, 41);
  EXPECT_TRUE(drop.ontoRow);
  EXPECT_EQ(drop.displayRow, 7);
  EXPECT_TRUE(drop.paths.isEmpty());
}

TEST(TableDrags, ANumberThatCannotBeReadIsNoRow) {
  QMimeData data;
  data.setData(QStringLiteral("com.ambrel.tether.row-reorder"), "first");
  EXPECT_EQ(tableDrop(data, {}).draggedRow, -1);
}

TEST(TableDrags, FilesTravelAsTheirPathsAndLinksToOtherMachinesDoNot) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a b.csv")),
                QUrl(QStringLiteral("https://example.org/c.csv")),
                QUrl::fromLocalFile(QStringLiteral("/tmp/d.png"))});
  const TableDrop drop = tableDrop(data, {});
  EXPECT_FALSE(drop.draggedRow);
  EXPECT_EQ(drop.paths, QStringList({QStringLiteral("/tmp/a b.csv"), QStringLiteral("/tmp/d.png")}));
}

}  // namespace
}  // namespace ambrel::ui
