// SPDX-License-Identifier: Apache-2.0
// A shoot whose backup drive vanishes, hangs, lies and returns, played by a library preloaded to a process
// that backs photos up.
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/backup/QueueFile.h"
#include "core/base/Locations.h"
#include "support/DriveMode.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

class DriveFaults : public ::testing::Test {
 protected:
  DriveFaults() {
    QDir(home).mkpath("Copies");
    setMode("ok");
  }
  ~DriveFaults() override {
    setMode("ok");
    if (session.state() == QProcess::NotRunning) return;
    session.kill();
    session.waitForFinished();
  }

  void setMode(const QByteArray& mode) const { ASSERT_TRUE(drive.set(mode)); }

  void start(int photos, int pace) {
    session.setProcessEnvironment(drive.environmentFor(home + "/Copies"));
    session.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    session.start(AMBREL_BACKUP_SESSION, {home, QString::number(photos), QString::number(pace)});
    ASSERT_TRUE(session.waitForStarted());
    count = photos;
  }

  QStringList copies() const { return QDir(home + "/Copies/Bob").entryList(QDir::Files | QDir::Hidden); }
  QByteArray said() {
    output += session.readAllStandardOutput();
    return output;
  }
  bool untilSaid(const QByteArray& word) {
    return runEventsUntil([&] { return said().contains(word); }, 30s);
  }
  bool untilCopies(int number) {
    return runEventsUntil([&] { return copies().size() >= number; }, 60s);
  }
  void expectAllBackedUp() {
    ASSERT_TRUE(runEventsUntil([&] { return session.state() == QProcess::NotRunning; }, 120s));
    EXPECT_EQ(session.exitCode(), 0);
    EXPECT_EQ(copies().size(), count);
    for (int number = 0; number < count; ++number) {
      const QString name = QStringLiteral("/Bob/Bob_%1.JPG").arg(number, 4, 10, QLatin1Char('0'));
      ASSERT_EQ(read(home + "/Copies" + name), read(home + "/Shots" + name)) << name.toStdString();
    }
    EXPECT_EQ(readQueueFile(Locations::below(home).dataFile("backup_queue.plist")).value(), QStringList());
  }
  // Of the session's event loop, in milliseconds; its machine may be busy with other things as well.
  int longestGap() {
    const QByteArray words = said();
    const qsizetype at = words.indexOf("gap ");
    return at < 0 ? -1 : words.mid(at + 4).trimmed().toInt();
  }
  static QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }

  QTemporaryDir folder;
  const QString home = folder.filePath("home");
  const DriveMode drive{folder.filePath("mode")};
  QProcess session;
  QByteArray output;
  int count = 0;
  Heartbeat heartbeat;
};

}  // namespace

TEST_F(DriveFaults, TwoHundredPhotosReachADriveThatVanishesHangsLiesAndReturns) {
  start(200, 10);
  ASSERT_TRUE(untilCopies(20));
  setMode("gone");
  ASSERT_TRUE(untilSaid("failed"));
  setMode("ok");
  ASSERT_TRUE(untilCopies(60));
  setMode("hang");
  ASSERT_TRUE(untilSaid("slow"));
  setMode("ok");
  ASSERT_TRUE(untilCopies(100));
  setMode("short");
  output.clear();
  ASSERT_TRUE(untilSaid("failed"));
  setMode("ok");
  ASSERT_TRUE(untilCopies(140));
  setMode("hang");
  output.clear();
  ASSERT_TRUE(untilSaid("slow"));
  setMode("gone");
  ASSERT_TRUE(untilSaid("failed"));
  setMode("ok");
  expectAllBackedUp();
  EXPECT_GE(longestGap(), 0);
  EXPECT_LE(longestGap(), 50);
}

TEST_F(DriveFaults, QuitsAtOnceWhileTheDriveHangsAndGoesOnNextTime) {
  start(30, 1);
  ASSERT_TRUE(untilCopies(5));
  setMode("hang");
  ASSERT_TRUE(untilSaid("slow"));
  QElapsedTimer quitting;
  quitting.start();
  session.closeWriteChannel();
  ASSERT_TRUE(runEventsUntil([&] { return session.state() == QProcess::NotRunning; }));
  EXPECT_LE(quitting.elapsed(), 2000);
  EXPECT_EQ(session.exitStatus(), QProcess::NormalExit);
  setMode("ok");
  start(30, 1);
  expectAllBackedUp();
}
