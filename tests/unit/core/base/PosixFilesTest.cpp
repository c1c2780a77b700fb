// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <fcntl.h>
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

TEST_F(PosixFilesTest, CopiesToANewNameWithTheTimeOfTheSource) {
  write("a", "photo");
  const timespec times[2] = {{1'700'000'000, 0}, {1'600'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(at("a")).constData(), times, 0), 0);
  const Result<Files::FlushOfCopy> copied = files.copyToNew(at("a"), at("b"));
  ASSERT_TRUE(copied);
  EXPECT_TRUE(copied.value()());
  EXPECT_EQ(read("b"), "photo");
  EXPECT_EQ(QFileInfo(at("b")).lastModified().toSecsSinceEpoch(), 1'600'000'000);
}

TEST_F(PosixFilesTest, NeverCopiesToANameThatIsTakenNotEvenByADanglingLink) {
  write("a", "photo");
  write("b", "other");
  ASSERT_TRUE(QFile::link(at("outside"), at("link")));
  EXPECT_EQ(files.copyToNew(at("a"), at("b")).error(), "File exists");
  EXPECT_EQ(files.copyToNew(at("a"), at("link")).error(), "File exists");
  EXPECT_EQ(read("b"), "other");
  EXPECT_FALSE(QFile::exists(at("outside")));
}

TEST_F(PosixFilesTest, CopiesNothingButRegularFilesToANewName) {
  ASSERT_EQ(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0600), 0);
  EXPECT_EQ(files.copyToNew(at("pipe"), at("b")).error(), "Not a regular file");
  EXPECT_EQ(files.copyToNew(_folder.path(), at("b")).error(), "Not a regular file");
  EXPECT_EQ(names(), QStringList{"pipe"});
}

TEST_F(PosixFilesTest, MovesOverAFileOrALinkButNeverOverAFolder) {
  write("a", "photo");
  write("real", "other");
  ASSERT_TRUE(QFile::link(at("real"), at("link")));
  ASSERT_TRUE(files.moveReplacing(at("a"), at("link")));
  EXPECT_EQ(read("link"), "photo");
  EXPECT_EQ(read("real"), "other");
  ASSERT_TRUE(files.moveReplacing(at("link"), at("real")));
  EXPECT_EQ(names(), QStringList{"real"});
  ASSERT_TRUE(QDir(_folder.path()).mkdir("folder"));
  EXPECT_EQ(files.moveReplacing(at("real"), at("folder")).error(), "Is a directory");
}

TEST_F(PosixFilesTest, FlushesAFolderAndNothingElse) {
  write("a", "photo");
  EXPECT_TRUE(files.flushFolder(_folder.path()));
  EXPECT_EQ(files.flushFolder(at("a")).error(), "Not a directory");
  EXPECT_EQ(files.flushFolder(at("missing")).error(), "No such file or directory");
}

// ---- Replacing

TEST_F(PosixFilesTest, ReplacingThroughALinkReplacesTheFileAndKeepsTheLink) {
  ASSERT_TRUE(QDir(_folder.path()).mkdir("elsewhere"));
  write("elsewhere/real", "old");
  ASSERT_TRUE(QFile::link("elsewhere/real", at("second")));
  ASSERT_TRUE(QFile::link("second", at("list")));
  ASSERT_TRUE(files.replaceWhole(at("list"), "new"));
  EXPECT_EQ(read("elsewhere/real"), "new");
  EXPECT_TRUE(QFileInfo(at("list")).isSymLink());
  EXPECT_EQ(names(), (QStringList{"elsewhere", "list", "second"}));
}

TEST_F(PosixFilesTest, ADanglingLinkIsReportedAndKept) {
  ASSERT_TRUE(QFile::link("/no/such/drive/list", at("list")));
  EXPECT_EQ(files.replaceWhole(at("list"), "new").error(), "No such file or directory");
  EXPECT_TRUE(QFileInfo(at("list")).isSymLink());
  EXPECT_EQ(names(), QStringList{"list"});
}

TEST_F(PosixFilesTest, ALinkToItselfIsReported) {
  ASSERT_TRUE(QFile::link("list", at("list")));
  EXPECT_EQ(files.replaceWhole(at("list"), "new").error(), "Too many levels of symbolic links");
}

TEST_F(PosixFilesTest, AFolderIsNeverReplaced) {
  ASSERT_TRUE(QDir(_folder.path()).mkdir("list"));
  EXPECT_EQ(files.replaceWhole(at("list"), "new").error(), "Is a directory");
  EXPECT_EQ(names(), QStringList{"list"});
}

TEST_F(PosixFilesTest, AMissingFolderIsReported) {
  EXPECT_EQ(files.replaceWhole(at("missing/list"), "new").error(), "No such file or directory");
  EXPECT_EQ(files.replaceWholeUnflushed(at("missing/list"), "new").error(), "No such file or directory");
}

TEST_F(PosixFilesTest, APrivateFileStaysPrivate) {
  write("list", "old");
  ASSERT_EQ(::chmod(QFile::encodeName(at("list")).constData(), 0600), 0);
  ASSERT_TRUE(files.replaceWhole(at("list"), "new"));
  struct stat status = {};
  ASSERT_EQ(::stat(QFile::encodeName(at("list")).constData(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(PosixFilesTest, ANameAsLongAsTheFileSystemAllowsIsReplacedAndCopied) {
  const QString longest(255, 'x');
  ASSERT_TRUE(files.replaceWhole(at(longest), "new"));
  ASSERT_TRUE(files.replaceWhole(at(longest), "newer"));
  EXPECT_TRUE(files.copyWhole(at(longest), at(QString(255, 'y'))).ok());
  EXPECT_EQ(read(QString(255, 'y')), "newer");
}

TEST_F(PosixFilesTest, TakesEveryBytesOfANameAsItIs) {
  for (const QString name : {"José", "Jose\u0301", "a b\n\tc", "-rf", "\u202Eevil", "🙂"}) {
    ASSERT_TRUE(files.replaceWhole(at(name), "new")) << name.toStdString();
    EXPECT_EQ(read(name), "new");
  }
  EXPECT_EQ(names().size(), 6);
}

TEST_F(PosixFilesTest, APathWithANulOrWithoutAnythingIsRefused) {
  write("a", "photo");
  const QString cut = at("a") + QChar(QChar::Null) + "b";
  EXPECT_EQ(files.replaceWhole(cut, "new").error(), "Invalid argument");
  EXPECT_EQ(files.moveWithoutOverwriting(cut, at("c")).error(), "Invalid argument");
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("c") + QChar(QChar::Null)).error(), "Invalid argument");
  EXPECT_EQ(files.copyWhole(cut, at("c")).error(), "Invalid argument");
  EXPECT_EQ(files.remove(cut).error(), "Invalid argument");
  EXPECT_EQ(files.flush(cut).error(), "Invalid argument");
  EXPECT_EQ(files.volumeSpace(cut).total, 0U);
  EXPECT_EQ(files.replaceWhole("", "new").error(), "No such file or directory");
  EXPECT_EQ(read("a"), "photo");
  EXPECT_EQ(names(), QStringList{"a"});
}

TEST_F(PosixFilesTest, FlushingWhatIsMissingIsReported) {
  EXPECT_EQ(files.flush(at("list")).error(), "No such file or directory");
}

// ---- Moving

TEST_F(PosixFilesTest, MovesAFolderUnderAFreeNameAndNeverOntoAnother) {
  QDir folder(_folder.path());
  ASSERT_TRUE(folder.mkdir("a") && folder.mkdir("empty") && folder.mkdir("full"));
  write("a/photo", "photo");
  write("full/other", "other");
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("empty")).outcome, Outcome::Taken);
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("full")).outcome, Outcome::Taken);
  EXPECT_TRUE(files.moveWithoutOverwriting(at("a"), at("b")).ok());
  EXPECT_EQ(read("b/photo"), "photo");
  EXPECT_EQ(names(), (QStringList{"b", "empty", "full"}));
}

TEST_F(PosixFilesTest, ALinkAlsoTakesAName) {
  write("a", "photo");
  ASSERT_TRUE(QFile::link("/nowhere", at("b")));
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("b")).outcome, Outcome::Taken);
  EXPECT_EQ(files.copyWhole(at("a"), at("b")).outcome, Outcome::Taken);
  EXPECT_EQ(read("a"), "photo");
}

TEST_F(PosixFilesTest, MovingToItsOwnNameFindsItTaken) {
  write("a", "photo");
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("a")).outcome, Outcome::Taken);
  EXPECT_EQ(read("a"), "photo");
}

TEST_F(PosixFilesTest, MovingWhatIsMissingFails) {
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("b")).outcome, Outcome::Failed);
  EXPECT_EQ(files.moveWithoutOverwriting(at("a"), at("b")).error(), "No such file or directory");
}

TEST_F(PosixFilesTest, AcrossVolumesAMoveFailsAndACopyArrives) {
  const QTemporaryDir other(QStringLiteral("/dev/shm/ambrel-XXXXXX"));
  struct stat here = {};
  struct stat there = {};
  ASSERT_EQ(::stat(QFile::encodeName(_folder.path()).constData(), &here), 0);
  const bool exists = ::stat(QFile::encodeName(other.path()).constData(), &there) == 0;
  if (!exists || here.st_dev == there.st_dev) GTEST_SKIP() << "this machine has no second volume to write to";
  write("a", "photo");
  const Files::MoveResult moved = files.moveWithoutOverwriting(at("a"), other.filePath("b"));
  EXPECT_EQ(moved.outcome, Outcome::Failed);
  EXPECT_EQ(moved.message, "Invalid cross-device link");
  EXPECT_TRUE(files.copyWhole(at("a"), other.filePath("b")).ok());
  QFile copy(other.filePath("b"));
  ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
  EXPECT_EQ(copy.readAll(), "photo");
  EXPECT_EQ(read("a"), "photo");
}

// ---- Copying and the rest

TEST_F(PosixFilesTest, CopiesAnEmptyFile) {
  write("a", "");
  EXPECT_TRUE(files.copyWhole(at("a"), at("b")).ok());
  EXPECT_EQ(read("b"), "");
}

TEST_F(PosixFilesTest, OnlyARegularFileIsCopied) {
  ASSERT_TRUE(QDir(_folder.path()).mkdir("folder"));
  ASSERT_EQ(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0600), 0);
  EXPECT_EQ(files.copyWhole(at("folder"), at("b")).error(), "Not a regular file");
  EXPECT_EQ(files.copyWhole(at("pipe"), at("b")).error(), "Not a regular file");
  EXPECT_EQ(files.copyWhole(at("missing"), at("b")).error(), "No such file or directory");
  EXPECT_EQ(names(), (QStringList{"folder", "pipe"}));
}

TEST_F(PosixFilesTest, RemovesAFileAndReportsWhatCannotBeRemoved) {
  write("a", "photo");
  EXPECT_TRUE(files.remove(at("a")));
  EXPECT_EQ(files.remove(at("a")).error(), "No such file or directory");
}

TEST_F(PosixFilesTest, RemovesNoFolder) {
  ASSERT_TRUE(QDir(_folder.path()).mkdir("folder"));
  EXPECT_FALSE(files.remove(at("folder")));
  EXPECT_EQ(names(), QStringList{"folder"});
}

TEST_F(PosixFilesTest, TellsFreeAndTotalBytesOfAVolume) {
  const VolumeSpace space = files.volumeSpace(_folder.path());
  EXPECT_GT(space.free, 0U);
  EXPECT_GE(space.total, space.free);
}
