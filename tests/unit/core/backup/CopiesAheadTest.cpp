// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <semaphore>
#include <sys/stat.h>
#include <thread>

#include "core/backup/CopiesAhead.h"
#include "core/base/PosixFiles.h"
#include "support/BrokenFiles.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using namespace std::chrono_literals;
using Operation = BrokenFiles::Operation;

namespace {

class CopiesAheadTest : public ::testing::Test {
 protected:
  static constexpr std::chrono::hours kAnyDriveIsQuick{1000};

  CopiesAheadTest() { QDir().mkpath(folder.filePath("Copies")); }

  // Waits for copies that the test has left behind.
  void TearDown() override { ahead->keepOnly({}); }

  CopyPlace photo(const QString& name, const QByteArray& bytes = "photo") {
    const QString source = folder.filePath(name);
    QFile file(source);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return {source, folder.filePath("Copies/") + name, folder.filePath("Copies")};
  }
  std::vector<CopyPlace> photos(const QStringList& names) {
    std::vector<CopyPlace> places;
    for (const QString& name : names)
      places.push_back(photo(name));
    return places;
  }
  static struct stat statusOf(const CopyPlace& place) {
    struct stat status = {};
    EXPECT_EQ(::stat(QFile::encodeName(place.source).constData(), &status), 0);
    return status;
  }
  Result<void> copy(const CopyPlace& place, const std::vector<CopyPlace>& next = {}) {
    return ahead->copy(place, statusOf(place), next);
  }
  // From now on it is known whether the drive is quick.
  void copyAFirstOne() { ASSERT_TRUE(copy(photo("first"))); }
  // The next flush takes until `count` copies more than now have been begun, or none is to come.
  void flushUntilCopied(int count) {
    const int wanted = files.calls(Operation::CopyToNew) + count;
    files.callBefore(Operation::FlushOfCopy, [this, wanted](const QString&, const QString&) {
      (void)waitUntil([&] { return files.calls(Operation::CopyToNew) >= wanted; });
    });
  }
  static bool waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + 60s;
    while (!condition() && std::chrono::steady_clock::now() < end)
      std::this_thread::yield();
    return condition();
  }
  QStringList copies() const { return QDir(folder.filePath("Copies")).entryList(QDir::Files, QDir::Name); }
  int copiesBegun() const { return files.calls(Operation::CopyToNew); }
  static QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }

  QTemporaryDir folder;
  PosixFiles realFiles;
  BrokenFiles files{realFiles};
  std::shared_ptr<Gate> gate = std::make_shared<Gate>();
  std::unique_ptr<CopiesAhead> ahead = std::make_unique<CopiesAhead>(files, gate, kAnyDriveIsQuick);
};

}  // namespace

TEST_F(CopiesAheadTest, MakesAFlushedCopyUnderItsTemporaryName) {
  ASSERT_TRUE(copy(photo("a")));
  EXPECT_EQ(copies(), QStringList{"a.ambrel_tmp"});
  EXPECT_EQ(read(folder.filePath("Copies/a.ambrel_tmp")), "photo");
  EXPECT_EQ(files.calls(Operation::FlushOfCopy), 1);
}

TEST_F(CopiesAheadTest, GoesAloneUntilItKnowsTheDrive) {
  ASSERT_TRUE(copy(photo("a"), photos({"b", "c"})));
  EXPECT_TRUE(ahead->isEmpty());
  EXPECT_EQ(copiesBegun(), 1);
}

TEST_F(CopiesAheadTest, CopiesTheNextPhotosInTheirOrderWhileOneIsFlushed) {
  copyAFirstOne();
  QStringList order;
  files.callBefore(Operation::CopyToNew,
                   [&](const QString& from, const QString&) { order.append(from.section('/', -1)); });
  const std::vector<CopyPlace> next = photos({"d", "c", "b"});
  flushUntilCopied(4);
  ASSERT_TRUE(copy(photo("a"), next));
  EXPECT_EQ(order, (QStringList{"a", "d", "c", "b"}));
  EXPECT_FALSE(ahead->isEmpty());
  for (const CopyPlace& place : next)
    ASSERT_TRUE(copy(place));
  EXPECT_EQ(copiesBegun(), 5);
  EXPECT_TRUE(ahead->isEmpty());
}

TEST_F(CopiesAheadTest, NeverReturnsBeforeACopyThatWasMadeAheadIsFlushed) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = photos({"b"});
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  ASSERT_TRUE(copy(next[0]));
  EXPECT_EQ(files.calls(Operation::FlushOfCopy), 3);
}

TEST_F(CopiesAheadTest, DoesNotGoAheadOnASlowDrive) {
  ahead = std::make_unique<CopiesAhead>(files, gate, 0ms);
  copyAFirstOne();
  ASSERT_TRUE(copy(photo("a"), photos({"b"})));
  EXPECT_TRUE(ahead->isEmpty());
  EXPECT_EQ(copiesBegun(), 2);
}

TEST_F(CopiesAheadTest, JudgesADriveByTheShareThatACopyHadOfIt) {
  EXPECT_TRUE(CopiesAhead::isQuick(199ms, 1, 200ms));
  EXPECT_FALSE(CopiesAhead::isQuick(200ms, 1, 200ms));
  EXPECT_TRUE(CopiesAhead::isQuick(900ms, 8, 200ms));
  EXPECT_FALSE(CopiesAhead::isQuick(1600ms, 8, 200ms));
}

TEST_F(CopiesAheadTest, DoesNotGoAheadAfterAFailure) {
  copyAFirstOne();
  files.failCall(Operation::FlushOfCopy, 1, "broken");
  EXPECT_EQ(copy(photo("a")).error(), "broken");
  ASSERT_TRUE(copy(photo("a"), photos({"b"})));
  EXPECT_TRUE(ahead->isEmpty());
}

TEST_F(CopiesAheadTest, BeginsNoCopyWhileTheGateIsShut) {
  const CopyPlace place = photo("a");
  bool wasOpen = false;
  files.callBefore(Operation::CopyToNew, [&](const QString&, const QString&) { wasOpen = gate->isOpen(); });
  gate->shut();
  std::binary_semaphore asked{0};
  std::thread job([&] {
    asked.release();
    EXPECT_TRUE(copy(place));
  });
  asked.acquire();
  for (int i = 0; i < 1000; ++i)
    std::this_thread::yield();
  gate->open();
  job.join();
  EXPECT_TRUE(wasOpen);
  EXPECT_EQ(copiesBegun(), 1);
}

TEST_F(CopiesAheadTest, GoesNoFurtherAheadOnceTheGateIsShutAndKeepsWhatItHas) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = photos({"b", "c"});
  files.callBefore(Operation::CopyToNew, [&](const QString& from, const QString&) {
    if (from == next[0].source) gate->shut();
  });
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  gate->open();
  ASSERT_TRUE(copy(next[0]));
  EXPECT_TRUE(ahead->isEmpty());
  EXPECT_EQ(copiesBegun(), 3);
}

TEST_F(CopiesAheadTest, GoesOnlySoManyPhotosAhead) {
  copyAFirstOne();
  QStringList names;
  for (int i = 0; i < 30; ++i)
    names.append(QStringLiteral("next %1").arg(i));
  const std::vector<CopyPlace> next = photos(names);
  flushUntilCopied(1 + static_cast<int>(CopiesAhead::kMaxCopies) - 1);
  ASSERT_TRUE(copy(photo("a"), next));
  ahead->keepOnly(next);
  ASSERT_FALSE(ahead->isEmpty());
  ASSERT_TRUE(waitUntil([this] { return copies().size() >= 16; }));
  EXPECT_LE(copiesBegun(), 2 + static_cast<int>(CopiesAhead::kMaxCopies));
}

TEST_F(CopiesAheadTest, GoesOnlySoManyBytesAhead) {
  copyAFirstOne();
  std::vector<CopyPlace> next = photos({"b", "c"});
  for (const CopyPlace& place : next)
    ASSERT_TRUE(QFile::resize(place.source, static_cast<qint64>(CopiesAhead::kMaxBytes) * 2 / 3));
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  ASSERT_TRUE(copy(next[0]));
  EXPECT_TRUE(ahead->isEmpty());
  EXPECT_EQ(copiesBegun(), 3);
}

TEST_F(CopiesAheadTest, PassesOverAPhotoWhoseCopyIsThereAndStopsAtAnEmptyOne) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = {photo("there"), photo("b"), photo("empty", ""), photo("c")};
  ASSERT_TRUE(QFile::copy(next[0].source, next[0].destination));
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  EXPECT_FALSE(ahead->isEmpty());
  EXPECT_EQ(copies(), (QStringList{"a.ambrel_tmp", "b.ambrel_tmp", "first.ambrel_tmp", "there"}));
}

TEST_F(CopiesAheadTest, NeverMakesTwoCopiesAtOnceWhoseNamesADriveMayTakeForOne) {
  copyAFirstOne();
  const CopyPlace a = photo("a");
  const QString inCopies = folder.filePath("Copies/");
  for (const QString name : {"a", "A"}) {
    CopyPlace other = photo("b", "another photo");
    other.destination = inCopies + name;
    ASSERT_TRUE(copy(a, {other}));
    EXPECT_TRUE(ahead->isEmpty());
    EXPECT_EQ(read(a.temporary()), "photo");
  }
  CopyPlace composed = photo("c");
  composed.destination = inCopies + QStringLiteral("\u00fc");
  CopyPlace decomposed = photo("d");
  decomposed.destination = inCopies + QStringLiteral("u\u0308");
  flushUntilCopied(2);
  ASSERT_TRUE(copy(a, {composed, decomposed}));
  ASSERT_TRUE(copy(composed));
  EXPECT_TRUE(ahead->isEmpty());
}

TEST_F(CopiesAheadTest, MakesACopyAnewOfAPhotoThatHasChangedSince) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = photos({"b"});
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  photo("b", "another photo");
  ASSERT_TRUE(copy(next[0]));
  EXPECT_EQ(read(next[0].temporary()), "another photo");
}

TEST_F(CopiesAheadTest, TriesAgainInItsTurnWhatFailedAhead) {
  copyAFirstOne();
  files.failCall(Operation::CopyToNew, 2, "no room yet");
  const std::vector<CopyPlace> next = photos({"b"});
  flushUntilCopied(2);
  ASSERT_TRUE(copy(photo("a"), next));
  EXPECT_TRUE(copy(next[0]));
  EXPECT_EQ(read(next[0].temporary()), "photo");
}

TEST_F(CopiesAheadTest, TriesAgainInItsTurnWhatCouldNotBeFlushedAhead) {
  copyAFirstOne();
  files.failCall(Operation::FlushOfCopy, 2, "not now");
  const std::vector<CopyPlace> next = photos({"b"});
  flushUntilCopied(2);
  const Result<void> first = copy(photo("a"), next);
  const Result<void> second = copy(next[0]);
  EXPECT_TRUE(first || second);  // either flush may come second, and one that is waited for fails
  EXPECT_TRUE(second);
  EXPECT_EQ(read(next[0].temporary()), "photo");
}

TEST_F(CopiesAheadTest, RemovesCopiesThatAreNoLongerWanted) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = photos({"b", "c"});
  flushUntilCopied(3);
  ASSERT_TRUE(copy(photo("a"), next));
  ahead->keepOnly({next[1]});
  EXPECT_EQ(copies(), (QStringList{"a.ambrel_tmp", "c.ambrel_tmp", "first.ambrel_tmp"}));
  ahead->keepOnly({});
  EXPECT_TRUE(ahead->isEmpty());
  EXPECT_EQ(copies(), (QStringList{"a.ambrel_tmp", "first.ambrel_tmp"}));
}

TEST_F(CopiesAheadTest, FlushesEachFolderOnceForAllThatMovedThere) {
  EXPECT_TRUE(ahead->isSettled());
  for (const QString path : {"/Ann/1", "/Ann/2", "/Bob/1"})
    ahead->hasName(folder.filePath("Copies") + path);
  EXPECT_FALSE(ahead->isSettled());
  EXPECT_TRUE(ahead->isFlushDue());
  QStringList flushed;
  files.callBefore(Operation::FlushFolder,
                   [&](const QString& path, const QString&) { flushed.append(path.section('/', -1)); });
  QDir(folder.filePath("Copies")).mkpath("Ann");
  EXPECT_EQ(ahead->flushFolders().error(), "No such file or directory");
  EXPECT_EQ(flushed, (QStringList{"Ann", "Bob"}));
  EXPECT_TRUE(ahead->isSettled());
  EXPECT_FALSE(ahead->isFlushDue());
}

TEST_F(CopiesAheadTest, LetsMovesWaitForThoseOfTheCopiesAhead) {
  copyAFirstOne();
  const std::vector<CopyPlace> next = photos({"b"});
  flushUntilCopied(2);
  const CopyPlace a = photo("a");
  ASSERT_TRUE(copy(a, next));
  ahead->hasName(a.destination);
  EXPECT_FALSE(ahead->isSettled());
  ASSERT_TRUE(copy(next[0]));
  EXPECT_TRUE(ahead->isFlushDue());
}
