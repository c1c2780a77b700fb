// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/list/GridReadAhead.h"

namespace ambrel {
namespace {

using Rows = std::vector<Row>;

class GridReadAheadTest : public testing::Test {
 protected:
  void write(const QByteArray& lines) const {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("File Name\n" + lines);
  }
  QTemporaryDir folder;
  QString path = folder.filePath(QStringLiteral("grid.csv"));
  GridReadAhead ahead;
};

TEST_F(GridReadAheadTest, GivesTheRowsAndTheirDuplicatesOnce) {
  write("Anna\nBen\nANNA");
  ahead.start(path);
  const std::optional<GridReadAhead::List> list = ahead.take(path);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->rows, (Rows{{"Anna", "", "0", ""}, {"Ben", "", "0", ""}, {"ANNA", "", "0", ""}}));
  EXPECT_EQ(list->duplicates.lowerCased(), QSet<QString>{QStringLiteral("anna")});
  EXPECT_FALSE(ahead.take(path));
}

TEST_F(GridReadAheadTest, GivesNoneWhereNothingWasBegunOrNothingCanBeRead) {
  EXPECT_FALSE(ahead.take(path));
  ahead.start(path);
  EXPECT_FALSE(ahead.take(path));
  ahead.start(folder.path());
  EXPECT_FALSE(ahead.take(folder.path()));
}

TEST_F(GridReadAheadTest, ForgetsWhatItReads) {
  write("Anna");
  ahead.start(path);
  ahead.forget();
  EXPECT_FALSE(ahead.take(path));
}

// Whether the thread was faster than the change or not.
TEST_F(GridReadAheadTest, NeverGivesRowsThatAreNoLongerInTheFile) {
  for (int i = 0; i < 50; ++i) {
    write("Anna");
    ahead.start(path);
    ASSERT_TRUE(i % 2 == 1 || QFile::remove(path));
    write("Benno");
    const std::optional<GridReadAhead::List> list = ahead.take(path);
    EXPECT_TRUE(!list || list->rows == (Rows{{"Benno", "", "0", ""}}));
  }
}

}  // namespace
}  // namespace ambrel
