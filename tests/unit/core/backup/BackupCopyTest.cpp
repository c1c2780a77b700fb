// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/backup/BackupCopy.h"
#include "core/base/PosixFiles.h"
#include "support/BrokenFiles.h"
#include "support/Printing.h"

using namespace ambrel;
using Kind = BackupOutcome::Kind;
using Names = BackupOutcome::Names;
using Operation = BrokenFiles::Operation;

namespace {

const BackupOutcome kDone = {Kind::Done};
const BackupOutcome kOffline = {Kind::Failed};
const BackupOutcome kIncomplete = {Kind::Failed, "incomplete copy (connection dropped)"};

class BackupCopyTest : public ::testing::Test {
 protected:
  BackupCopyTest() {
    QDir().mkpath(at("Shots/Ann"));
    QDir().mkpath(at("Copies"));
    write("Shots/Ann/Ann_0001.JPG", "photo");
  }
  QString at(const QString& name) const { return folder.filePath(name); }
  void write(const QString& name, const QByteArray& bytes) const {
    QFile file(at(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  QByteArray read(const QString& name) const {
    QFile file(at(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  QStringList namesIn(const QString& name) const {
    return QDir(at(name)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                    QDir::Name);
  }
  BackupOutcome copy(const QString& source = "Shots/Ann/Ann_0001.JPG") {
    return copyToBackup(files, ahead,
                        {.source = at(source), .targetDir = at("Shots"), .backupDir = at("Copies")});
  }

  QTemporaryDir folder;
  PosixFiles realFiles;
  BrokenFiles files{realFiles};
  CopiesAhead ahead{files, std::make_shared<Gate>()};
  const QString kCopy = "Copies/Ann/Ann_0001.JPG";
  const QString kTemporary = "Copies/Ann/Ann_0001.JPG.ambrel_tmp";
};

}  // namespace

// ---- Where copies go

TEST(BackupDestination, MirrorsTheFoldersBelowTheTargetFolder) {
  EXPECT_EQ(backupDestForSource("/Shots/Ann/Ann_0001.JPG", "/Shots", "/Copies"), "/Copies/Ann/Ann_0001.JPG");
  EXPECT_EQ(backupDestForSource("/Shots///Ann/x.JPG", "/Shots", "/Copies"), "/Copies/Ann/x.JPG");
  EXPECT_EQ(backupDestForSource("/Shots/Ann/x.JPG", "/Shots/", "/Copies/"), "/Copies/Ann/x.JPG");
}

TEST(BackupDestination, ComparesTheTargetFolderCharacterByCharacter) {
  EXPECT_EQ(backupDestForSource("/Shots2/a.jpg", "/Shots", "/Copies"), "/Copies/2/a.jpg");
}

TEST(BackupDestination, IsTheFileNameAloneForAPhotoFromElsewhere) {
  EXPECT_EQ(backupDestForSource("/Elsewhere/Ann/a.jpg", "/Shots", "/Copies"), "/Copies/a.jpg");
  EXPECT_EQ(backupDestForSource("/shots/a.jpg", "/Shots", "/Copies"), "/Copies/a.jpg");
  EXPECT_EQ(backupDestForSource("/Shots/Ann/a.jpg", "", "/Copies"), "/Copies/a.jpg");
}

TEST(BackupDestination, NeverLeadsOutOfTheBackupFolder) {
  EXPECT_EQ(backupDestForSource("/Shots/../.._0001.JPG", "/Shots", "/Copies"), "/Copies/.._0001.JPG");
  EXPECT_EQ(backupDestForSource("/Shots/Ann/../../a.jpg", "/Shots", "/Copies"), "/Copies/a.jpg");
  EXPECT_EQ(backupDestForSource("/Shots/..Ann/a..jpg", "/Shots", "/Copies"), "/Copies/..Ann/a..jpg");
}

TEST(BackupDestination, TheFolderAroundTheTargetFolderHasNoCopy) {
  EXPECT_EQ(backupDestForSource("/Shots/..", "/Shots", "/Copies"), "");
  EXPECT_EQ(backupDestForSource("/Elsewhere/..", "/Shots", "/Copies"), "");
}

// ---- One copy

TEST_F(BackupCopyTest, CopiesAPhotoWithItsFolderAndLeavesNothingElse) {
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read(kCopy), "photo");
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
  EXPECT_EQ(read("Shots/Ann/Ann_0001.JPG"), "photo");
}

TEST_F(BackupCopyTest, KeepsTheTimeAndThePermissionsOfAPhoto) {
  const QByteArray path = QFile::encodeName(at("Shots/Ann/Ann_0001.JPG"));
  const timespec times[2] = {{1'700'000'000, 0}, {1'600'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), times, 0), 0);
  ASSERT_EQ(::chmod(path.constData(), 0640), 0);
  EXPECT_EQ(copy(), kDone);
  struct stat status = {};
  ASSERT_EQ(::stat(QFile::encodeName(at(kCopy)).constData(), &status), 0);
  EXPECT_EQ(status.st_mtime, 1'600'000'000);
  EXPECT_EQ(status.st_mode & 0700, 0600U);
}

TEST_F(BackupCopyTest, GivesUpSilentlyOnAPhotoThatHasVanished) {
  EXPECT_EQ(copy("Shots/Ann/gone.JPG"), BackupOutcome{Kind::SourceGone});
  EXPECT_EQ(copy("Shots/Ann/Ann_0001.JPG/below a file"), BackupOutcome{Kind::SourceGone});
  EXPECT_EQ(namesIn("Copies"), QStringList());
}

TEST_F(BackupCopyTest, GivesUpSilentlyOnWhatIsNoFile) {
  EXPECT_EQ(copy("Shots/Ann"), BackupOutcome{Kind::SourceGone});
  ASSERT_EQ(::mkfifo(QFile::encodeName(at("Shots/pipe.JPG")).constData(), 0600), 0);
  EXPECT_EQ(copy("Shots/pipe.JPG"), BackupOutcome{Kind::SourceGone});
}

TEST_F(BackupCopyTest, FailsOnASourceThatCannotBeLookedUpRatherThanForgettingIt) {
  ASSERT_TRUE(QFile::link("loop.JPG", at("Shots/loop.JPG")));
  EXPECT_EQ(copy("Shots/loop.JPG"), (BackupOutcome{Kind::Failed, "Too many levels of symbolic links"}));
}

TEST_F(BackupCopyTest, FailsWithoutAMessageWhereTheBackupFolderIsGone) {
  ASSERT_TRUE(QDir().rmdir(at("Copies")));
  EXPECT_EQ(copy(), kOffline);
  EXPECT_FALSE(QDir(at("Copies")).exists());
}

TEST_F(BackupCopyTest, FailsWithoutAMessageWhereOnlyTheEmptyMountPointIsLeft) {
  const BackupOutcome outcome = copyToBackup(files, ahead,
                                             {.source = at("Shots/Ann/Ann_0001.JPG"),
                                              .targetDir = at("Shots"),
                                              .backupDir = at("Copies"),
                                              .driveIsThere = [] { return false; }});
  EXPECT_EQ(outcome, kOffline);
  EXPECT_EQ(namesIn("Copies"), QStringList());
}

TEST_F(BackupCopyTest, NeverMakesTheBackupFolderItself) {
  files.callBefore(Operation::Remove, [this](const QString&, const QString&) {
    QDir(at("Copies")).removeRecursively();  // the drive goes away between two steps
  });
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "No such file or directory"}));
  EXPECT_FALSE(QDir(at("Copies")).exists());
}

TEST_F(BackupCopyTest, AFolderThatVanishesAtAnyStepFailsTheCopyAndIsNeverMadeAnew) {
  for (const Operation step : {Operation::Remove, Operation::CopyToNew, Operation::FlushOfCopy,
                               Operation::MoveReplacing, Operation::FlushFolder}) {
    QDir().mkpath(at("Copies"));
    files.callBefore(step,
                     [this](const QString&, const QString&) { QDir(at("Copies")).removeRecursively(); });
    EXPECT_EQ(copy().kind, Kind::Failed) << static_cast<int>(step);
    EXPECT_FALSE(QDir(at("Copies")).exists()) << static_cast<int>(step);
    EXPECT_EQ(copy(), kOffline);
    files.callBefore(step, {});
    QDir().mkpath(at("Copies"));
    EXPECT_EQ(copy(), kDone) << static_cast<int>(step);
    EXPECT_EQ(read(kCopy), "photo");
    EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
    EXPECT_TRUE(QDir(at("Copies")).removeRecursively());
  }
}

TEST_F(BackupCopyTest, FailsWithoutAMessageForAFolderThatIsNoPath) {
  for (const QString& nowhere : {QString(), QString(QChar::Null)}) {
    const BackupOutcome outcome = copyToBackup(
        files, ahead,
        {.source = at("Shots/Ann/Ann_0001.JPG"), .targetDir = at("Shots"), .backupDir = nowhere});
    EXPECT_EQ(outcome, kOffline);
  }
}

TEST_F(BackupCopyTest, TakesAFileOfTheSameSizeForDone) {
  QDir().mkpath(at("Copies/Ann"));
  write(kCopy, "other");
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read(kCopy), "other");
  EXPECT_EQ(files.calls(Operation::CopyToNew), 0);
}

TEST_F(BackupCopyTest, RemovesTheTemporaryFileOfARunThatWasKilledBeforeThePhotoWasDone) {
  QDir().mkpath(at("Copies/Ann"));
  write(kTemporary, "pho");
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
  write(kTemporary, "pho");
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
}

TEST_F(BackupCopyTest, ReplacesAFileOfAnotherSize) {
  QDir().mkpath(at("Copies/Ann"));
  write(kCopy, "half");
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read(kCopy), "photo");
}

TEST_F(BackupCopyTest, NeverTakesAnEmptyPhotoForBackedUp) {
  write("Shots/empty.JPG", "");
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_EQ(copy("Shots/empty.JPG"), kIncomplete);
    EXPECT_EQ(namesIn("Copies"), QStringList());
  }
  write("Copies/empty.JPG", "");
  EXPECT_EQ(copy("Shots/empty.JPG"), kIncomplete);
}

TEST_F(BackupCopyTest, FailsWithTheSystemsWordsWhenTheCopyFails) {
  files.failCall(Operation::CopyToNew, 1, "No space left on device");
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "No space left on device"}));
  EXPECT_EQ(copy(), kDone);
}

TEST_F(BackupCopyTest, CallsACopyIncompleteThatCameOutShorter) {
  files.callAfter(Operation::CopyToNew,
                  [](const QString&, const QString& to) { ASSERT_TRUE(QFile::resize(to, 4)); });
  EXPECT_EQ(copy(), kIncomplete);
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList());
}

TEST_F(BackupCopyTest, CallsACopyIncompleteWhosePhotoGrewMeanwhile) {
  files.callBefore(Operation::CopyToNew, [this](const QString&, const QString&) {
    write("Shots/Ann/Ann_0001.JPG", "a longer one");
  });
  EXPECT_EQ(copy(), kIncomplete);
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList());
}

TEST_F(BackupCopyTest, FailsWithTheSystemsWordsWhenTheMoveFails) {
  files.failCall(Operation::MoveReplacing, 1, "Input/output error");
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "Input/output error"}));
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList());
}

TEST_F(BackupCopyTest, FailsWithTheSystemsWordsWhenTheNameCannotBeFlushed) {
  files.failCall(Operation::FlushFolder, 1, "Input/output error");
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "Input/output error", Names::InDoubt}));
  EXPECT_EQ(copy(), kDone);
}

TEST_F(BackupCopyTest, IsInDoubtUntilTheNameIsFlushedEvenWhereTheCopyWasThereBefore) {
  files.failCall(Operation::FlushFolder, 1, "Input/output error");
  files.failCall(Operation::FlushFolder, 2, "Input/output error");
  EXPECT_EQ(copy().names, Names::InDoubt);
  ASSERT_EQ(read(kCopy), "photo");
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "Input/output error", Names::InDoubt}));
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(files.calls(Operation::FlushFolder), 3);
  EXPECT_EQ(files.calls(Operation::CopyToNew), 1);
}

TEST_F(BackupCopyTest, FailsForAPhotoThatHasVanishedWhereTheNamesBeforeItCannotBeFlushed) {
  ahead.hasName(at(kCopy));
  files.failCall(Operation::FlushFolder, 1, "Input/output error");
  EXPECT_EQ(copy("Shots/Ann/gone.JPG"), (BackupOutcome{Kind::Failed, "Input/output error", Names::InDoubt}));
  EXPECT_EQ(copy("Shots/Ann/gone.JPG"), (BackupOutcome{Kind::SourceGone}));
}

TEST_F(BackupCopyTest, FlushesTheCopyBeforeItsSizeIsComparedAndItsNameLast) {
  QStringList steps;
  const auto note = [&](const QString& step) {
    return [&steps, step](const QString&, const QString&) { steps.append(step); };
  };
  files.callBefore(Operation::CopyToNew, note("copy"));
  files.callBefore(Operation::FlushOfCopy, note("flush"));
  files.callBefore(Operation::MoveReplacing, note("move"));
  files.callBefore(Operation::FlushFolder, note("flush folder"));
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(steps, (QStringList{"copy", "flush", "move", "flush folder"}));
}

TEST_F(BackupCopyTest, CallsACopyIncompleteThatLostBytesInItsFlush) {
  files.callAfter(Operation::FlushOfCopy,
                  [](const QString&, const QString& to) { ASSERT_TRUE(QFile::resize(to, 4)); });
  EXPECT_EQ(copy(), kIncomplete);
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList());
}

TEST_F(BackupCopyTest, KeepsTheOldCopyUntilTheNewOneIsThere) {
  QDir().mkpath(at("Copies/Ann"));
  write(kCopy, "an older one");
  files.failCall(Operation::MoveReplacing, 1, "Input/output error");
  EXPECT_EQ(copy().kind, Kind::Failed);
  EXPECT_EQ(read(kCopy), "an older one");
}

// ---- What may stand in the way

TEST_F(BackupCopyTest, ALinkAtTheTemporaryNameLeadsNowhere) {
  QDir().mkpath(at("Copies/Ann"));
  write("outside", "keep me");
  ASSERT_TRUE(QFile::link(at("outside"), at(kTemporary)));
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read("outside"), "keep me");
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
}

TEST_F(BackupCopyTest, ALinkAtTheFinalNameIsReplacedEvenWhenItLeadsToAFileOfTheSameSize) {
  QDir().mkpath(at("Copies/Ann"));
  write("outside", "keep!");
  ASSERT_TRUE(QFile::link(at("outside"), at(kCopy)));
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read("outside"), "keep!");
  EXPECT_EQ(read(kCopy), "photo");
  EXPECT_FALSE(QFileInfo(at(kCopy)).isSymLink());
}

TEST_F(BackupCopyTest, APipeAtTheTemporaryNameHoldsNothingUp) {
  QDir().mkpath(at("Copies/Ann"));
  ASSERT_EQ(::mkfifo(QFile::encodeName(at(kTemporary)).constData(), 0600), 0);
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read(kCopy), "photo");
}

TEST_F(BackupCopyTest, AnEmptyFolderInThePlaceOfTheCopyGivesWay) {
  QDir().mkpath(at(kCopy));
  QDir().mkpath(at(kTemporary));
  EXPECT_EQ(copy(), kDone);
  EXPECT_EQ(read(kCopy), "photo");
}

TEST_F(BackupCopyTest, AFolderWithFilesInThePlaceOfTheCopyIsKept) {
  QDir().mkpath(at(kCopy));
  write(kCopy + "/inside", "keep me");
  EXPECT_EQ(copy().kind, Kind::Failed);
  EXPECT_EQ(read(kCopy + "/inside"), "keep me");
  EXPECT_EQ(namesIn("Copies/Ann"), QStringList{"Ann_0001.JPG"});
}

TEST_F(BackupCopyTest, AFileInThePlaceOfTheFolderIsKept) {
  write("Copies/Ann", "keep me");
  EXPECT_EQ(copy(), (BackupOutcome{Kind::Failed, "Not a directory"}));
  EXPECT_EQ(read("Copies/Ann"), "keep me");
}

TEST_F(BackupCopyTest, CopiesALargePhotoWhole) {
  QByteArray bytes(9'000'001, 'x');
  for (qsizetype i = 0; i < bytes.size(); i += 4096)
    bytes[i] = static_cast<char>(i / 4096);
  write("Shots/large.CR3", bytes);
  EXPECT_EQ(copy("Shots/large.CR3"), kDone);
  EXPECT_EQ(read("Copies/large.CR3"), bytes);
}
