// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "core/list/GridFile.h"
#include "core/list/GridText.h"

namespace ambrel {
namespace {

using Rows = std::vector<Row>;

class GridFileTest : public ::testing::Test {
 protected:
  QString file(const QByteArray& bytes) const {
    QFile out(_dir.filePath(QStringLiteral("list.csv")));
    EXPECT_TRUE(out.open(QIODevice::WriteOnly));
    EXPECT_EQ(out.write(bytes), bytes.size());
    return out.fileName();
  }
  QTemporaryDir _dir;
};

TEST_F(GridFileTest, ReadsRowsOfExactlyFourCells) {
  EXPECT_EQ(
      readGrid(file("whatever,stands,here\nAnna,note,3,1\nBen\nCara,,,\nDan,a,2,1,5,6\n")),
      (Rows{
          {"Anna", "note", "3", "1"}, {"Ben", "", "0", ""}, {"Cara", "", "0", ""}, {"Dan", "a", "2", "1"}}));
}

TEST_F(GridFileTest, ReadsTheExportFormWithoutCountsAndMarkers) {
  EXPECT_EQ(readGrid(file("File Name,Notes\nAnna,note")), (Rows{{"Anna", "note", "0", ""}}));
}

TEST_F(GridFileTest, DropsRowsWithoutAName) {
  EXPECT_EQ(readGrid(file("h\n\n,note,3,1\n\"\",x\nAnna\n\n")), (Rows{{"Anna", "", "0", ""}}));
  EXPECT_EQ(readFirstColumn(file("h\n\n,note\n\"\",x\nAnna\n\n")), (Rows{{"Anna", ""}}));
}

TEST_F(GridFileTest, ReadsCrLfLikeLf) {
  EXPECT_EQ(readGrid(file("h\r\nAnna,note\r\nBen,\"x\r\"\r\n")),
            readGrid(file("h\nAnna,note\nBen,\"x\r\"\n")));
}

TEST_F(GridFileTest, LosesACarriageReturnThatEndsAnOpenQuotedCell) {
  EXPECT_EQ(readFirstColumn(file("h\n\"Anna\r\nBen\"\r\n")), (Rows{{"Anna", ""}, {"Ben", ""}}));
}

TEST_F(GridFileTest, LosesACarriageReturnAtTheEndOfAnUnterminatedLine) {
  EXPECT_EQ(readGrid(file("h\nAnna,note\r")), (Rows{{"Anna", "note", "0", ""}}));
}

TEST_F(GridFileTest, ImportsTheFirstColumnExactlyAsItStands) {
  EXPECT_EQ(readFirstColumn(file("Name,Class\n Anna ,3a\n\"Smith, Ben\",3b,x\nAnna\n")),
            (Rows{{" Anna ", ""}, {"Smith, Ben", ""}, {"Anna", ""}}));
}

TEST_F(GridFileTest, SkipsTheFirstLineWhateverItHolds) {
  EXPECT_EQ(readFirstColumn(file("\xef\xbb\xbf"
                                 "Anna\nBen")),
            (Rows{{"Ben", ""}}));
  EXPECT_EQ(readFirstColumn(file("\nBen")), (Rows{{"Ben", ""}}));
}

TEST_F(GridFileTest, GivesNoRowsForAFileOfAHeaderOrOfNothing) {
  EXPECT_EQ(readFirstColumn(file("Name\n")), Rows{});
  EXPECT_EQ(readFirstColumn(file("Name")), Rows{});
  EXPECT_EQ(readFirstColumn(file("")), Rows{});
  EXPECT_EQ(readGrid(file("")), Rows{});
}

TEST_F(GridFileTest, GivesNoneForAFileThatIsMissingOrAFolder) {
  EXPECT_EQ(readFirstColumn(_dir.filePath(QStringLiteral("missing.csv"))), std::nullopt);
  EXPECT_EQ(readFirstColumn(_dir.path()), std::nullopt);
  EXPECT_EQ(readGrid(_dir.path()), std::nullopt);
}

// Permissions mean nothing to root, who becomes nobody meanwhile.
class WithoutPrivileges {
 public:
  WithoutPrivileges() { EXPECT_EQ(seteuid(_own == 0 ? kNobody : _own), 0); }
  ~WithoutPrivileges() { EXPECT_EQ(seteuid(_own), 0); }

 private:
  static constexpr uid_t kNobody = 65534;
  const uid_t _own = geteuid();
};

TEST_F(GridFileTest, GivesNoneForAFileThatMayNotBeRead) {
  const QByteArray path = file("h\nAnna").toLocal8Bit();
  ASSERT_EQ(chmod(_dir.path().toLocal8Bit().constData(), 0755), 0);
  ASSERT_EQ(chmod(path.constData(), 0644), 0);
  {
    const WithoutPrivileges meanwhile;
    ASSERT_EQ(readFirstColumn(QString::fromLocal8Bit(path)), (Rows{{"Anna", ""}}));
  }
  ASSERT_EQ(chmod(path.constData(), 0), 0);
  const WithoutPrivileges meanwhile;
  EXPECT_EQ(readFirstColumn(QString::fromLocal8Bit(path)), std::nullopt);
  EXPECT_EQ(readGrid(QString::fromLocal8Bit(path)), std::nullopt);
}

// /proc/self/mem opens, and its first read fails.
TEST_F(GridFileTest, GivesNoneWhenReadingFailsHalfWay) {
  const QString failing = QStringLiteral("/proc/self/mem");
  if (!QFile::exists(failing)) GTEST_SKIP() << "no file here whose reading fails";
  EXPECT_EQ(readFirstColumn(failing), std::nullopt);
}

TEST_F(GridFileTest, TakesBinaryBytesForNamesWithoutHarm) {
  std::mt19937 random(7);
  QByteArray bytes(200'000, '\0');
  for (char& byte : bytes)
    byte = static_cast<char>(random() % 256);
  const std::optional<Rows> rows = readFirstColumn(file(bytes));
  ASSERT_TRUE(rows);
  for (const Row& row : *rows)
    EXPECT_FALSE(row.front().empty());
}

TEST_F(GridFileTest, TakesNulBytesForPartOfAName) {
  EXPECT_EQ(readFirstColumn(file(QByteArray("h\nA\0b,x\n\0\n", 10))),
            (Rows{{std::string("A\0b", 3), ""}, {std::string("\0", 1), ""}}));
}

TEST_F(GridFileTest, TakesUtf16ForWhatItsBytesAre) {
  const std::u16string text = u"h\nAnna\n";
  const QByteArray bytes(reinterpret_cast<const char*>(text.data()), static_cast<qsizetype>(text.size() * 2));
  EXPECT_EQ(readFirstColumn(file(bytes)),
            (Rows{{std::string("\0A\0n\0n\0a\0", 9), ""}, {std::string("\0", 1), ""}}));
}

TEST_F(GridFileTest, ReadsALineOf100MegabytesWithoutALineEnd) {
  QByteArray bytes("h\n");
  bytes.resize(100'000'000, 'x');
  const std::optional<Rows> rows = readFirstColumn(file(bytes));
  ASSERT_TRUE(rows);
  ASSERT_EQ(rows->size(), 1u);
  EXPECT_EQ(rows->front().front(), bytes.mid(2).toStdString());
  EXPECT_EQ(readFirstColumn(file(bytes.mid(2))), Rows{});
}

TEST_F(GridFileTest, PutsLinesTogetherThatSpanTheBlocksOfReading) {
  Rows expected;
  QByteArray bytes("header");
  for (int i = 0; i < 60'000; ++i) {
    expected.push_back({"Person number " + std::to_string(i), ""});
    bytes += "\r\n" + QByteArray::fromStdString(expected.back().front()) + ",ignored";
  }
  EXPECT_EQ(readFirstColumn(file(bytes)), expected);
}

TEST_F(GridFileTest, ReadsBackEveryListWithoutLineBreaksThatItWrites) {
  std::mt19937 random(11);
  const std::string_view bytes = "ab\",\" \t\xc3\xa4\xff";
  for (int round = 0; round < 200; ++round) {
    Rows rows(random() % 20);
    for (Row& row : rows) {
      row.resize(4);
      for (std::string& cell : row)
        for (std::size_t length = 1 + random() % 30; length > 0; --length)
          cell.push_back(bytes[random() % bytes.size()]);
    }
    ASSERT_EQ(readGrid(file(writeGrid(rows, GridColumns::All))), rows) << "round " << round;
  }
}

}  // namespace
}  // namespace ambrel
