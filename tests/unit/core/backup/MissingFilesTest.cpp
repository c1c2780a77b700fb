// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/backup/MissingFiles.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

bool isPhoto(const QString& name) {
  return name.endsWith(".jpg");
}

class MissingFilesTest : public ::testing::Test {
 protected:
  MissingFilesTest() { QDir().mkpath(at("Copies")); }
  QString at(const QString& name) const { return folder.filePath(name); }
  void write(const QString& name, const QByteArray& bytes) const {
    QDir().mkpath(QFileInfo(at(name)).path());
    QFile file(at(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  // Relative to the target folder.
  QStringList missing(const QString& backupDir = "Copies") const {
    QStringList names = missingFromBackup(at("Shots"), at(backupDir), isPhoto);
    for (QString& name : names) {
      EXPECT_TRUE(name.startsWith(at("Shots/")));
      name.remove(0, at("Shots/").size());
    }
    return names;
  }
  QTemporaryDir folder;
};

}  // namespace

TEST_F(MissingFilesTest, FindsPhotosAtAnyDepthHiddenOnesIncluded) {
  for (const QString name : {"a.jpg", "Ann/b.jpg", "Ann/deep/er/c.jpg", ".hidden/.d.jpg", "Ann/notes.txt"})
    write("Shots/" + name, "photo");
  QStringList found = missing();
  found.sort();
  EXPECT_EQ(found, (QStringList{".hidden/.d.jpg", "Ann/b.jpg", "Ann/deep/er/c.jpg", "a.jpg"}));
}

TEST_F(MissingFilesTest, LeavesOutWhatHasACopyOfItsSize) {
  write("Shots/Ann/same.jpg", "photo");
  write("Copies/Ann/same.jpg", "other");
  write("Shots/Ann/longer.jpg", "photo");
  write("Copies/Ann/longer.jpg", "pho");
  EXPECT_EQ(missing(), QStringList{"Ann/longer.jpg"});
}

TEST_F(MissingFilesTest, AlwaysFindsAnEmptyPhoto) {
  write("Shots/empty.jpg", "");
  write("Copies/empty.jpg", "");
  EXPECT_EQ(missing(), QStringList{"empty.jpg"});
}

TEST_F(MissingFilesTest, NeverFindsTheCopiesInABackupFolderBelowTheTargetFolder) {
  write("Shots/Ann/a.jpg", "photo");
  write("Shots/Copies/Ann/a.jpg", "photo");
  write("Shots/Copies/Ann/old.jpg", "photo");
  EXPECT_EQ(missing("Shots/Copies"), QStringList());
  ASSERT_TRUE(QFile::link(at("Shots/Copies"), at("second way")));
  EXPECT_EQ(missing("second way"), QStringList());
}

TEST_F(MissingFilesTest, FollowsLinksToPhotosButNotToFolders) {
  write("elsewhere/a.jpg", "photo");
  QDir().mkpath(at("Shots"));
  ASSERT_TRUE(QFile::link(at("elsewhere"), at("Shots/linked")));
  ASSERT_TRUE(QFile::link(at("Shots"), at("Shots/loop.jpg")));
  ASSERT_TRUE(QFile::link(at("elsewhere/a.jpg"), at("Shots/b.jpg")));
  ASSERT_TRUE(QFile::link(at("nowhere"), at("Shots/dangling.jpg")));
  EXPECT_EQ(missing(), QStringList{"b.jpg"});
}

TEST_F(MissingFilesTest, LooksIntoAFolderNamedLikeAPhotoButDoesNotQueueIt) {
  write("Shots/party.jpg/a.jpg", "photo");
  ASSERT_EQ(::mkfifo(QFile::encodeName(at("Shots/pipe.jpg")).constData(), 0600), 0);
  EXPECT_EQ(missing(), QStringList{"party.jpg/a.jpg"});
}

TEST_F(MissingFilesTest, FindsNothingWhereThereIsNoTargetFolder) {
  EXPECT_EQ(missing(), QStringList());
}

TEST_F(MissingFilesTest, FindsEverythingWhereThereIsNoBackupFolder) {
  write("Shots/a.jpg", "photo");
  EXPECT_EQ(missing("gone"), QStringList{"a.jpg"});
}

TEST_F(MissingFilesTest, NamesPhotosAsFilingDoesWhateverTheFoldersEndWith) {
  write("Shots/Ann/a.jpg", "photo");
  EXPECT_EQ(missingFromBackup(at("Shots//"), at("Copies/"), isPhoto), QStringList{at("Shots/Ann/a.jpg")});
}
