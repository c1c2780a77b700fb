// SPDX-License-Identifier: Apache-2.0
// Every operation of PosixFiles with every one of its system calls failed: once, that call for ever, and
// everything from there on.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

#include "core/base/PosixFiles.h"
#include "unit/core/base/FailingCalls.h"

using namespace ambrel;
using Failing = FailingCalls::Failing;
using Volume = FailingCalls::Volume;

namespace {

constexpr std::array kErrors = {ENOSPC, EIO, EROFS, EDQUOT, EACCES, EMFILE, ESTALE, ENOTCONN};
constexpr std::array kKinds = {Failing::Once, Failing::ThisCallForEver, Failing::EverythingForEver};

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray read(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

QStringList namesIn(const QString& folder) {
  return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                QDir::Name);
}

// One operation in a folder of its own.
struct Scenario {
  std::function<void(const QString& folder)> prepare;
  // Empty when it succeeded.
  std::function<QString(Files& files, const QString& folder)> run;
  std::function<void(const QString& folder)> expectDone;
  // `calls` says what failed.
  std::function<void(const QString& folder, const FailingCalls& calls)> expectUntouched;
  Volume volume = Volume::Complete;
};

// Whether what is to be cleaned up can still be.
bool cleansUp(const FailingCalls& calls) {
  const bool cleaningFails = calls.failedCall == "unlink" || calls.failedCall == "removeFolder";
  return calls.failing != Failing::EverythingForEver && (calls.failing == Failing::Once || !cleaningFails);
}

void runBroken(const Scenario& scenario, int failAt, int error, Failing failing) {
  const QTemporaryDir folder;
  scenario.prepare(folder.path());
  FailingCalls calls;
  calls.volume = scenario.volume;
  calls.failAt = failAt;
  calls.error = error;
  calls.failing = failing;
  PosixFiles files(calls);
  const QString message = scenario.run(files, folder.path());
  SCOPED_TRACE(calls.failedCall + " as call " + std::to_string(failAt) + ", error " + std::to_string(error) +
               ", kind " + std::to_string(static_cast<int>(failing)));
  ASSERT_FALSE(calls.failedCall.empty());
  EXPECT_TRUE(calls.openDescriptors.empty());
  // With the old name stuck and the new one as well, a linked file counts as moved.
  if (message.isEmpty() && calls.failedCall == "unlink" && failing != Failing::Once) return;
  EXPECT_EQ(message.toStdString(), std::generic_category().message(error));
  scenario.expectUntouched(folder.path(), calls);
}

void failEveryCallOf(const Scenario& scenario) {
  FailingCalls unbroken;
  unbroken.volume = scenario.volume;
  {
    const QTemporaryDir folder;
    scenario.prepare(folder.path());
    PosixFiles files(unbroken);
    ASSERT_EQ(scenario.run(files, folder.path()).toStdString(), "");
    scenario.expectDone(folder.path());
    EXPECT_TRUE(unbroken.openDescriptors.empty());
  }
  ASSERT_GT(unbroken.calls, 0);
  for (int failAt = 1; failAt <= unbroken.calls; ++failAt) {
    for (const int error : kErrors) {
      for (const Failing failing : kKinds)
        runBroken(scenario, failAt, error, failing);
    }
  }
}

Scenario replacing(bool flushed) {
  return {.prepare = [](const QString& folder) { write(folder + "/list", "the old list"); },
          .run =
              [flushed](Files& files, const QString& folder) {
                const QString path = folder + "/list";
                return (flushed ? files.replaceWhole(path, "new") : files.replaceWholeUnflushed(path, "new"))
                    .error();
              },
          .expectDone =
              [](const QString& folder) {
                EXPECT_EQ(read(folder + "/list"), "new");
                EXPECT_EQ(namesIn(folder), QStringList{"list"});
              },
          .expectUntouched =
              [](const QString& folder, const FailingCalls& calls) {
                // Only the flush of the folder can fail once the new list has its name.
                const bool named = calls.failedCall == "flush" && read(folder + "/list") == "new";
                if (!named) {
                  EXPECT_EQ(read(folder + "/list"), "the old list");
                }
                if (cleansUp(calls)) {
                  EXPECT_EQ(namesIn(folder), QStringList{"list"});
                }
              }};
}

Scenario movingAFile(Volume volume) {
  return {.prepare = [](const QString& folder) { write(folder + "/from", "photo"); },
          .run =
              [](Files& files, const QString& folder) {
                return files.moveWithoutOverwriting(folder + "/from", folder + "/to").error();
              },
          .expectDone =
              [](const QString& folder) {
                EXPECT_EQ(read(folder + "/to"), "photo");
                EXPECT_EQ(namesIn(folder), QStringList{"to"});
              },
          .expectUntouched =
              [](const QString& folder, const FailingCalls& calls) {
                EXPECT_EQ(read(folder + "/from"), "photo");
                if (cleansUp(calls)) {
                  EXPECT_EQ(namesIn(folder), QStringList{"from"});
                }
              },
          .volume = volume};
}

Scenario movingAFolder(Volume volume) {
  return {.prepare =
              [](const QString& folder) {
                ASSERT_TRUE(QDir(folder).mkdir("from"));
                write(folder + "/from/photo", "photo");
              },
          .run =
              [](Files& files, const QString& folder) {
                return files.moveWithoutOverwriting(folder + "/from", folder + "/to").error();
              },
          .expectDone =
              [](const QString& folder) {
                EXPECT_EQ(read(folder + "/to/photo"), "photo");
                EXPECT_EQ(namesIn(folder), QStringList{"to"});
              },
          .expectUntouched =
              [](const QString& folder, const FailingCalls& calls) {
                EXPECT_EQ(read(folder + "/from/photo"), "photo");
                if (cleansUp(calls)) {
                  EXPECT_EQ(namesIn(folder), QStringList{"from"});
                }
              },
          .volume = volume};
}

// The copy is taken back when anything after its making fails.
Scenario makingACopy(std::function<QString(Files&, const QString& from, const QString& to)> copy,
                     Volume volume) {
  return {.prepare = [](const QString& folder) { write(folder + "/from", "photo"); },
          .run = [copy = std::move(copy)](
                     Files& files,
                     const QString& folder) { return copy(files, folder + "/from", folder + "/to"); },
          .expectDone =
              [](const QString& folder) {
                EXPECT_EQ(read(folder + "/to"), "photo");
                EXPECT_EQ(namesIn(folder), (QStringList{"from", "to"}));
              },
          .expectUntouched =
              [](const QString& folder, const FailingCalls& calls) {
                EXPECT_EQ(read(folder + "/from"), "photo");
                if (cleansUp(calls)) {
                  EXPECT_EQ(namesIn(folder), QStringList{"from"});
                }
              },
          .volume = volume};
}

Scenario copying(Volume volume) {
  return makingACopy(
      [](Files& files, const QString& from, const QString& to) { return files.copyWhole(from, to).error(); },
      volume);
}

Scenario copyingToANewName() {
  return makingACopy(
      [](Files& files, const QString& from, const QString& to) {
        const Result<Files::FlushOfCopy> copied = files.copyToNew(from, to);
        return copied ? copied.value()().error() : copied.error();
      },
      Volume::Complete);
}

Scenario movingOverAFile() {
  return {.prepare =
              [](const QString& folder) {
                write(folder + "/from", "photo");
                write(folder + "/to", "the old copy");
              },
          .run =
              [](Files& files, const QString& folder) {
                return files.moveReplacing(folder + "/from", folder + "/to").error();
              },
          .expectDone =
              [](const QString& folder) {
                EXPECT_EQ(read(folder + "/to"), "photo");
                EXPECT_EQ(namesIn(folder), QStringList{"to"});
              },
          .expectUntouched =
              [](const QString& folder, const FailingCalls&) {
                EXPECT_EQ(read(folder + "/from"), "photo");
                EXPECT_EQ(read(folder + "/to"), "the old copy");
              }};
}

Scenario flushingAFolder() {
  return {.prepare = [](const QString& folder) { write(folder + "/photo", "photo"); },
          .run = [](Files& files, const QString& folder) { return files.flushFolder(folder).error(); },
          .expectDone = [](const QString& folder) { EXPECT_EQ(read(folder + "/photo"), "photo"); },
          .expectUntouched = [](const QString& folder,
                                const FailingCalls&) { EXPECT_EQ(read(folder + "/photo"), "photo"); }};
}

// An operation that finds its destination taken: whatever fails, the file that is there stays.
void keepTheTakenFile(const std::function<Files::MoveResult(Files&, const QString& folder)>& run,
                      Volume volume) {
  int calls = 1;
  for (int failAt = 0; failAt <= calls; ++failAt) {
    for (const Failing failing : kKinds) {
      const QTemporaryDir folder;
      write(folder.filePath("from"), "photo");
      write(folder.filePath("to"), "other");
      FailingCalls system;
      system.volume = volume;
      system.failAt = failAt;
      system.failing = failing;
      PosixFiles files(system);
      const Files::MoveResult result = run(files, folder.path());
      if (failAt == 0) {
        EXPECT_EQ(result.outcome, Files::MoveOutcome::Taken);
        calls = system.calls;
      }
      EXPECT_FALSE(result.ok());
      EXPECT_FALSE(result.error().isEmpty());
      EXPECT_EQ(read(folder.filePath("from")), "photo");
      EXPECT_EQ(read(folder.filePath("to")), "other");
    }
  }
}

}  // namespace

TEST(PosixFilesFaults, EveryFailureOfReplacingIsReportedAndKeepsTheOldFile) {
  failEveryCallOf(replacing(true));
}

TEST(PosixFilesFaults, EveryFailureOfReplacingWithoutFlushIsReportedAndKeepsTheOldFile) {
  failEveryCallOf(replacing(false));
}

TEST(PosixFilesFaults, EveryFailureOfReplacingThroughALinkKeepsLinkAndFile) {
  Scenario scenario = replacing(true);
  scenario.prepare = [](const QString& folder) {
    write(folder + "/real", "the old list");
    ASSERT_TRUE(QFile::link("real", folder + "/list"));
  };
  scenario.expectDone = [](const QString& folder) {
    EXPECT_EQ(read(folder + "/real"), "new");
    EXPECT_TRUE(QFileInfo(folder + "/list").isSymLink());
  };
  scenario.expectUntouched = [](const QString& folder, const FailingCalls& calls) {
    const bool named = calls.failedCall == "flush" && read(folder + "/real") == "new";
    if (!named) {
      EXPECT_EQ(read(folder + "/real"), "the old list");
    }
    EXPECT_TRUE(QFileInfo(folder + "/list").isSymLink());
    if (cleansUp(calls)) {
      EXPECT_EQ(namesIn(folder), (QStringList{"list", "real"}));
    }
  };
  failEveryCallOf(scenario);
}

TEST(PosixFilesFaults, EveryFailureOfACopyToANewNameIsReportedAndKeepsTheSource) {
  failEveryCallOf(copyingToANewName());
}

TEST(PosixFilesFaults, EveryFailureOfAMoveOverAFileIsReportedAndKeepsBoth) {
  failEveryCallOf(movingOverAFile());
}

TEST(PosixFilesFaults, EveryFailureToFlushAFolderIsReported) {
  failEveryCallOf(flushingAFolder());
}

TEST(PosixFilesFaults, EveryFailureOfAMoveIsReportedAndKeepsTheSource) {
  failEveryCallOf(movingAFile(Volume::Complete));
}

TEST(PosixFilesFaults, EveryFailureOfAMoveByLinkIsReportedAndKeepsTheSource) {
  failEveryCallOf(movingAFile(Volume::NoExclusiveRename));
}

TEST(PosixFilesFaults, EveryFailureOfAMoveOntoAReservedNameIsReportedAndKeepsTheSource) {
  failEveryCallOf(movingAFile(Volume::NoLinks));
}

TEST(PosixFilesFaults, EveryFailureOfMovingAFolderIsReportedAndKeepsTheSource) {
  failEveryCallOf(movingAFolder(Volume::Complete));
  failEveryCallOf(movingAFolder(Volume::NoExclusiveRename));
}

TEST(PosixFilesFaults, EveryFailureOfACopyIsReportedAndLeavesTheSourceAlone) {
  failEveryCallOf(copying(Volume::Complete));
}

TEST(PosixFilesFaults, EveryFailureOfACopyOnAPoorerVolumeIsReportedAndLeavesTheSourceAlone) {
  failEveryCallOf(copying(Volume::NoExclusiveRename));
  failEveryCallOf(copying(Volume::NoLinks));
}

TEST(PosixFilesFaults, EveryFailureOfAFlushIsReported) {
  failEveryCallOf(
      {.prepare = [](const QString& folder) { write(folder + "/list", "list"); },
       .run = [](Files& files, const QString& folder) { return files.flush(folder + "/list").error(); },
       .expectDone = [](const QString& folder) { EXPECT_EQ(read(folder + "/list"), "list"); },
       .expectUntouched = [](const QString& folder,
                             const FailingCalls&) { EXPECT_EQ(read(folder + "/list"), "list"); }});
}

TEST(PosixFilesFaults, AFailedRemovalIsReported) {
  failEveryCallOf(
      {.prepare = [](const QString& folder) { write(folder + "/list", "list"); },
       .run = [](Files& files, const QString& folder) { return files.remove(folder + "/list").error(); },
       .expectDone = [](const QString& folder) { EXPECT_TRUE(namesIn(folder).isEmpty()); },
       .expectUntouched = [](const QString& folder,
                             const FailingCalls&) { EXPECT_EQ(read(folder + "/list"), "list"); }});
}

TEST(PosixFilesFaults, AnUnreadableVolumeHasNoSpaceToTellOf) {
  FailingCalls calls;
  calls.failAt = 1;
  PosixFiles files(calls);
  EXPECT_EQ(files.volumeSpace("/").free, 0U);
  EXPECT_EQ(files.volumeSpace("/no/such/folder").total, 0U);
}

TEST(PosixFilesFaults, WhateverFailsAMoveNeverTouchesATakenName) {
  const auto move = [](Files& files, const QString& folder) {
    return files.moveWithoutOverwriting(folder + "/from", folder + "/to");
  };
  for (const Volume volume : {Volume::Complete, Volume::NoExclusiveRename, Volume::NoLinks})
    keepTheTakenFile(move, volume);
}

TEST(PosixFilesFaults, WhateverFailsACopyNeverTouchesATakenName) {
  const auto copy = [](Files& files, const QString& folder) {
    return files.copyWhole(folder + "/from", folder + "/to");
  };
  for (const Volume volume : {Volume::Complete, Volume::NoExclusiveRename, Volume::NoLinks})
    keepTheTakenFile(copy, volume);
}

// ---- Interruptions and short writes

TEST(PosixFilesFaults, AnInterruptedCallNeverEndsInHalfAFile) {
  for (const Scenario& scenario :
       {replacing(true), movingAFile(Volume::Complete), movingAFile(Volume::NoLinks),
        copying(Volume::Complete), copying(Volume::NoExclusiveRename)}) {
    for (int failAt = 1; failAt <= 14; ++failAt) {
      const QTemporaryDir folder;
      scenario.prepare(folder.path());
      FailingCalls calls;
      calls.volume = scenario.volume;
      calls.failAt = failAt;
      calls.error = EINTR;
      PosixFiles files(calls);
      if (scenario.run(files, folder.path()).isEmpty()) {
        scenario.expectDone(folder.path());
      } else {
        scenario.expectUntouched(folder.path(), calls);
      }
    }
  }
}

TEST(PosixFilesFaults, InterruptedOpensWritesAndFlushesAreRepeated) {
  const Scenario scenario = replacing(true);
  for (const std::string interrupted : {"open", "write", "flush", "close"}) {
    const QTemporaryDir folder;
    scenario.prepare(folder.path());
    FailingCalls calls;
    calls.error = EINTR;
    calls.before = [&](const std::string& call) {
      if (calls.failAt == 0 && call == interrupted) calls.failAt = calls.calls;
    };
    PosixFiles files(calls);
    EXPECT_EQ(scenario.run(files, folder.path()).toStdString(), "") << interrupted;
    EXPECT_EQ(calls.failedCall, interrupted);
    scenario.expectDone(folder.path());
  }
}

TEST(PosixFilesFaults, ACallThatIsInterruptedForEverIsGivenUp) {
  for (int failAt = 1; failAt <= 8; ++failAt) {
    const QTemporaryDir folder;
    write(folder.filePath("list"), "the old list");
    FailingCalls calls;
    calls.failAt = failAt;
    calls.error = EINTR;
    calls.failing = Failing::EverythingForEver;
    PosixFiles files(calls);
    const bool replaced = files.replaceWhole(folder.filePath("list"), "new").ok();
    EXPECT_EQ(read(folder.filePath("list")), replaced || failAt == 8 ? "new" : "the old list") << failAt;
    EXPECT_LT(calls.calls, 2000);
  }
}

TEST(PosixFilesFaults, WritesOfASingleByteStillMakeTheWholeFile) {
  const QTemporaryDir folder;
  FailingCalls calls;
  calls.longestWrite = 1;
  PosixFiles files(calls);
  const QByteArray bytes = QByteArray("whole").repeated(200);
  ASSERT_TRUE(files.replaceWhole(folder.filePath("list"), bytes));
  EXPECT_EQ(read(folder.filePath("list")), bytes);
  ASSERT_TRUE(files.copyWhole(folder.filePath("list"), folder.filePath("copy")).ok());
  EXPECT_EQ(read(folder.filePath("copy")), bytes);
}

TEST(PosixFilesFaults, AWriteThatTakesNothingIsAFullDisk) {
  const QTemporaryDir folder;
  FailingCalls calls;
  calls.longestWrite = 0;
  PosixFiles files(calls);
  EXPECT_EQ(files.replaceWhole(folder.filePath("list"), "new").error(), "No space left on device");
  EXPECT_TRUE(namesIn(folder.path()).isEmpty());
}

// ---- What a failing disk would not let go

// The disk of FailingCalls until it is mended.
class DiskForAWhile : public FailingCalls {
 public:
  DiskForAWhile() {
    failAt = 3;  // the write, when the temporary file is there; its removal fails too
    failing = Failing::EverythingForEver;
  }
  void mend() {
    failAt = 0;
    failedCall.clear();
  }
};

TEST(PosixFilesFaults, ATemporaryFileThatCouldNotBeRemovedGoesWithTheNextWriteBesideIt) {
  const QTemporaryDir folder;
  DiskForAWhile disk;
  PosixFiles files(disk);
  EXPECT_FALSE(files.replaceWholeUnflushed(folder.filePath("list"), "lost"));
  ASSERT_EQ(namesIn(folder.path()).size(), 1);
  disk.mend();
  EXPECT_TRUE(files.replaceWholeUnflushed(folder.filePath("list"), "new"));
  EXPECT_EQ(namesIn(folder.path()), QStringList{"list"});
}

TEST(PosixFilesFaults, ATemporaryFileElsewhereIsLeftAlone) {
  const QTemporaryDir folder;
  QDir(folder.path()).mkdir("a");
  QDir(folder.path()).mkdir("b");
  DiskForAWhile disk;
  PosixFiles files(disk);
  EXPECT_FALSE(files.replaceWholeUnflushed(folder.filePath("a/list"), "lost"));
  disk.mend();
  EXPECT_TRUE(files.replaceWholeUnflushed(folder.filePath("b/list"), "new"));
  EXPECT_EQ(namesIn(folder.filePath("a")).size(), 1);
  EXPECT_TRUE(files.replaceWholeUnflushed(folder.filePath("a/list"), "new"));
  EXPECT_EQ(namesIn(folder.filePath("a")), QStringList{"list"});
}

TEST(PosixFilesFaults, ATemporaryFileThatStaysStuckIsTriedAgain) {
  const QTemporaryDir folder;
  DiskForAWhile disk;
  PosixFiles files(disk);
  EXPECT_FALSE(files.replaceWholeUnflushed(folder.filePath("list"), "lost"));
  disk.mend();
  // The file that is written is there; nothing is removed but what was left.
  disk.before = [&](const std::string& call) {
    if (call == "unlink") disk.failAt = disk.calls;
  };
  EXPECT_TRUE(files.replaceWholeUnflushed(folder.filePath("list"), "new"));
  ASSERT_EQ(namesIn(folder.path()).size(), 2);
  disk.before = {};
  disk.mend();
  EXPECT_TRUE(files.replaceWholeUnflushed(folder.filePath("list"), "newer"));
  EXPECT_EQ(namesIn(folder.path()), QStringList{"list"});
}

// ---- A source that changes, a lying disk, a rival

TEST(PosixFilesFaults, ASourceCutShortDuringTheCopyIsAFailedCopy) {
  const QTemporaryDir folder;
  write(folder.filePath("from"), "photo");
  FailingCalls calls;
  calls.before = [&](const std::string& call) {
    if (call == "copyBytes") write(folder.filePath("from"), "ph");
  };
  PosixFiles files(calls);
  EXPECT_EQ(files.copyWhole(folder.filePath("from"), folder.filePath("to")).error(),
            "The file became shorter while it was copied");
  EXPECT_EQ(namesIn(folder.path()), QStringList{"from"});
}

TEST(PosixFilesFaults, ASourceThatGrowsDuringTheCopyIsAFailedCopy) {
  const QTemporaryDir folder;
  write(folder.filePath("from"), "photo");
  FailingCalls calls;
  calls.before = [&](const std::string& call) {
    if (call == "copyBytes") write(folder.filePath("from"), "photo and more");
  };
  PosixFiles files(calls);
  EXPECT_EQ(files.copyWhole(folder.filePath("from"), folder.filePath("to")).error(),
            "The file changed while it was copied");
  EXPECT_EQ(namesIn(folder.path()), QStringList{"from"});
}

TEST(PosixFilesFaults, ACopyWhoseBytesDidNotArriveIsAFailedCopy) {
  class LyingDisk : public FailingCalls {
    ssize_t copyBytes(int, int, std::size_t count) override { return static_cast<ssize_t>(count); }
  };
  const QTemporaryDir folder;
  write(folder.filePath("from"), "photo");
  LyingDisk calls;
  PosixFiles files(calls);
  EXPECT_EQ(files.copyWhole(folder.filePath("from"), folder.filePath("to")).error(),
            "The copy is incomplete");
  EXPECT_EQ(namesIn(folder.path()), QStringList{"from"});
}

TEST(PosixFilesFaults, AVolumeThatCannotFlushFoldersIsNoFailure) {
  const QTemporaryDir folder;
  for (const int unsupported : {EINVAL, ENOTSUP}) {
    FailingCalls calls;
    int flushes = 0;
    calls.error = unsupported;
    calls.before = [&](const std::string& call) {
      if (call == "flush" && ++flushes == 2) calls.failAt = calls.calls;
    };
    PosixFiles files(calls);
    EXPECT_TRUE(files.replaceWhole(folder.filePath("list"), "new"));
    EXPECT_EQ(calls.failedCall, "flush");
  }
}

TEST(PosixFilesFaults, AFolderThatIsFilledWhileItsNameIsReservedStays) {
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir("from"));
  FailingCalls calls;
  calls.volume = Volume::NoExclusiveRename;
  calls.before = [&](const std::string& call) {
    if (call == "rename") write(folder.filePath("to/rival"), "rival");
  };
  PosixFiles files(calls);
  EXPECT_EQ(files.moveWithoutOverwriting(folder.filePath("from"), folder.filePath("to")).outcome,
            Files::MoveOutcome::Taken);
  EXPECT_EQ(read(folder.filePath("to/rival")), "rival");
  EXPECT_TRUE(QFileInfo(folder.filePath("from")).isDir());
}

TEST(PosixFilesFaults, AReservedNameThatARivalHasFilledIsNotTakenAway) {
  const QTemporaryDir folder;
  write(folder.filePath("from"), "photo");
  FailingCalls calls;
  calls.volume = Volume::NoLinks;
  calls.before = [&](const std::string& call) {
    if (call != "rename") return;
    write(folder.filePath("to"), "rival");
    calls.failAt = calls.calls;
  };
  PosixFiles files(calls);
  EXPECT_FALSE(files.moveWithoutOverwriting(folder.filePath("from"), folder.filePath("to")).ok());
  EXPECT_EQ(read(folder.filePath("to")), "rival");
  EXPECT_EQ(read(folder.filePath("from")), "photo");
}

TEST(PosixFilesFaults, ATemporaryNameThatIsTakenIsTriedAgainUnderAnother) {
  const QTemporaryDir folder;
  FailingCalls calls;
  calls.error = EEXIST;
  calls.before = [&](const std::string& call) {
    if (call == "open" && calls.calls > 2 && calls.failAt == 0) calls.failAt = calls.calls;
  };
  PosixFiles files(calls);
  EXPECT_TRUE(files.replaceWhole(folder.filePath("list"), "new"));
  EXPECT_EQ(calls.failedCall, "open");
  EXPECT_EQ(namesIn(folder.path()), QStringList{"list"});
}
