// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <semaphore>
#include <unistd.h>

#include "core/backup/BackupQueue.h"
#include "core/backup/QueueFile.h"
#include "core/base/PosixFiles.h"
#include "support/BrokenFiles.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using Operation = BrokenFiles::Operation;

namespace {

class BackupQueueTest : public ::testing::Test {
 protected:
  BackupQueueTest() { restart(); }
  void restart() {
    queue.reset();
    queue = std::make_unique<BackupQueue>(files, locations);
  }
  void appendAndSave(const QString& path) {
    queue->append(path);
    queue->saveBackupQueue();
  }
  // What a start after this moment would find.
  QStringList stored() {
    queue->finishWriting();
    return readQueueFile(queue->backupQueuePath()).value();
  }
  void writeQueueFile(const QByteArray& bytes) {
    QFile file(queue->backupQueuePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  QStringList filesBeside() const {
    return QDir(locations.applicationSupport + "/Ambrel Tether")
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
  }

  QTemporaryDir folder;
  Locations locations = Locations::below(folder.path());
  PosixFiles realFiles;
  BrokenFiles files{realFiles};
  std::unique_ptr<BackupQueue> queue;
};

}  // namespace

TEST_F(BackupQueueTest, LivesInTheApplicationsFolder) {
  EXPECT_EQ(queue->backupQueuePath(), locations.applicationSupport + "/Ambrel Tether/backup_queue.plist");
}

TEST_F(BackupQueueTest, ComesBackInItsOrderAfterARestart) {
  for (const QString path : {"/c", "/a", "/b"})
    appendAndSave(path);
  queue->remove("/a");
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), (QStringList{"/c", "/b"}));
  restart();
  queue->loadBackupQueue();
  EXPECT_EQ(queue->paths(), (QStringList{"/c", "/b"}));
  EXPECT_TRUE(queue->firstMayGo());
}

TEST_F(BackupQueueTest, HoldsEachPathOnce) {
  EXPECT_TRUE(queue->append("/a"));
  EXPECT_FALSE(queue->append("/a"));
  EXPECT_EQ(queue->size(), 1);
  queue->remove("/a");
  EXPECT_TRUE(queue->append("/a"));
}

TEST_F(BackupQueueTest, LetsThePhotoGoOnceItIsInTheFile) {
  QStringList inFile;
  QObject::connect(queue.get(), &BackupQueue::written, [&] { inFile = stored(); });
  appendAndSave("/a");
  EXPECT_FALSE(queue->firstMayGo());
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
  EXPECT_EQ(inFile, QStringList{"/a"});
}

TEST_F(BackupQueueTest, KeepsAPhotoBackThatCameAfterTheWriteBegan) {
  std::counting_semaphore<> begun(0);
  std::counting_semaphore<> goOn(0);
  files.callBefore(Operation::Replace, [&](const QString&, const QString&) {
    begun.release();
    goOn.acquire();
  });
  appendAndSave("/a");
  begun.acquire();
  appendAndSave("/b");
  goOn.release();
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
  queue->remove("/a");
  EXPECT_FALSE(queue->firstMayGo());
  goOn.release();
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
}

TEST_F(BackupQueueTest, WritesABurstInFewPieces) {
  std::counting_semaphore<> goOn(0);
  files.callBefore(Operation::Replace, [&](const QString&, const QString&) { goOn.acquire(); });
  for (int i = 0; i < 500; ++i)
    appendAndSave(QStringLiteral("/photo %1").arg(i));
  goOn.release(500);
  EXPECT_EQ(stored().size(), 500);
  EXPECT_LE(files.calls(Operation::Replace), 2);
}

TEST_F(BackupQueueTest, LetsPhotosGoThatCannotBeWrittenDownAndSaysSo) {
  files.failAlways(Operation::Replace, "disk full");
  QStringList messages;
  QObject::connect(queue.get(), &BackupQueue::notWritten,
                   [&](const QString& message) { messages.append(message); });
  appendAndSave("/a");
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
  EXPECT_EQ(messages, QStringList{"disk full"});
}

TEST_F(BackupQueueTest, MakesItsFolderAnew) {
  ASSERT_TRUE(QDir(locations.applicationSupport + "/Ambrel Tether").removeRecursively());
  appendAndSave("/a");
  EXPECT_EQ(stored(), QStringList{"/a"});
}

TEST_F(BackupQueueTest, IsEmptyWithoutAFile) {
  queue->append("/left over");
  queue->loadBackupQueue();
  EXPECT_TRUE(queue->isEmpty());
  EXPECT_FALSE(queue->firstMayGo());
  EXPECT_EQ(filesBeside(), QStringList());
}

TEST_F(BackupQueueTest, KeepsAFileAsideThatItCannotRead) {
  for (const QByteArray bytes : {"first", "second", "third"}) {
    writeQueueFile(bytes);
    queue->loadBackupQueue();
    EXPECT_TRUE(queue->isEmpty());
  }
  EXPECT_EQ(filesBeside(), (QStringList{"backup_queue.plist.broken", "backup_queue.plist.broken-2",
                                        "backup_queue.plist.broken-3"}));
  appendAndSave("/a");
  EXPECT_EQ(stored(), QStringList{"/a"});
}

TEST_F(BackupQueueTest, TakesUpAFileThatTheLastStartCouldNotRead) {
  appendAndSave("/photos/Anna/Anna_0001.JPG");
  queue->finishWriting();
  const QByteArray path = QFile::encodeName(queue->backupQueuePath());
  ASSERT_TRUE(QFile::rename(path, path + ".away"));
  ASSERT_EQ(::symlink(path.constData(), path.constData()), 0);  // a loop: every look fails
  restart();
  queue->loadBackupQueue();
  EXPECT_TRUE(queue->isEmpty());
  appendAndSave("/photos/Ben/Ben_0002.JPG");
  queue->finishWriting();
  ASSERT_TRUE(QFile::remove(path + ".unread"));
  ASSERT_TRUE(QFile::rename(path + ".away", path + ".unread"));

  restart();
  queue->loadBackupQueue();
  EXPECT_EQ(queue->paths(), QStringList({"/photos/Anna/Anna_0001.JPG", "/photos/Ben/Ben_0002.JPG"}));
  EXPECT_EQ(stored(), queue->paths());
  EXPECT_FALSE(QFile::exists(path + ".unread"));
}

TEST_F(BackupQueueTest, KeepsAFolderAsideThatStandsInItsPlace) {
  ASSERT_TRUE(QDir().mkpath(queue->backupQueuePath() + "/inside"));
  queue->loadBackupQueue();
  EXPECT_EQ(filesBeside(), QStringList{"backup_queue.plist.broken"});
  appendAndSave("/a");
  EXPECT_EQ(stored(), QStringList{"/a"});
}

TEST_F(BackupQueueTest, KeepsAFinishedPhotoInItsFileUntilThatIsSettled) {
  for (const QString path : {"/a", "/b", "/c"})
    appendAndSave(path);
  queue->finish("/a");
  queue->saveBackupQueue();
  EXPECT_EQ(queue->paths(), (QStringList{"/b", "/c"}));
  EXPECT_EQ(stored(), (QStringList{"/a", "/b", "/c"}));
  EXPECT_TRUE(queue->append("/a"));
  queue->remove("/a");
  queue->settleFinished();
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), (QStringList{"/b", "/c"}));
}

TEST_F(BackupQueueTest, PutsFinishedPhotosBackBeforeAllOthers) {
  for (const QString path : {"/a", "/b", "/c"})
    appendAndSave(path);
  stored();
  queue->finish("/a");
  queue->finish("/b");
  EXPECT_EQ(queue->putFinishedBack(), 2);
  EXPECT_EQ(queue->paths(), (QStringList{"/a", "/b", "/c"}));
  EXPECT_FALSE(queue->append("/a"));
  EXPECT_FALSE(queue->settleFinished());
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), queue->paths());
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
}

TEST_F(BackupQueueTest, HoldsAPhotoOnceThatIsPutBackAfterItWasFiledAnew) {
  appendAndSave("/a");
  queue->finish("/a");
  queue->append("/a");
  EXPECT_EQ(queue->putFinishedBack(), 0);
  EXPECT_EQ(queue->paths(), QStringList{"/a"});
}

TEST_F(BackupQueueTest, NamesThePhotosAfterTheFirstThatCountAsQueued) {
  EXPECT_EQ(queue->next(2), QStringList());
  for (const QString path : {"/a", "/b", "/c"})
    appendAndSave(path);
  stored();
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo() && queue->next(5).size() == 2; }));
  queue->append("/d");
  EXPECT_EQ(queue->next(5), (QStringList{"/b", "/c"}));
  EXPECT_EQ(queue->next(1), QStringList{"/b"});
}

TEST(MovedPaths, TakeAPathAlongWithItsFolderAndThenByItsOwnName) {
  const MovedPaths moved{{{"/t/Ann", "/t/Bea"}}, {{"/t/Bea/Ann_1.jpg", "/t/Bea/Bea_1.jpg"}}};
  EXPECT_EQ(moved.now("/t/Ann/Ann_1.jpg"), "/t/Bea/Bea_1.jpg");
  EXPECT_EQ(moved.now("/t/Ann/film.mov"), "/t/Bea/film.mov");
  EXPECT_EQ(moved.now("/t/Ann/sub/x.jpg"), "/t/Bea/sub/x.jpg");
  EXPECT_EQ(moved.now("/t/Annabel/Ann_1.jpg"), "/t/Annabel/Ann_1.jpg");
  EXPECT_EQ(pathAfter({moved, {{{"/t/Bea", "/t/Cat"}}, {}}}, "/t/Ann/Ann_1.jpg"), "/t/Cat/Bea_1.jpg");
}

TEST_F(BackupQueueTest, FollowsItsPhotosToTheirNewPathsInTheSameOrder) {
  for (const QString path : {"/Ann/1", "/Bob/1", "/Ann/2", "/Ann/3"})
    appendAndSave(path);
  stored();
  ASSERT_TRUE(runEventsUntil([&] { return queue->firstMayGo(); }));
  queue->finish("/Ann/1");
  EXPECT_EQ(queue->follow({{{{"/Ann", "/Bea"}}, {{"/Bea/2", "/Bea/two"}}}}), 3);
  EXPECT_EQ(queue->paths(), (QStringList{"/Bob/1", "/Bea/two", "/Bea/3"}));
  EXPECT_EQ(queue->next(5), QStringList());  // not in the file yet
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), (QStringList{"/Bea/1", "/Bob/1", "/Bea/two", "/Bea/3"}));
  ASSERT_TRUE(runEventsUntil([&] { return queue->next(5).size() == 2; }));
  EXPECT_TRUE(queue->append("/Ann/2"));
  EXPECT_FALSE(queue->append("/Bea/3"));
}

TEST_F(BackupQueueTest, HoldsAPhotoOnceThatFollowsToAPathThatWaits) {
  appendAndSave("/Ann/1");
  appendAndSave("/Bea/1");
  EXPECT_EQ(queue->follow({{{}, {{"/Ann/1", "/Bea/1"}}}}), 1);
  EXPECT_EQ(queue->paths(), QStringList{"/Bea/1"});
}

TEST_F(BackupQueueTest, ForgetsEverythingWhenCleared) {
  appendAndSave("/a");
  queue->clear();
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), QStringList());
  EXPECT_TRUE(queue->append("/a"));
}

// ---- Photos that were being filed when the process ended

namespace {

class PendingInQueueTest : public BackupQueueTest {
 protected:
  QString photo(const QString& name, const QByteArray& bytes = "photo") {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return file.fileName();
  }
  // What a launch after this moment would take up.
  QStringList stillPending() const { return PendingPhotos(locations.dataFile("backup_pending")).paths(); }
};

}  // namespace

TEST_F(PendingInQueueTest, QueuesPhotosThatWereFiledAndNotYetQueued) {
  queue->pending()->add(photo("a.jpg"));
  queue->pending()->add(photo("b.jpg"));
  restart();
  queue->loadBackupQueue();
  EXPECT_EQ(queue->paths(), (QStringList{folder.filePath("a.jpg"), folder.filePath("b.jpg")}));
  EXPECT_EQ(stored(), queue->paths());
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, QueuesThemBehindThePhotosThatWereQueued) {
  appendAndSave("/queued");
  queue->pending()->add(photo("a.jpg"));
  stored();
  restart();
  queue->loadBackupQueue();
  EXPECT_EQ(queue->paths(), (QStringList{"/queued", folder.filePath("a.jpg")}));
  EXPECT_TRUE(queue->firstMayGo());
}

TEST_F(PendingInQueueTest, LeavesOutPhotosThatNeverGotThere) {
  queue->pending()->add(folder.filePath("never moved.jpg"));
  queue->pending()->add(photo("empty.jpg", ""));
  ASSERT_TRUE(QDir(folder.path()).mkpath("folder.jpg"));
  queue->pending()->add(folder.filePath("folder.jpg"));
  restart();
  queue->loadBackupQueue();
  EXPECT_EQ(queue->paths(), QStringList());
  stored();
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, KeepsAPhotoPendingUntilAWriteThatHoldsItHasEnded) {
  const QString path = photo("a.jpg");
  QStringList whileWriting;
  files.callAfter(Operation::Replace, [&](const QString&, const QString&) { whileWriting = stillPending(); });
  queue->pending()->add(path);
  appendAndSave(path);
  EXPECT_EQ(stored(), QStringList{path});
  EXPECT_EQ(whileWriting, QStringList{path});
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, KeepsAPhotoPendingWhileTheQueueCannotBeWritten) {
  const QString path = photo("a.jpg");
  files.failCall(Operation::Replace, 1, "disk full");
  queue->pending()->add(path);
  appendAndSave(path);
  queue->finishWriting();
  EXPECT_EQ(stillPending(), QStringList{path});
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), QStringList{path});
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, NeverQueuesACopiedPhotoAgainAlthoughTheQueueCouldNotBeWritten) {
  const QString path = photo("a.jpg");
  files.failAlways(Operation::Replace, "disk full");
  queue->pending()->add(path);
  appendAndSave(path);
  queue->remove(path);
  queue->saveBackupQueue();
  queue->finishWriting();
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, KeepsAPhotoPendingUntilAWriteThatHoldsItsNewPathHasEnded) {
  const QString path = photo("a.jpg");
  const QStringList announced = {photo("b.jpg"), photo("another.jpg")};
  QStringList whileWriting;
  queue->pending()->add(path);
  appendAndSave(path);
  stored();
  queue->pending()->add(announced);
  files.callAfter(Operation::Replace, [&](const QString&, const QString&) { whileWriting = stillPending(); });
  queue->follow({{{}, {{path, announced[0]}}}});
  queue->forgetPending(announced);
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), QStringList{announced[0]});
  EXPECT_EQ(whileWriting, QStringList{announced[0]});
  EXPECT_EQ(stillPending(), QStringList());
}

TEST_F(PendingInQueueTest, NeverBringsAClearedPhotoBack) {
  const QString path = photo("a.jpg");
  queue->pending()->add(path);
  queue->append(path);
  queue->clear();
  queue->saveBackupQueue();
  EXPECT_EQ(stored(), QStringList());
  EXPECT_EQ(stillPending(), QStringList());
}
