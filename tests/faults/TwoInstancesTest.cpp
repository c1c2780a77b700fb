// SPDX-License-Identifier: Apache-2.0
// The lock keeps a second application out on one machine. On a shared folder two machines can still meet.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

#include "core/backup/BackupQueue.h"
#include "core/backup/QueueFile.h"
#include "core/base/PosixFiles.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/PhotoFiler.h"
#include "core/list/GridFile.h"
#include "core/list/ListStore.h"

namespace ambrel {
namespace {

constexpr int kPhotosEach = 500;
constexpr int kSavesEach = 500;
constexpr std::chrono::seconds kLongEnough{120};

class TwoInstances : public ::testing::Test {
 protected:
  // Runs `work` in two processes at once, each with its number; whether both said that all is well.
  static bool inTwoProcesses(const std::function<bool(int)>& work) {
    pid_t children[2] = {};
    for (int number = 0; number < 2; ++number) {
      children[number] = fork();
      if (children[number] == 0) ::_exit(work(number) ? 0 : 1);
    }
    bool well = true;
    for (const pid_t child : children) {
      int status = 1;
      well &= waitpid(child, &status, 0) == child && status == 0;
    }
    return well;
  }

  QString path(const QString& name) const { return _folder.filePath(name); }

  static QByteArray photo(int instance, int number) {
    return "photo " + QByteArray::number(instance) + '/' + QByteArray::number(number);
  }

  bool fileAll(int instance) const {
    PosixFiles files;
    CaptureSettings settings;
    settings.setTargetDir(path("target"));
    int failures = 0;
    PhotoFiler filer(files, {.targetDir = [&] { return settings.targetDir(); },
                             .selectedQueueItemName = [] { return std::optional<std::string>("Bob"); },
                             .enabledSuffixString = [] { return QString(); },
                             .captureRow = [] { return qint64{0}; },
                             .counter = [&] { return settings.counter(); },
                             .advanceCounterPast = [&](qint64 used) { settings.advanceCounterPast(used); }});
    QObject::connect(&filer, &PhotoFiler::failed, [&failures] { ++failures; });
    for (int number = 0; number < kPhotosEach; ++number) {
      QFile file(path(QStringLiteral("download-%1-%2.JPG").arg(instance).arg(number)));
      if (!file.open(QIODevice::WriteOnly)) return false;
      file.write(photo(instance, number));
      file.close();
      filer.handleDownloadedPath(file.fileName());
    }
    return filer.finishQueued(kLongEnough) && failures == 0;
  }

  QTemporaryDir _folder;
};

TEST_F(TwoInstances, FileIntoOneFolderWithoutOverwritingEachOther) {
  ASSERT_TRUE(inTwoProcesses([this](int number) { return fileAll(number); }));
  std::set<QByteArray> contents;
  QDirIterator walk(path("target"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
  int files = 0;
  for (; walk.hasNext(); ++files) {
    QFile file(walk.next());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    contents.insert(file.readAll());
  }
  EXPECT_EQ(files, 2 * kPhotosEach);
  for (int instance = 0; instance < 2; ++instance)
    for (int number = 0; number < kPhotosEach; ++number)
      EXPECT_TRUE(contents.contains(photo(instance, number)));
}

TEST_F(TwoInstances, SaveOneListAndLeaveOneOfTheTwoWhole) {
  const Locations locations = Locations::below(_folder.path());
  const auto rowsOf = [](int instance, int save) {
    return std::vector<Row>(200,
                            Row{"name of " + std::to_string(instance), "note", std::to_string(save), ""});
  };
  ASSERT_TRUE(inTwoProcesses([&](int instance) {
    PosixFiles files;
    ListStore store(files, locations);
    NameGrid grid;
    for (int save = 1; save <= kSavesEach; ++save) {
      grid.replaceAll(rowsOf(instance, save));
      if (!store.save(grid)) return false;
      // At any moment the file is one list, whole: the own one or the other's.
      const auto found = readGrid(store.gridStorePath());
      if (!found || found->size() != 200 || found->front() != found->back()) return false;
    }
    return true;
  }));
  PosixFiles files;
  const auto left = ListStore(files, locations).load();
  EXPECT_TRUE(left == rowsOf(0, kSavesEach) || left == rowsOf(1, kSavesEach));
}

TEST_F(TwoInstances, SaveOneBackupQueueAndLeaveOneOfTheTwoWhole) {
  const Locations locations = Locations::below(_folder.path());
  ASSERT_TRUE(inTwoProcesses([&](int instance) {
    PosixFiles files;
    BackupQueue queue(files, locations);
    for (int number = 0; number < 100; ++number) {
      queue.append(QStringLiteral("/photos/%1/%2.JPG").arg(instance).arg(number));
      queue.saveBackupQueue();
      queue.finishWriting();
      if (!readQueueFile(queue.backupQueuePath())) return false;
    }
    return true;
  }));
  const QString file = locations.dataFile(QStringLiteral("backup_queue.plist"));
  EXPECT_EQ(readQueueFile(file).value().size(), 100);
}

}  // namespace
}  // namespace ambrel
