// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/PosixFiles.h"

using namespace ambrel;
using Outcome = Files::MoveOutcome;

namespace {

class PosixFilesTest : public ::testing::Test {
 protected:
  QString at(const QString& name) const { return _folder.filePath(name); }

  void write(const QString& name, const QByteArray& bytes) {
    QFile file(at(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  QByteArray read(const QString& name) {
    QFile file(at(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }

  // Everything in the folder, hidden files included.
  QStringList names() const {
    return QDir(_folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
  }

  QTemporaryDir _folder;
  PosixFiles files;
};

}  // namespace

TEST_F(PosixFilesTest, ReplacesAFileWholeAndLeavesNothingElse) {
  write("list", "old and longer");
  ASSERT_TRUE(files.replaceWhole(at("list"), "new"));
  EXPECT_EQ(read("list"), "new");
  EXPECT_EQ(names(), QStringList{"list"});
}

TEST_F(PosixFilesTest, MakesAFileThatDidNotExist) {
  ASSERT_TRUE(files.replaceWhole(at("list"), "new"));
  ASSERT_TRUE(files.replaceWholeUnflushed(at("other"), ""));
  EXPECT_EQ(read("list"), "new");
  EXPECT_EQ(read("other"), "");
  EXPECT_TRUE(files.flush(at("other")));
}

TEST_F(PosixFilesTest, MovesAFileUnderAFreeName) {
  write("a", "photo");
  EXPECT_TRUE(files.moveWithoutOverwriting(at("a"), at("b")).ok());
  EXPECT_EQ(read("b"), "photo");
  EXPECT_EQ(names(), QStringList{"b"});
}

TEST_F(PosixFilesTest, NeverMovesOverAFile) {
  write("a", "photo");
  write("b", "other");
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("b")).outcome, Outcome::Taken);
  EXPECT_EQ(read("a"), "photo");
  EXPECT_EQ(read("b"), "other");
}

TEST_F(PosixFilesTest, CopiesEveryByteAndKeepsTheSource) {
  const QByteArray bytes(3'000'001, 'x');
  write("a", bytes);
  EXPECT_TRUE(files.copyWhole(at("a"), at("b")).ok());
  EXPECT_EQ(read("a"), bytes);
  EXPECT_EQ(read("b"), bytes);
  EXPECT_EQ(names(), (QStringList{"a", "b"}));
}

TEST_F(PosixFilesTest, NeverCopiesOverAFile) {
  write("a", "photo");
  write("b", "other");
  EXPECT_EQ(files.copyWhole(at("a"), at("b")).outcome, Outcome::Taken);
  EXPECT_EQ(read("b"), "other");
  EXPECT_EQ(names(), (QStringList{"a", "b"}));
}
