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
    session.camera.command("cable in=0 after=150000");
    session.camera.command("shoot size=300000");
    ASSERT_TRUE(session.waitUntil([&] { return !session.app->isWatching(); }));
    session.camera.command("cable in=1");
    ASSERT_TRUE(session.waitUntil([&] { return session.app->isWatching(); }));
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
  ASSERT_GT(session.link.processId(), 0);
  ::kill(static_cast<pid_t>(session.link.processId()), SIGKILL);
  ASSERT_TRUE(session.waitUntil([&] { return !session.app->isWatching(); }));
  ASSERT_TRUE(session.waitUntil([&] { return session.app->isWatching(); }));
  session.shoot();
  EXPECT_EQ(session.filesBelowTarget().size(), 2);
}

}  // namespace
