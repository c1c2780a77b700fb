// SPDX-License-Identifier: Apache-2.0
// How the application and its backup meet: the end of a photo's road, launch and quitting.
#include <QDir>
#include <gtest/gtest.h>

#include "support/AppSession.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

class BackupWiring : public ::testing::Test {
 protected:
  BackupWiring() {
    QDir().mkpath(copies);
    session.launch();
    session.importNames({"Bob"});
    session.chooseTarget();
    session.connectCamera();
  }
  void switchOn() {
    session.operatorSeam.willChoose(copies);
    session.app->backup().chooseBackupFolder();
  }
  bool untilEmpty() {
    return runEventsUntil(
        [this] { return session.app->backup().queue().isEmpty() && !session.app->backup().state().busy; });
  }
  // With backup on; by the time it has quit the drive is back.
  void quitWithAPhotoWaitingForTheDrive() {
    switchOn();
    ASSERT_TRUE(QDir().rename(copies, copies + ".away"));
    session.download("IMG_1.JPG", "photo");
    ASSERT_TRUE(runEventsUntil([this] { return session.app->backup().state().offline; }));
    session.quit();
    ASSERT_TRUE(QDir().rename(copies + ".away", copies));
  }

  AppSession session;
  const QString copies = session.path("Copies");
};

}  // namespace

TEST_F(BackupWiring, BacksUpAPhotoAtTheEndOfItsRoad) {
  switchOn();
  session.download("IMG_1.JPG", "photo");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(session.readFile(copies + "/Bob/Bob_0001.JPG"), "photo");
  EXPECT_EQ(session.app->statusLine().text(), "Saved: Bob_0001.JPG");
}

TEST_F(BackupWiring, LetsAPhotoGoFirstFromItsAnnouncementUntilItIsFiled) {
  switchOn();
  const std::shared_ptr<const Gate> gate = session.app->backup().rightOfWay().gate();
  session.link.say("CAPTURE_EVENT|");
  EXPECT_FALSE(gate->isOpen());
  session.download("IMG_1.JPG", "photo");
  EXPECT_TRUE(gate->isOpen());
  ASSERT_TRUE(untilEmpty());
}

TEST_F(BackupWiring, LetsADownloadGoFirstThatNobodyAnnouncedAlsoIfItCannotBeFiled) {
  const std::shared_ptr<const Gate> gate = session.app->backup().rightOfWay().gate();
  session.link.say("DOWNLOADED|" + session.path("gone.JPG").toUtf8());
  EXPECT_FALSE(gate->isOpen());
  EXPECT_TRUE(runEventsUntil([&] { return gate->isOpen(); }));
}

TEST_F(BackupWiring, FindsMissingPhotosByTheExtensionsThatAreCounted) {
  session.download("IMG_1.CR3", "photo");
  session.writeFile(session.path("Photos/Bob/Bob_0001.xmp"), "no photo");
  switchOn();
  session.app->backup().backupMissingNow();
  ASSERT_TRUE(runEventsUntil([this] { return session.app->statusLine().text().startsWith("Queued"); }));
  EXPECT_EQ(session.app->statusLine().text(), "Queued 1 missing file for backup.");
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(session.readFile(copies + "/Bob/Bob_0001.CR3"), "photo");
}

TEST_F(BackupWiring, GoesOnAfterARestartWithThePhotosThatWait) {
  ASSERT_NO_FATAL_FAILURE(quitWithAPhotoWaitingForTheDrive());
  session.startApplication();
  session.launch();
  EXPECT_TRUE(session.app->backup().isEnabled());
  EXPECT_EQ(session.app->backup().queue().size(), 1);
  session.clock.advance(Backup::kStartDelay);
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(session.readFile(copies + "/Bob/Bob_0001.JPG"), "photo");
}

// A queue that cannot be written stands for a process that dies before it has written it.
TEST_F(BackupWiring, QueuesAtTheNextLaunchWhatWasFiledButNotQueued) {
  const QString inTheWay = session.locations.dataFile("backup_queue.plist");
  ASSERT_TRUE(QDir().mkpath(inTheWay + "/inside"));
  ASSERT_NO_FATAL_FAILURE(quitWithAPhotoWaitingForTheDrive());
  session.app.reset();
  ASSERT_TRUE(QDir(inTheWay).removeRecursively());
  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->backup().queue().paths(), QStringList{session.path("Photos/Bob/Bob_0001.JPG")});
}

TEST_F(BackupWiring, StopsRetryingWithTheApplication) {
  ASSERT_NO_FATAL_FAILURE(quitWithAPhotoWaitingForTheDrive());
  session.clock.advance(Backup::kRetryPeriod);
  EXPECT_FALSE(session.app->backup().state().busy);
}

// ---- A person gets another name while photos wait

TEST_F(BackupWiring, CopiesThePhotosOfARenamedPersonUnderTheNewName) {
  switchOn();
  session.download("IMG_1.JPG", "first");
  ASSERT_TRUE(untilEmpty());
  ASSERT_TRUE(QDir().rename(copies, copies + ".away"));
  session.download("IMG_2.JPG", "second");
  ASSERT_TRUE(runEventsUntil([this] { return session.app->backup().state().offline; }));
  ASSERT_TRUE(QDir().rename(copies + ".away", copies));
  session.app->folderRename().movePhotosFromRow(0, "Bea", {});
  ASSERT_TRUE(runEventsUntil([this] { return session.app->statusLine().text().startsWith("Moved"); }));
  ASSERT_TRUE(untilEmpty());
  EXPECT_EQ(session.app->statusLine().text(), "Moved 2 photos to \"Bea\" (new row added).");
  EXPECT_EQ(session.readFile(copies + "/Bea/Bea_0001.JPG"), "first");
  EXPECT_EQ(session.readFile(copies + "/Bea/Bea_0002.JPG"), "second");
  EXPECT_FALSE(QDir(copies + "/Bob").exists());
}

TEST_F(BackupWiring, QueuesAtTheNextLaunchWhatWasRenamedJustBeforeTheApplicationDied) {
  switchOn();
  ASSERT_TRUE(QDir().rename(copies, copies + ".away"));
  session.download("IMG_1.JPG", "photo");
  ASSERT_TRUE(runEventsUntil([this] { return session.app->backup().state().offline; }));
  const QString queueFile = session.locations.dataFile("backup_queue.plist");
  ASSERT_TRUE(QFile::rename(queueFile, queueFile + ".kept"));
  ASSERT_TRUE(QDir().mkpath(queueFile + "/inside"));
  session.app->folderRename().movePhotosFromRow(0, "Bea", {});
  ASSERT_TRUE(runEventsUntil([this] { return session.app->statusLine().text().startsWith("Moved"); }));
  session.quit();
  session.app.reset();
  ASSERT_TRUE(QDir(queueFile).removeRecursively());
  ASSERT_TRUE(QFile::rename(queueFile + ".kept", queueFile));
  session.startApplication();
  session.launch();
  EXPECT_TRUE(session.app->backup().queue().paths().contains(session.path("Photos/Bea/Bea_0001.JPG")));
}
