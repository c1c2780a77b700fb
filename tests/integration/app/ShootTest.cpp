// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <map>
#include <signal.h>

#include "integration/app/LiveSession.h"

using namespace ambrel;

namespace {

// How often each content lies below the target folder, by SHA-256.
std::map<std::string, int> contentsBelowTarget(const LiveSession& session) {
  std::map<std::string, int> contents;
  for (const QString& path : session.filesBelowTarget())
    ++contents[sha256OfFile(path.toStdString())];
  return contents;
}

TEST(Shoot, FilesTwentyPhotosOverThreeNamesWithTheCablePulledInATransfer) {
  constexpr int kShots = 20;
  constexpr int kCutShot = 9;
  LiveSession session;
  session.shootWith({"Anna", "José Álvarez", "A/B: Team"});

  for (int shot = 0; shot < kShots; ++shot) {
    session.select(shot % 3);
    if (shot != kCutShot) {
      session.shoot("size=300000");
      continue;
    }
    session.watched = false;
    session.camera.command("cable in=0 after=150000");
    session.camera.command("shoot size=300000");
    ASSERT_TRUE(session.waitUntil([&] { return !session.app->isWatching(); }));
    session.camera.command("cable in=1");
    ASSERT_TRUE(session.waitUntil([&] { return session.watched; }));
  }

  std::map<std::string, int> contents = contentsBelowTarget(session);
  std::vector<SimulatedPhoto> missing;
  for (const SimulatedPhoto& photo : session.camera.photos()) {
    EXPECT_LE(contents[photo.sha256], 1) << photo.name;
    if (contents[photo.sha256] == 0) missing.push_back(photo);
  }
  // Only the photo that was on its way may be missing, and then it is still on the card.
  ASSERT_LE(missing.size(), 1u);
  if (!missing.empty()) {
    EXPECT_EQ(missing.front().shot, static_cast<unsigned>(kCutShot + 1));
    EXPECT_EQ(missing.front().place, "card");
    EXPECT_FALSE(missing.front().deleted);
  }
  EXPECT_EQ(session.reported.size(), static_cast<qsizetype>(session.filed.size()));
  EXPECT_EQ(session.filesBelowTarget().size(), session.reported.size());
  qint64 counted = 0;
  for (qint64 row = 0; row < 3; ++row)
    counted += session.app->list().grid().capturedForModelRow(row);
  EXPECT_EQ(counted, session.reported.size());
}

// Everything that an operator and bad luck do to a session, and then every photo is accounted for: filed once
// with its bytes, or still on the card, or lost from the camera's own memory with an error that said so.
TEST(Shoot, AccountsForEveryPhotoThroughTagsCutsSaveModesReconnectsAndKills) {
  LiveSession session;
  session.app->tags().loadSuffixes();
  session.shootWith({"Anna", "Ben", "Cara"});
  session.operatorSeam.willAnswer(Answer{0, {"FR", "_FR", "", "", "", "", "", "", "", ""}});
  session.app->tags().manageSuffixes();
  session.shoot("n=3", 3);

  session.select(1);
  session.app->tags().suffixToggled(0, true);
  session.shoot("kind=pair", 2);

  session.watched = false;
  session.camera.command("cable in=0 after=100000 how=reset");
  session.camera.command("shoot size=400000");
  ASSERT_TRUE(session.waitUntil([&] { return !session.app->isWatching(); }));
  session.camera.command("cable in=1");
  ASSERT_TRUE(session.waitUntil([&] { return session.watched; }));
  session.shoot();

  session.watched = false;
  session.app->selectDestination(1);
  session.app->forceCameraReconnect();
  ASSERT_TRUE(session.waitUntil([&] { return session.watched; }));
  session.select(2);
  const std::size_t beforeDisk = session.filed.size();
  session.errors.clear();
  session.camera.command("shoot n=2");
  ASSERT_TRUE(session.waitUntil([&] {
    return session.filed.size() + static_cast<std::size_t>(session.errors.size()) >= beforeDisk + 2;
  }));
  const bool hostLossTold = !session.errors.isEmpty();

  session.watched = false;
  ::kill(static_cast<pid_t>(session.link->processId()), SIGKILL);
  ASSERT_TRUE(session.waitUntil([&] { return session.watched; }));
  session.shoot();

  std::map<std::string, int> contents = contentsBelowTarget(session);
  for (const SimulatedPhoto& photo : session.camera.photos()) {
    const int copies = contents[photo.sha256];
    const bool onCard = photo.place == "card" && !photo.deleted;
    EXPECT_TRUE(copies == 1 || (copies == 0 && (onCard || hostLossTold)))
        << photo.name << " filed " << copies << " times";
  }
  EXPECT_EQ(session.filesBelowTarget().size(), session.reported.size());
  EXPECT_TRUE(QDir(session.target() + "/Ben_FR").exists());
}

TEST(Shoot, NumbersTheFilesOfAPairAndKeepsTheirBytes) {
  LiveSession session;
  session.shootWith({"Jane Doe"});
  session.shoot("kind=pair", 2);
  ASSERT_EQ(session.filesBelowTarget().size(), 2);
  const std::map<std::string, int> contents = contentsBelowTarget(session);
  for (const SimulatedPhoto& photo : session.camera.photos())
    EXPECT_TRUE(contents.contains(photo.sha256));
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 2);
}

TEST(Shoot, OverwritesNothingThatLiesInTheFolderAlready) {
  LiveSession session;
  QDir().mkpath(session.target() + "/Anna");
  QFile earlier(session.target() + "/Anna/Anna_0001.JPG");
  ASSERT_TRUE(earlier.open(QIODevice::WriteOnly));
  earlier.write("of last year");
  earlier.close();
  session.shootWith({"Anna"});
  session.shoot();
  EXPECT_EQ(session.filed.front().path, session.target() + "/Anna/Anna_0002.JPG");
  ASSERT_TRUE(earlier.open(QIODevice::ReadOnly));
  EXPECT_EQ(earlier.readAll(), "of last year");
}

TEST(Shoot, ComesBackAfterTheWorkerWasKilled) {
  LiveSession session;
  session.shootWith({"Anna"});
  session.shoot();
  ASSERT_GT(session.link->processId(), 0);
  session.watched = false;
  ::kill(static_cast<pid_t>(session.link->processId()), SIGKILL);
  ASSERT_TRUE(session.waitUntil([&] { return !session.app->isWatching(); }));
  ASSERT_TRUE(session.waitUntil([&] { return session.watched; }));
  session.shoot();
  EXPECT_EQ(session.filesBelowTarget().size(), 2);
}

TEST(Shoot, BacksUpAPersonWhoIsRenamedWhileTheDriveIsAway) {
  LiveSession session;
  const QString copies = session.folder.filePath("Copies");
  QDir().mkpath(copies);
  session.shootWith({"Ann", "Cat"});
  session.operatorSeam.willChoose(copies);
  Backup& backup = session.app->backup();
  backup.chooseBackupFolder();
  const auto isCopied = [&] { return backup.queue().isEmpty() && !backup.state().busy; };
  session.select(0);
  session.shoot("size=300000");
  ASSERT_TRUE(session.waitUntil(isCopied));
  ASSERT_TRUE(QDir().rename(copies, copies + ".away"));
  session.shoot("n=3 size=300000", 3);
  ASSERT_TRUE(session.waitUntil([&] { return backup.state().offline && !backup.state().busy; }));

  session.app->folderRename().movePhotosFromRow(0, "Bea", {});
  ASSERT_TRUE(session.waitUntil([&] { return QDir(session.target() + "/Bea").exists(); }));
  ASSERT_TRUE(session.waitUntil([&] { return backup.queue().paths().value(0).contains("/Bea/Bea_"); }));
  ASSERT_TRUE(QDir().rename(copies + ".away", copies));
  backup.retryBackupNow();
  ASSERT_TRUE(session.waitUntil(isCopied));
  EXPECT_EQ(session.filesBelowTarget().size(), 4);
  for (const QString& path : session.filesBelowTarget()) {
    const QString copy = copies + path.mid(session.target().size());
    EXPECT_TRUE(path.contains("/Bea/Bea_")) << path.toStdString();
    EXPECT_EQ(sha256OfFile(copy.toStdString()), sha256OfFile(path.toStdString())) << copy.toStdString();
  }
}

}  // namespace
