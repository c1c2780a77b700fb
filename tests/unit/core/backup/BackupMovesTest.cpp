// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "unit/core/backup/BackupFixture.h"

using namespace ambrel;
using namespace std::chrono_literals;
using Operation = BrokenFiles::Operation;

namespace {

class BackupMoves : public BackupFixture {
 protected:
  BackupMoves() { switchOn(); }
  // As the rename of a folder does, with the photos in it named as they are.
  std::vector<MovedPaths> renameFolder(const QString& from, const QString& to) const {
    EXPECT_TRUE(QDir().rename(target + '/' + from, target + '/' + to));
    return {{{{target + '/' + from, target + '/' + to}}, {}}};
  }
  void follow(const QString& from, const QString& to) const {
    EXPECT_TRUE(QDir().rename(copies + '/' + from, copies + '/' + to));
    backup->backupFollowed();
  }
};

}  // namespace

TEST_F(BackupMoves, CopiesAPhotoThatWaitsUnderTheNameThatItsPersonGotMeanwhile) {
  pullDrive();
  save("Ann/1.jpg");
  ASSERT_TRUE(untilFailed());
  backup->photosWillMove();
  backup->photosMoved(renameFolder("Ann", "Bea"), {});
  backup->backupFollowed();
  EXPECT_EQ(backup->queue().paths(), QStringList{target + "/Bea/1.jpg"});
  plugDrive();
  clock.advance(Backup::kRetryPeriod);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Bea/1.jpg"), "photo");
  EXPECT_EQ(backup->backupDoneCount(), 1);
}

TEST_F(BackupMoves, BeginsNoCopyUntilTheBackupHasFollowed) {
  backup->photosWillMove();
  backup->photosWillMove();
  save("Ann/1.jpg");
  ASSERT_TRUE(until([this] { return backup->queue().firstMayGo(); }));
  backup->backupFollowed();
  backup->processBackupQueue();
  EXPECT_FALSE(backup->state().busy);
  backup->backupFollowed();
  EXPECT_TRUE(backup->state().busy);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Ann/1.jpg"), "photo");
}

TEST_F(BackupMoves, IsNotHeldBackForLongByADriveThatHangs) {
  backup->photosWillMove();
  save("Ann/1.jpg");
  ASSERT_TRUE(until([this] { return backup->queue().firstMayGo(); }));
  clock.advance(Backup::kRetryPeriod - 1ms);
  EXPECT_FALSE(backup->state().busy);
  clock.advance(1ms);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Ann/1.jpg"), "photo");
  backup->backupFollowed();
  backup->backupFollowed();
  EXPECT_EQ(backup->queue().size(), 0);
}

TEST_F(BackupMoves, LetsTheBackupFollowOnceTheCopyUnderWayHasEndedAndItsNameIsOnTheDisk) {
  files.callAfter(Operation::CopyToNew, [this](const QString&, const QString&) { gate.acquire(); });
  save("Ann/1.jpg");
  ASSERT_TRUE(until([this] { return copyOf("Ann/1.jpg.ambrel_tmp") == "photo"; }));
  backup->photosWillMove();
  backup->photosMoved(renameFolder("Ann", "Bea"), {});
  bool rests = false;
  backup->whenAtRest([&] { rests = true; });
  EXPECT_FALSE(rests);
  letGo();
  ASSERT_TRUE(until([&] { return rests; }));
  EXPECT_FALSE(backup->state().busy);
  EXPECT_EQ(QDir(copies).entryList({"*.ambrel_tmp"}, QDir::Files), QStringList());
  follow("Ann", "Bea");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Bea/1.jpg"), "photo");
  EXPECT_EQ(backup->backupDoneCount(), 1);
  EXPECT_EQ(operatorSeam.alerts.size(), 0u);
}

// Whether anybody has told of the move by then or not.
TEST_F(BackupMoves, DoesNotBlameTheDriveWhenAPhotoGoesFromUnderItsCopy) {
  for (const bool told : {false, true}) {
    const QString person = told ? "Cat" : "Ann";
    if (told) gate.acquire();  // closes it again
    holdCopies();
    save(person + "/1.jpg");
    ASSERT_TRUE(untilBusy());
    backup->photosWillMove();
    const std::vector<MovedPaths> moves = renameFolder(person, person + "_FR");
    if (told) backup->photosMoved(moves, {});
    letGo();
    ASSERT_TRUE(until([this] { return !backup->state().busy; }));
    if (!told) backup->photosMoved(moves, {});
    backup->backupFollowed();
    ASSERT_TRUE(untilEmpty());
    EXPECT_EQ(copyOf(person + "_FR/1.jpg"), "photo");
  }
  EXPECT_EQ(operatorSeam.alerts.size(), 0u);
}

TEST_F(BackupMoves, WaitsForNoCopyThatHangs) {
  holdCopies();
  save("Ann/1.jpg");
  ASSERT_TRUE(untilBusy());
  backup->photosWillMove();
  bool rests = false;
  backup->whenAtRest([&] { rests = true; });
  clock.advance(Backup::kRetryPeriod);
  EXPECT_TRUE(rests);
  letGo();
  ASSERT_TRUE(untilEmpty());
}

TEST_F(BackupMoves, CallsBackAtOnceWhereNothingIsCopied) {
  bool rests = false;
  backup->whenAtRest([&] { rests = true; });
  EXPECT_TRUE(rests);
}

// It is on its way to a path that nobody has told of yet.
TEST_F(BackupMoves, DoesNotForgetAPhotoThatHasVanishedWhileItIsHeld) {
  pullDrive();
  save("Ann/1.jpg");
  ASSERT_TRUE(untilFailed());
  plugDrive();
  const std::vector<MovedPaths> moves = renameFolder("Ann", "Bea");
  backup->processBackupQueue();
  backup->photosWillMove();
  ASSERT_TRUE(until([this] { return !backup->state().busy; }));
  EXPECT_EQ(backup->queue().size(), 1);
  backup->photosMoved(moves, {});
  backup->backupFollowed();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Bea/1.jpg"), "photo");
}

TEST_F(BackupMoves, ForgetsAPhotoThatIsGoneAfterAll) {
  pullDrive();
  const QString path = save("Ann/1.jpg");
  ASSERT_TRUE(untilFailed());
  plugDrive();
  backup->photosWillMove();
  ASSERT_TRUE(QFile::remove(path));
  backup->processBackupQueue();
  backup->backupFollowed();
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(backup->backupDoneCount(), 0);
}

// Bea's folder gets Ann's first photo as number 1 where only its copy was there, and as number 2 in the
// target folder.
TEST_F(BackupMoves, LooksAfterPhotosWhoseCopiesGotOtherNumbersThanTheyHave) {
  save("Ann/1.jpg", "the first one");
  ASSERT_TRUE(untilEmpty());
  pullDrive();
  save("Ann/2.jpg", "the second");
  ASSERT_TRUE(untilFailed());
  plugDrive();
  backup->photosWillMove();
  QDir().mkpath(target + "/Bea");
  ASSERT_TRUE(QDir().rename(target + "/Ann/2.jpg", target + "/Bea/Bea_1.jpg"));
  ASSERT_TRUE(QDir().rename(target + "/Ann/1.jpg", target + "/Bea/Bea_2.jpg"));
  backup->photosMoved({{{},
                        {{target + "/Ann/2.jpg", target + "/Bea/Bea_1.jpg"},
                         {target + "/Ann/1.jpg", target + "/Bea/Bea_2.jpg"}}}},
                      {});
  ASSERT_TRUE(QDir().rename(copies + "/Ann", copies + "/Bea"));
  ASSERT_TRUE(QDir().rename(copies + "/Bea/1.jpg", copies + "/Bea/Bea_1.jpg"));
  backup->backupFollowed();
  ASSERT_TRUE(until([this] { return copyOf("Bea/Bea_2.jpg") != "(missing)"; }));
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Bea/Bea_1.jpg"), "the second");
  EXPECT_EQ(copyOf("Bea/Bea_2.jpg"), "the first one");
}

TEST_F(BackupMoves, LooksAfterThemAtTheNextLaunchWhereTheApplicationDiesBefore) {
  save("Ann/1.jpg", "the first one");
  ASSERT_TRUE(untilEmpty());
  pullDrive();
  save("Ann/2.jpg", "the second");
  ASSERT_TRUE(untilFailed());
  const QStringList announced = {target + "/Bea/1.jpg", target + "/Bea/2.jpg"};
  backup->pendingPhotos()->add(announced);
  backup->photosWillMove();
  backup->photosMoved(renameFolder("Ann", "Bea"), announced);
  restart();
  QStringList waiting = backup->queue().paths();
  waiting.sort();
  EXPECT_EQ(waiting, announced);
  plugDrive();
  clock.advance(Backup::kStartDelay);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(copyOf("Bea/1.jpg"), "the first one");
  restart();
  EXPECT_EQ(backup->queue().size(), 0);
}

TEST_F(BackupMoves, LeavesPhotosAloneThatDidNotWait) {
  QDir().mkpath(target + "/Ann");
  write(target + "/Ann/1.jpg", "filed while backup was off");
  backup->photosWillMove();
  backup->photosMoved(renameFolder("Ann", "Bea"), {});
  backup->backupFollowed();
  EXPECT_EQ(backup->queue().size(), 0);
  EXPECT_EQ(backup->state().busy, false);
}

TEST_F(BackupMoves, FollowsWhileItIsOff) {
  pullDrive();
  save("Ann/1.jpg");
  ASSERT_TRUE(untilFailed());
  backup->toggleBackupEnabled();
  backup->photosWillMove();
  backup->photosMoved(renameFolder("Ann", "Bea"), {});
  backup->backupFollowed();
  EXPECT_EQ(backup->queue().paths(), QStringList{target + "/Bea/1.jpg"});
}
