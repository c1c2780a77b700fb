// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/list/SearchText.h"

namespace ambrel {
namespace {

using Rows = std::vector<qint64>;

class SearchTextTest : public ::testing::Test {
 protected:
  Rows rowsWith(const char* needle) {
    text.update(grid);
    Rows rows = {99};
    text.findRows(QString::fromUtf8(needle), rows);
    return rows;
  }
  NameGrid grid;
  SearchText text;
};

TEST_F(SearchTextTest, FindsNothingInAnEmptyList) {
  EXPECT_EQ(rowsWith("a"), Rows{});
}

TEST_F(SearchTextTest, TellsEachRowOnceInListOrder) {
  grid.replaceAll({{"Banana", "banana"}, {"Cherry"}, {"ANA"}, {}, {"x", "ana"}});
  EXPECT_EQ(rowsWith("ana"), (Rows{0, 2, 4}));
}

TEST_F(SearchTextTest, JoinsNameAndNoteWithOneBlankWhereThereIsANote) {
  grid.replaceAll({{"Anna"}, {"Anna", ""}, {"Anna", "Front"}, {"", "Front"}});
  EXPECT_EQ(rowsWith("anna "), (Rows{1, 2}));
  EXPECT_EQ(rowsWith("a f"), Rows{2});
  EXPECT_EQ(rowsWith(" front"), (Rows{2, 3}));
}

TEST_F(SearchTextTest, TakesACellThatIsNotUtf8ForEmpty) {
  grid.replaceAll({{"Zo\xeb", "Front"}, {"Anna", "\xeb"}, {"\xff"}});
  EXPECT_EQ(rowsWith(" front"), Rows{0});
  EXPECT_EQ(rowsWith("zo"), Rows{});
  EXPECT_EQ(rowsWith("anna "), Rows{1});
}

TEST_F(SearchTextTest, FollowsEveryChangeOfTheList) {
  grid.replaceAll({{"Anna"}, {"Ben"}, {"Cara"}});
  EXPECT_EQ(rowsWith("an"), Rows{0});
  grid.setBytes(1, Cell::Name, "Johanna with a far longer name");
  EXPECT_EQ(rowsWith("an"), (Rows{0, 1}));
  grid.setBytes(2, Cell::Note, "Anna's sister");
  grid.setBytes(0, Cell::Name, "");
  EXPECT_EQ(rowsWith("an"), (Rows{1, 2}));
  grid.remove(0);
  EXPECT_EQ(rowsWith("an"), (Rows{0, 1}));
  grid.insert(0, {"Jan"});
  EXPECT_EQ(rowsWith("an"), (Rows{0, 1, 2}));
  grid.clear();
  EXPECT_EQ(rowsWith("an"), Rows{});
}

TEST_F(SearchTextTest, FindsRowsFarApart) {
  std::vector<Row> rows(5000, Row{"Person", "note"});
  rows[0] = {"Anna"};
  rows[2500] = {"Anna"};
  rows[4999] = {"Anna"};
  grid.replaceAll(rows);
  EXPECT_EQ(rowsWith("anna"), (Rows{0, 2500, 4999}));
}

}  // namespace
}  // namespace ambrel
