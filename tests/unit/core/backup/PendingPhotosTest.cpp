// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "core/backup/PendingPhotos.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

class PendingPhotosTest : public ::testing::Test {
 protected:
  QStringList afterRestart() const { return PendingPhotos(links).paths(); }
  QStringList names() const {
    return QDir(links).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  }

  QTemporaryDir folder;
  const QString links = folder.filePath("pending");
  PendingPhotos pending{links};
};

}  // namespace

TEST_F(PendingPhotosTest, RemembersPathsInTheirOrderAcrossARestart) {
  for (const QString path : {"/Shots/c", "/Shots/a", "/Shots/b"})
    pending.add(path);
  EXPECT_EQ(afterRestart(), (QStringList{"/Shots/c", "/Shots/a", "/Shots/b"}));
}

TEST_F(PendingPhotosTest, TakesManyPathsAtOnce) {
  pending.add("/Shots/b");
  pending.add(QStringList{"/Shots/c", "/Shots/b", "/Shots/a"});
  EXPECT_EQ(afterRestart(), (QStringList{"/Shots/b", "/Shots/c", "/Shots/a"}));
}

TEST_F(PendingPhotosTest, ForgetsWhatIsSettled) {
  pending.add("/Shots/a");
  pending.add("/Shots/b");
  pending.settle("/Shots/a");
  pending.settle("/Shots/never heard of");
  EXPECT_EQ(afterRestart(), QStringList{"/Shots/b"});
}

TEST_F(PendingPhotosTest, ForgetsWhatAnEarlierRunLeftOnceThatIsSettled) {
  pending.add("/Shots/a");
  PendingPhotos next(links);
  EXPECT_EQ(next.paths(), QStringList{"/Shots/a"});
  next.settle("/Shots/a");
  EXPECT_EQ(names(), QStringList());
}

TEST_F(PendingPhotosTest, HoldsAPathOnce) {
  pending.add("/Shots/a");
  pending.add("/Shots/a");
  EXPECT_EQ(names().size(), 1);
  PendingPhotos second(links);
  second.add("/Shots/a");
  EXPECT_EQ(afterRestart(), QStringList{"/Shots/a"});
  EXPECT_EQ(names().size(), 1);
}

TEST_F(PendingPhotosTest, KeepsEveryPathThatAFileCanBear) {
  QStringList paths = {"/Shots/M\u00fcller \u2014 \U0001F4F7\n_0001.JPG", "/Shots/" + QString(4000, 'x'),
                       QString("/Shots/not text ") + QChar(0xDCFF)};
  for (const QString& path : paths)
    pending.add(path);
  EXPECT_EQ(afterRestart(), paths);
}

TEST_F(PendingPhotosTest, LeavesOutAPathThatNothingCanBear) {
  pending.add(QString("/Shots/a") + QChar::Null + "b");
  pending.add("/Shots/" + QString(5000, 'x'));
  EXPECT_EQ(names(), QStringList());
}

TEST_F(PendingPhotosTest, TakesAwayWhatIsNoLinkToAnAbsolutePath) {
  ASSERT_TRUE(QDir().mkpath(links));
  ASSERT_TRUE(QFile::link("relative", links + "/1"));
  QFile file(links + "/2");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_EQ(afterRestart(), QStringList());
  EXPECT_EQ(names(), QStringList());
}

TEST_F(PendingPhotosTest, MakesItsFolderAnew) {
  pending.add("/Shots/a");
  ASSERT_TRUE(QDir(links).removeRecursively());
  pending.settle("/Shots/a");
  pending.add("/Shots/b");
  EXPECT_EQ(afterRestart(), QStringList{"/Shots/b"});
}

TEST_F(PendingPhotosTest, DoesWithoutAFolderThatCannotBeMade) {
  PendingPhotos nowhere(folder.filePath("missing/pending"));
  nowhere.add("/Shots/a");
  EXPECT_EQ(nowhere.paths(), QStringList());
}

TEST_F(PendingPhotosTest, RemembersAPhotoOnAnotherVolume) {
  pending.add("/dev/shm/a");
  EXPECT_EQ(afterRestart(), QStringList{"/dev/shm/a"});
}

TEST_F(PendingPhotosTest, ServesSeveralThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kPaths = 200;
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([this, number] {
      for (int i = 0; i < kPaths; ++i) {
        const QString path = QStringLiteral("/Shots/%1-%2").arg(number).arg(i);
        pending.add(path);
        if (i % 2 == 0) pending.settle(path);
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(afterRestart().size(), kThreads * kPaths / 2);
}
