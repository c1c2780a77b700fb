// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

#include "core/capture/NumberedFolder.h"

using namespace ambrel;

namespace {

class NumberedFolderTest : public ::testing::Test {
 protected:
  NumberedFolderTest() { folder.create(); }

  void take(qint64 number, const QByteArray& bytes = "photo") {
    QFile file(folder.pathOfNumber(number));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  QTemporaryDir target;
  NumberedFolder folder{target.path(), "Bob_FR", "JPG"};
};

}  // namespace

TEST_F(NumberedFolderTest, NamesPhotosAfterTheFolderTheyAreIn) {
  EXPECT_EQ(folder.pathOfNumber(7), target.path() + "/Bob_FR/Bob_FR_0007.JPG");
}

TEST_F(NumberedFolderTest, MakesItsFolderAndLeavesOneThatExists) {
  take(1);
  folder.create();
  EXPECT_TRUE(QFile::exists(folder.pathOfNumber(1)));
}

TEST_F(NumberedFolderTest, MakesTheFoldersThatASeparatorInTheNameStandsFor) {
  const NumberedFolder deeper(target.path() + "/new", "Jane/A", "JPG");
  deeper.create();
  EXPECT_TRUE(QDir(target.path() + "/new/Jane/A/Jane").exists());
  EXPECT_EQ(deeper.pathOfNumber(1), target.path() + "/new/Jane/A/Jane/A_0001.JPG");
}

TEST_F(NumberedFolderTest, TheFirstFreeNumberIsLookedForUpwardsOnly) {
  take(5);
  take(6);
  take(8);
  EXPECT_EQ(folder.firstFreeFrom(1), 1);
  EXPECT_EQ(folder.firstFreeFrom(5), 7);
  EXPECT_EQ(folder.firstFreeFrom(8), 9);
}

TEST_F(NumberedFolderTest, FoldersAndDanglingLinksTakeTheirNumbers) {
  ASSERT_TRUE(QDir().mkdir(folder.pathOfNumber(1)));
  ASSERT_TRUE(QFile::link("/nowhere", folder.pathOfNumber(2)));
  EXPECT_EQ(folder.firstFreeFrom(1), 3);
}

TEST_F(NumberedFolderTest, AfterTheLargestNumberThereIsNone) {
  EXPECT_EQ(folder.firstFreeFrom(std::numeric_limits<qint64>::max()), std::nullopt);
}

TEST_F(NumberedFolderTest, OnlyARegularFileHasASize) {
  take(1, "12345");
  take(2, "");
  ASSERT_EQ(::mkfifo(QFile::encodeName(folder.pathOfNumber(3)).constData(), 0600), 0);
  ASSERT_TRUE(QFile::link(folder.pathOfNumber(1), folder.pathOfNumber(4)));
  EXPECT_EQ(fileSize(folder.pathOfNumber(1)), 5U);
  EXPECT_EQ(fileSize(folder.pathOfNumber(2)), 0U);
  EXPECT_EQ(fileSize(folder.pathOfNumber(3)), std::nullopt);
  EXPECT_EQ(fileSize(folder.pathOfNumber(4)), 5U);
  EXPECT_EQ(fileSize(folder.pathOfNumber(5)), std::nullopt);
  EXPECT_EQ(fileSize(target.path()), std::nullopt);
}

TEST_F(NumberedFolderTest, APathIsNeverCutAtANul) {
  take(1);
  const QString path = folder.pathOfNumber(1);
  EXPECT_TRUE(fileExists(path));
  EXPECT_FALSE(fileExists(path + QChar(QChar::Null)));
  EXPECT_EQ(fileSize(path + QChar(QChar::Null) + "x"), std::nullopt);
  const NumberedFolder cut(target.path(), QString("New") + QChar(QChar::Null) + "x", "JPG");
  cut.create();
  EXPECT_FALSE(QDir(target.path() + "/New").exists());
}
