// SPDX-License-Identifier: Apache-2.0
// A shoot whose backup folder lies on a real network share: a Samba server on loopback, mounted through FUSE
// by rclone. The server is frozen, killed and started again while photos are backed up to it.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/backup/QueueFile.h"
#include "core/base/Locations.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

constexpr int kPhotos = 200;

QByteArray read(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

quint16 freePort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost);
  return server.serverPort();
}

dev_t volumeOfFolder(const QString& path) {
  struct stat status = {};
  return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

// A process with all that it starts; ended with its owner.
class ProcessGroup {
 public:
  ~ProcessGroup() { end(SIGKILL); }
  void start(const QString& program, const QStringList& arguments) {
    _process.setChildProcessModifier([] { ::setpgid(0, 0); });
    _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    _process.setStandardOutputFile(QProcess::nullDevice());
    _process.start(program, arguments);
    ASSERT_TRUE(_process.waitForStarted());
    _group = static_cast<pid_t>(_process.processId());
  }
  void signal(int number) const { ::kill(-_group, number); }
  void end(int number) {
    if (_group <= 0) return;
    signal(number);
    _process.waitForFinished(10'000);
    _group = 0;
  }

 private:
  QProcess _process;
  pid_t _group = 0;
};

class Samba : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"smbd", "rclone", "fusermount3"}) {
      if (QStandardPaths::findExecutable(program, searchPath).isEmpty()) skip(program);
    }
    if (::access("/dev/fuse", R_OK | W_OK) != 0) skip("/dev/fuse, or the right to use it");
    if (IsSkipped()) return;
    QDir(folder.path()).mkpath("share");
    QDir(folder.path()).mkpath("state");
    QDir(home).mkpath("Copies");
    startServer();
    mount.start("rclone",
                {"mount", ":smb,host=127.0.0.1,port=" + QString::number(port) + ",user=guest:photos",
                 home + "/Copies", "--config", "", "--low-level-retries", "1", "--dir-cache-time", "0s",
                 "--attr-timeout", "0s", "--timeout", "5s", "--contimeout", "2s", "--log-level", "ERROR",
                 "--log-file", folder.filePath("rclone.log")});
    const dev_t local = volumeOfFolder(home);
    const bool mounted = runEventsUntil(
        [&] { return volumeOfFolder(home + "/Copies") != 0 && volumeOfFolder(home + "/Copies") != local; },
        15s);
    if (!mounted) skip("the right to mount through FUSE: " + read(folder.filePath("rclone.log")).trimmed());
  }
  void TearDown() override {
    if (session.state() != QProcess::NotRunning) {
      session.kill();
      session.waitForFinished();
    }
    server.signal(SIGCONT);
    mount.end(SIGTERM);  // takes the mount away
  }
  static void skip(const QString& what) {
    GTEST_SKIP() << "SKIPPED: no backup to a real network share was tried; this machine lacks "
                 << what.toStdString() << ".";
  }

  void startServer() {
    QFile settings(folder.filePath("smb.conf"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    const QByteArray state = QFile::encodeName(folder.filePath("state"));
    const QByteArray user = qgetenv("USER").isEmpty() ? QByteArray("root") : qgetenv("USER");
    QByteArray text =
        "[global]\nserver role = standalone server\nmap to guest = Bad User\nguest account = " + user +
        "\ninterfaces = lo\nbind interfaces only = yes\nsmb ports = " + QByteArray::number(port) +
        "\ndisable netbios = yes\nload printers = no\ndisable spoolss = yes\nlog file = " + state + "/log\n";
    for (const char* place : {"private dir", "lock directory", "state directory", "cache directory",
                              "pid directory", "ncalrpc dir"})
      text += QByteArray(place) + " = " + state + "\n";
    text += "[photos]\npath = " + QFile::encodeName(folder.filePath("share")) +
            "\nguest ok = yes\nread only = no\nforce user = " + user + "\n";
    settings.write(text);
    settings.close();
    server.start(QStandardPaths::findExecutable("smbd", searchPath),
                 {"-F", "--no-process-group", "-s", settings.fileName()});
  }

  // On the server's own disk, below what the mount shows.
  QStringList copies() const {
    return QDir(folder.filePath("share/Bob")).entryList(QDir::Files | QDir::Hidden);
  }
  bool untilCopies(int number) {
    return runEventsUntil([&] { return copies().size() >= number; }, 60s);
  }
  bool untilSaid(const QByteArray& word) {
    output.clear();
    return runEventsUntil([&] { return (output += session.readAllStandardOutput()).contains(word); }, 60s);
  }

  const QStringList searchPath = {"/usr/sbin", "/usr/bin", "/sbin", "/bin"};
  QTemporaryDir folder;
  const QString home = folder.filePath("home");
  const quint16 port = freePort();
  ProcessGroup server;
  ProcessGroup mount;
  QProcess session;
  QByteArray output;
  Heartbeat heartbeat;
};

}  // namespace

TEST_F(Samba, TakesTwoHundredPhotosThoughItFreezesAndIsKilled) {
  session.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  session.start(AMBREL_BACKUP_SESSION, {home, QString::number(kPhotos), "20"});
  ASSERT_TRUE(untilCopies(30));
  server.signal(SIGSTOP);
  ASSERT_TRUE(untilSaid("slow"));
  server.signal(SIGCONT);
  ASSERT_TRUE(untilCopies(80));
  server.end(SIGKILL);
  ASSERT_TRUE(untilSaid("failed"));
  startServer();
  ASSERT_TRUE(runEventsUntil([&] { return session.state() == QProcess::NotRunning; }, 120s));
  EXPECT_EQ(session.exitCode(), 0);
  EXPECT_EQ(copies().size(), kPhotos);
  for (int number = 0; number < kPhotos; ++number) {
    const QString name = QStringLiteral("/Bob/Bob_%1.JPG").arg(number, 4, 10, QLatin1Char('0'));
    ASSERT_EQ(read(folder.filePath("share") + name), read(home + "/Shots" + name)) << name.toStdString();
  }
  EXPECT_EQ(readQueueFile(Locations::below(home).dataFile("backup_queue.plist")).value(), QStringList());
}
