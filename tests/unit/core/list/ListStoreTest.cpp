// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>
#include <unistd.h>

#include "ListFixture.h"
#include "core/list/GridFile.h"
#include "core/list/ListStore.h"

namespace ambrel {
namespace {

using Rows = std::vector<Row>;

class ListStoreTest : public ListFixture {
 protected:
  bool save(Rows rows) {
    grid.replaceAll(std::move(rows));
    return store.save(grid);
  }
  NameGrid grid;
};

// Nothing is written before the disk goes on.
class ListStoreOnABusyDisk : public ListStoreTest {
 protected:
  ListStoreOnABusyDisk() { files.hesitatesUntil = &goesOn; }
  bool add(const char* name) {
    grid.append({name});
    return impatient.save(grid);
  }
  void letTheDiskGoOn() {
    goesOn.count_down();
    impatient.finishWriting();
  }
  std::latch goesOn{1};
  ListStore impatient{files, locations, std::chrono::milliseconds(0)};
};

TEST_F(ListStoreTest, LiesInTheFolderOfTheApplication) {
  EXPECT_EQ(store.gridStorePath(),
            locations.applicationSupport + QStringLiteral("/Ambrel Tether/ambrel_grid.csv"));
}

TEST_F(ListStoreTest, CreatesItsFolderWheneverItsPathIsAskedFor) {
  QDir folder(locations.applicationSupport + QStringLiteral("/Ambrel Tether"));
  ASSERT_TRUE(folder.removeRecursively());
  (void)store.gridStorePath();
  EXPECT_TRUE(folder.exists());
}

TEST_F(ListStoreTest, GivesBackTheListThatWasSaved) {
  const Rows rows = {{"Anna", "front, \"left\"", "3", "1"}, {"Łukasz/2", "", "0", ""}};
  EXPECT_TRUE(save(rows));
  EXPECT_TRUE(store.exists());
  EXPECT_EQ(store.load(), rows);
}

TEST_F(ListStoreTest, GivesNoneWithoutAFile) {
  EXPECT_FALSE(store.exists());
  EXPECT_EQ(store.load(), std::nullopt);
}

TEST_F(ListStoreTest, GivesNoRowsForAFileThatCannotBeRead) {
  ASSERT_TRUE(QDir().mkpath(store.gridStorePath()));
  EXPECT_EQ(store.load(), Rows{});
}

TEST_F(ListStoreTest, KeepsAFileThatCouldNotBeReadAsideBeforeItSaves) {
  ASSERT_TRUE(QDir().mkpath(store.gridStorePath() + QStringLiteral("/of somebody else")));
  EXPECT_EQ(store.load(), Rows{});
  EXPECT_TRUE(save({{"Anna"}}));
  EXPECT_EQ(store.load(), (Rows{{"Anna", "", "0", ""}}));
  EXPECT_TRUE(QDir(store.gridStorePath() + QStringLiteral(".unread/of somebody else")).exists());
}

TEST_F(ListStoreTest, OverwritesNothingThatItKeptAsideBefore) {
  ASSERT_TRUE(QDir().mkpath(store.gridStorePath() + QStringLiteral(".unread")));
  ASSERT_TRUE(QDir().mkpath(store.gridStorePath()));
  EXPECT_EQ(store.load(), Rows{});
  EXPECT_TRUE(save({{"Anna"}}));
  EXPECT_TRUE(QDir(store.gridStorePath() + QStringLiteral(".unread-2")).exists());
}

TEST_F(ListStoreTest, TakesAFileThatCannotBeSeenForAListThatCannotBeRead) {
  const QByteArray path = QFile::encodeName(store.gridStorePath());
  ASSERT_EQ(::symlink(path.constData(), path.constData()),
            0);  // a loop: every look fails, and not for want of it
  EXPECT_EQ(store.load(), Rows{});
}

TEST_F(ListStoreTest, ReplacesWhatAnotherProgramWroteMeanwhileByTheWholeList) {
  save({{"Anna"}, {"Ben"}});
  QFile file(store.gridStorePath());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append));
  file.write("\nSomebody,\"else");
  file.close();
  EXPECT_TRUE(save({{"Anna"}, {"Cara"}}));
  EXPECT_EQ(store.load(), (Rows{{"Anna", "", "0", ""}, {"Cara", "", "0", ""}}));
}

TEST_F(ListStoreTest, KeepsALinkThatStandsInItsPlaceAndSavesToWhereItLeads) {
  const QString elsewhere = locations.applicationSupport + QStringLiteral("/elsewhere.csv");
  ASSERT_TRUE(QFile::link(elsewhere, store.gridStorePath()));
  QFile file(elsewhere);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  EXPECT_TRUE(save({{"Anna"}}));
  EXPECT_EQ(QFile::symLinkTarget(store.gridStorePath()), elsewhere);
  EXPECT_EQ(readGrid(elsewhere), (Rows{{"Anna", "", "0", ""}}));
}

TEST_F(ListStoreTest, GivesTheListThatItHasReadAheadOnce) {
  const Rows rows = {{"Anna", "front", "3", "1"}, {"ANNA", "", "0", ""}};
  save(rows);
  store.loadAhead();
  const std::optional<GridReadAhead::List> read = store.takeReadAhead();
  ASSERT_TRUE(read);
  EXPECT_EQ(read->rows, rows);
  EXPECT_EQ(read->duplicates.lowerCased(), QSet<QString>{QStringLiteral("anna")});
  EXPECT_FALSE(store.takeReadAhead());
  EXPECT_EQ(store.load(), rows);
}

TEST_F(ListStoreTest, ForgetsTheListThatItHasReadAheadWhenItSavesAnother) {
  save({{"Anna"}});
  store.loadAhead();
  save({{"Cara"}});
  EXPECT_FALSE(store.takeReadAhead());
  EXPECT_EQ(store.load(), (Rows{{"Cara", "", "0", ""}}));
}

// A superuser may write anywhere, so that the process is somebody else for a while.
class AsNobody {
 public:
  AsNobody() {
    if (::geteuid() == 0) {
      EXPECT_EQ(::seteuid(kNobody), 0);
    }
  }
  ~AsNobody() { EXPECT_EQ(::seteuid(::getuid()), 0); }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
};

TEST_F(ListStoreTest, KeepsTheListInAFolderThatMayNotBeWrittenAndSaysThatItFailed) {
  save({{"Anna"}});
  store.finishFlush();
  const QString folder = QFileInfo(store.gridStorePath()).path();
  ASSERT_EQ(::chmod(QFile::encodeName(home.path()).constData(), 0755), 0);
  ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0555), 0);
  {
    const AsNobody nobody;
    EXPECT_FALSE(save({{"Ben"}}));
  }
  ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
  EXPECT_TRUE(store.isUnsaved());
  EXPECT_EQ(store.load(), (Rows{{"Anna", "", "0", ""}}));
}

TEST_F(ListStoreTest, HasWrittenWhenItReturnsAndFlushesBehindOnAnotherThread) {
  save({{"Anna"}});
  EXPECT_EQ(files.replacements, 1);
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nAnna,,0,");
  store.finishFlush();
  EXPECT_EQ(files.flushes, 1);
  EXPECT_NE(files.replacingThread.load(), std::this_thread::get_id());
  EXPECT_NE(files.flushingThread.load(), std::this_thread::get_id());
  EXPECT_NE(files.flushingThread.load(), files.replacingThread.load());
}

TEST_F(ListStoreOnABusyDisk, IsNotWaitedFor) {
  EXPECT_TRUE(add("Anna"));
  EXPECT_FALSE(impatient.finishWritingWithin(std::chrono::milliseconds(1)));
  EXPECT_FALSE(impatient.exists());
  letTheDiskGoOn();
  EXPECT_TRUE(impatient.finishWritingWithin(std::chrono::milliseconds(0)));
  EXPECT_EQ(impatient.load(), (Rows{{"Anna", "", "0", ""}}));
}

TEST_F(ListStoreOnABusyDisk, WritesTheLastListThatCameMeanwhile) {
  for (const char* name : {"Anna", "Ben", "Cara"})
    EXPECT_TRUE(add(name));
  letTheDiskGoOn();
  EXPECT_EQ(impatient.load(), (Rows{{"Anna", "", "0", ""}, {"Ben", "", "0", ""}, {"Cara", "", "0", ""}}));
  EXPECT_LE(files.replacements, 2);
}

TEST_F(ListStoreOnABusyDisk, TellsAfterwardsThatItFailed) {
  files.fail = true;
  EXPECT_TRUE(add("Anna"));
  EXPECT_FALSE(impatient.isUnsaved());
  letTheDiskGoOn();
  EXPECT_TRUE(impatient.isUnsaved());
  files.fail = false;
  EXPECT_TRUE(add("Ben"));
  impatient.finishWriting();
  EXPECT_FALSE(impatient.isUnsaved());
}

TEST_F(ListStoreOnABusyDisk, RemovesTheFileThatIsStillBeingWritten) {
  EXPECT_TRUE(add("Anna"));
  impatient.remove();
  letTheDiskGoOn();
  EXPECT_FALSE(impatient.exists());
}

TEST_F(ListStoreTest, FlushesTheLastOfManySaves) {
  for (int i = 0; i < 50; ++i)
    save({{std::to_string(i)}});
  store.finishFlush();
  EXPECT_EQ(files.replacements, 50);
  EXPECT_GE(files.flushes, 1);
  EXPECT_LE(files.flushes, 50);
  EXPECT_EQ(store.load(), (Rows{{"49", "", "0", ""}}));
}

TEST_F(ListStoreTest, KeepsTheListOfBeforeWhenItCannotBeWritten) {
  save({{"Anna", "", "0", ""}});
  store.finishFlush();
  files.fail = true;
  EXPECT_FALSE(save({{"Ben"}}));
  store.finishFlush();
  EXPECT_EQ(files.flushes, 1);
  EXPECT_EQ(store.load(), (Rows{{"Anna", "", "0", ""}}));
}

TEST_F(ListStoreTest, FlushesBeforeItEnds) {
  {
    ListStore brief(files, locations);
    grid.append({"Anna"});
    brief.save(grid);
  }
  EXPECT_EQ(files.flushes, 1);
}

TEST_F(ListStoreTest, LeavesNothingBesideTheStore) {
  save({{"Anna"}});
  save({{"Ben"}});
  EXPECT_EQ(QDir(locations.applicationSupport + QStringLiteral("/Ambrel Tether"))
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList(QStringLiteral("ambrel_grid.csv")));
}

TEST_F(ListStoreTest, RemovesTheFileAndMindsNoneBeingThere) {
  save({{"Anna"}});
  store.remove();
  EXPECT_FALSE(store.exists());
  store.remove();
  EXPECT_EQ(store.load(), std::nullopt);
}

}  // namespace
}  // namespace ambrel
