// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "soak/Account.h"

using namespace ambrel;
using namespace ambrel::soak;

namespace {

// A day on which all went well: one photo filed, one of last year, and the copies of both.
class SoakAccount : public ::testing::Test {
 protected:
  SoakAccount() {
    earlier.plant(places, {"Anna"});
    write(places.target + "/Anna/Anna_0002.JPG", "new");
    write(places.copies + "/Anna/Anna_0002.JPG", "new");
    QFile::copy(places.target + "/Anna/Anna_0001.JPG", places.copies + "/Anna/Anna_0001.JPG");
    take("IMG_0001.JPG", "new", 1, true);
  }

  static void write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(path.left(path.lastIndexOf('/')));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  void take(const std::string& name, const QByteArray& bytes, int timesReported, bool mustArrive) {
    const QString scratch = folder.filePath("scratch");
    write(scratch, bytes);
    const std::string sha256 = sha256OfFile(scratch.toStdString());
    records[sha256] = {{.name = name, .sha256 = sha256, .place = "card"}, timesReported, mustArrive};
  }
  QStringList wrong(std::size_t filingsFailed = 0) {
    Account account(places, earlier, records);
    account.checkBackup({"Moved"});
    account.checkPhotos(filingsFailed);
    account.checkWholeBackup();
    account.checkPlaces({"Moved"});
    totals = account.totals();
    return account.wrong();
  }

  QTemporaryDir folder;
  const Places places{folder.filePath("root")};
  EarlierFiles earlier;
  std::map<std::string, Shutter::Record> records;
  Account::Totals totals;
};

TEST_F(SoakAccount, FindsNothingWrongWithAGoodDay) {
  EXPECT_EQ(wrong(), QStringList());
  EXPECT_EQ(totals.filed, 1u);
  EXPECT_EQ(totals.backedUp, 1u);
}

TEST_F(SoakAccount, MissesAPhotoThatWasReported) {
  take("IMG_0002.JPG", "lost", 1, true);
  EXPECT_EQ(wrong(), QStringList("IMG_0002.JPG was reported and is lost."));
}

TEST_F(SoakAccount, MissesAPhotoThatNothingKeptFromArriving) {
  take("IMG_0002.JPG", "left", 0, true);
  EXPECT_EQ(wrong().size(), 1);
  records.clear();
  take("IMG_0001.JPG", "new", 1, true);
  take("IMG_0002.JPG", "left", 0, false);
  EXPECT_EQ(wrong(), QStringList());
  EXPECT_EQ(totals.onCardOnly, 1u);
}

TEST_F(SoakAccount, SeesAPhotoThatIsThereTwice) {
  write(places.target + "/Anna_FR/Anna_FR_0001.JPG", "new");
  write(places.copies + "/Anna_FR/Anna_FR_0001.JPG", "new");
  const QStringList found = wrong();
  ASSERT_EQ(found.size(), 1);
  EXPECT_TRUE(found.first().startsWith("IMG_0001.JPG is there more than once"));
}

TEST_F(SoakAccount, SeesAPhotoThatWasReportedTwice) {
  records.begin()->second.timesReported = 2;
  EXPECT_EQ(wrong(), QStringList("IMG_0001.JPG was reported 2 times."));
}

TEST_F(SoakAccount, SeesAPhotoThatIsNotWhatTheCameraMade) {
  write(places.target + "/Anna/Anna_0002.JPG", "ne");
  EXPECT_TRUE(wrong().contains("/Anna/Anna_0002.JPG in the target folder is nothing that the camera made."));
}

TEST_F(SoakAccount, SeesThatAnEarlierFileIsChangedOrGone) {
  write(places.target + "/Anna/wishes.txt", "other wishes");
  QFile::remove(places.copies + "/Anna/read me.txt");
  const QStringList found = wrong();
  EXPECT_TRUE(found.contains("/Anna/wishes.txt, which was there before, is there 0 times."));
  EXPECT_TRUE(
      found.contains("/Anna/read me.txt in the backup folder was there before, and is gone or changed."));
}

TEST_F(SoakAccount, WantsABackupOfEveryPhotoAndTheSameBytes) {
  write(places.copies + "/Anna/Anna_0002.JPG", "nex");
  EXPECT_TRUE(wrong().contains("/Anna/Anna_0002.JPG is not what its backup holds."));
  QFile::remove(places.copies + "/Anna/Anna_0002.JPG");
  EXPECT_TRUE(wrong().contains("/Anna/Anna_0002.JPG has no backup."));
}

TEST_F(SoakAccount, LetsTheOperatorAskForTheBackupOfWhatMoved) {
  write(places.target + "/Moved/Moved_0001.JPG", "two");
  take("IMG_0002.JPG", "two", 1, true);
  EXPECT_EQ(
      wrong(),
      QStringList("/Moved/Moved_0001.JPG has no backup although the operator asked for what is missing."));
  EXPECT_EQ(totals.backupsAsked, 1u);
}

TEST_F(SoakAccount, WantsAnAlertForEveryPhotoThatWasNotFiled) {
  write(places.target + "/IMG_0002.JPG", "two");
  write(places.copies + "/IMG_0002.JPG", "two");
  take("IMG_0002.JPG", "two", 1, true);
  EXPECT_EQ(wrong(0).size(), 1);
  EXPECT_EQ(wrong(1), QStringList());
  EXPECT_EQ(totals.atSource, 1u);
}

TEST_F(SoakAccount, SeesTemporaryFilesAndThoseInWrongPlaces) {
  write(places.copies + "/Anna/Anna_0003.JPG.ambrel_tmp", "half");
  write(places.copies + "/Moved/Moved_0003.JPG.ambrel_tmp", "half");
  write(places.root + "/home/Pictures/Anna_0001.JPG", "astray");
  const QStringList found = wrong();
  EXPECT_TRUE(found.contains("/Copies/Anna/Anna_0003.JPG.ambrel_tmp is a temporary file that stayed."));
  EXPECT_FALSE(found.contains("/Copies/Moved/Moved_0003.JPG.ambrel_tmp is a temporary file that stayed."));
  EXPECT_EQ(totals.stuckCopies, 1u);
  EXPECT_TRUE(found.contains("/home/Pictures/Anna_0001.JPG lies where nothing is to be made."));
}

}  // namespace
