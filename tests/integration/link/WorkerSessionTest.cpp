// SPDX-License-Identifier: Apache-2.0
// The connection and a real worker process, played by a shell script; the delays are the test's.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/worker/CameraConnection.h"
#include "core/worker/ProcessLink.h"
#include "support/EventLoop.h"
#include "support/Printing.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel {
namespace {

// Answers as a worker with a camera does, and keeps a record of what it was told.
const char* const kWorker = R"sh(#!/bin/sh
echo "started in $1 as $3, $(pwd)" >> "$AMBREL_TEST_RECORD"
echo "LOG|hello"
echo "READY|OK"
while read -r line; do
  echo "$line" >> "$AMBREL_TEST_RECORD"
  case "$line" in
    CONNECT*) echo "STATUS|connecting to camera"; echo "CONNECTED|Canon EOS" ;;
    PUMP_ACTIVE) echo "PUMP_ACTIVE_READY|"; echo "CAPTURE_EVENT|"; echo "DOWNLOADED|$1/IMG|1.JPG" ;;
    PUMP_IDLE) echo "PUMP_IDLE_READY|" ;;
    QUIT) exit 0 ;;
  esac
done
)sh";

const char* const kDeafWorker = R"sh(#!/bin/sh
trap "" TERM
echo "READY|OK"
while :; do read -r line || exec sleep 60; done
)sh";

class WorkerSessionTest : public ::testing::Test {
 protected:
  WorkerSessionTest() {
    EXPECT_TRUE(QDir(home.path()).mkpath("target"));
    EXPECT_TRUE(QDir(home.path()).mkpath("bundle/Contents/MacOS"));
    qputenv("AMBREL_TEST_RECORD", recordPath.toUtf8());
    installWorker(kWorker);
    QObject::connect(&connection, &CameraConnection::downloaded,
                     [this](const QString& path) { downloads.push_back(path); });
    QObject::connect(&link, &WorkerLink::exited, [this] { ++exits; });
  }
  ~WorkerSessionTest() override { qunsetenv("AMBREL_TEST_RECORD"); }

  void installWorker(const char* script) {
    QFile::remove(files.workerPath());
    QFile worker(files.workerPath());
    ASSERT_TRUE(worker.open(QIODevice::WriteOnly));
    worker.write(script);
    worker.close();
    ASSERT_TRUE(worker.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
  }
  std::vector<std::string> record() const {
    QFile file(recordPath);
    if (!file.open(QIODevice::ReadOnly)) return {};
    std::vector<std::string> told;
    for (const QByteArray& line : file.readAll().split('\n'))
      if (!line.isEmpty()) told.push_back(line.toStdString());
    return told;
  }
  bool connectsAndShoots() {
    const std::size_t before = downloads.size();
    connection.connectCameraManual();
    return runEventsUntil([&] { return downloads.size() > before; });
  }

  QTemporaryDir home;
  QString recordPath = home.filePath("record");
  QString target = home.filePath("target");
  std::vector<QString> downloads;
  int exits = 0;
  int sweeps = 0;

  TestClock clock;
  ScriptedOperator person;
  Preferences preferences{home.filePath("preferences.ini")};
  WorkerFiles files{Bundle(home.filePath("bundle")), home.filePath("tmp")};
  StatusLine statusLine{
      clock, [this] {
        return Readiness{connection.isConnected(), connection.isWatching(), true, false, false};
      }};
  ProcessLink link;
  CameraConnection connection{clock,
                              link,
                              statusLine,
                              person,
                              preferences,
                              files,
                              {[this] { return target; }, [] { return QString("both"); }, [] { return true; },
                               [] { return true; }, [] {}, [this](qint64) { ++sweeps; }}};
};

TEST_F(WorkerSessionTest, RunsFromTheConnectToTheDisconnect) {
  ASSERT_TRUE(connectsAndShoots());
  EXPECT_EQ(downloads, (std::vector<QString>{target + "/IMG|1.JPG"}));
  EXPECT_EQ(statusLine.text(), "Capturing");
  EXPECT_EQ(connection.pill().text, "Connected");
  connection.disconnectCamera();
  ASSERT_TRUE(runEventsUntil([this] { return exits == 1; }));
  EXPECT_EQ(connection.pill().text, "Disconnected");
  EXPECT_EQ(statusLine.text(), "Waiting") << "the worker's answer to PUMP_IDLE shows readiness";
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_EQ(record(), (std::vector<std::string>{"started in " + target.toStdString() + " as both, " +
                                                    home.filePath("bundle/Contents/MacOS").toStdString(),
                                                "CONNECT|both", "SET_DOWNLOAD_DIR|" + target.toStdString(),
                                                "PUMP_ACTIVE", "PUMP_IDLE", "DISCONNECT", "QUIT"}));
}

TEST_F(WorkerSessionTest, ComesBackAfterTheWorkerWasKilled) {
  ASSERT_TRUE(connectsAndShoots());
  ASSERT_EQ(::kill(static_cast<pid_t>(link.processId()), SIGKILL), 0);
  ASSERT_TRUE(runEventsUntil([this] { return exits == 1; }));
  EXPECT_EQ(statusLine.text(), "Camera connection was lost.");
  EXPECT_EQ(person.alerts.size(), 1U);
  clock.advance(CameraConnection::kReconnectDelay);
  EXPECT_TRUE(runEventsUntil([this] { return downloads.size() == 2; }));
  EXPECT_EQ(statusLine.text(), "Capturing");
}

TEST_F(WorkerSessionTest, ForcesAReconnectOverAWorkerThatIsStopped) {
  ASSERT_TRUE(connectsAndShoots());
  ASSERT_EQ(::kill(static_cast<pid_t>(link.processId()), SIGSTOP), 0);
  connection.forceCameraReconnect();
  clock.advance(CameraConnection::kForceKillDelay);
  ASSERT_TRUE(runEventsUntil([this] { return exits == 1; }));
  EXPECT_EQ(statusLine.text(), "Camera worker stopped.");
  clock.advance(CameraConnection::kForceConnectDelay);
  EXPECT_EQ(sweeps, 1);
  EXPECT_TRUE(runEventsUntil([this] { return downloads.size() == 2; }));
}

TEST_F(WorkerSessionTest, ForcesAReconnectOverAWorkerThatIsDeaf) {
  installWorker(kDeafWorker);
  connection.connectCameraManual();
  ASSERT_TRUE(runEventsUntil([this] { return !connection.isConnectPending(); }));
  installWorker(kWorker);
  connection.forceCameraReconnect();
  clock.advance(CameraConnection::kForceKillDelay);
  ASSERT_TRUE(runEventsUntil([this] { return exits == 1; }));
  clock.advance(CameraConnection::kForceConnectDelay);
  EXPECT_TRUE(runEventsUntil([this] { return downloads.size() == 1; }));
}

TEST_F(WorkerSessionTest, RestartsAWorkerThatRefusesToEndOnceItDoes) {
  connection.connectCameraManual();
  connection.connectCameraManual();
  EXPECT_TRUE(runEventsUntil([this] { return downloads.size() == 1; }));
  EXPECT_EQ(exits, 1);
}

TEST_F(WorkerSessionTest, TellsTheWorkerToQuitWhenTheApplicationDoes) {
  ASSERT_TRUE(connectsAndShoots());
  const auto worker = static_cast<pid_t>(link.processId());
  // Nothing runs the event loop between the command and the signal, nor afterwards.
  ASSERT_EQ(::kill(worker, SIGSTOP), 0);
  link.sendLine("QUIT");
  ASSERT_EQ(::kill(worker, SIGCONT), 0);
  EXPECT_TRUE(runEventsUntil([this] { return exits == 1; }));
  EXPECT_EQ(record().back(), "QUIT");
}

TEST_F(WorkerSessionTest, ReportsAWorkerThatCannotBeRun) {
  installWorker("no program");
  connection.connectCameraManual();
  ASSERT_TRUE(runEventsUntil([this] { return !person.alerts.empty(); }));
  EXPECT_EQ(person.alerts[0].title, "Worker Launch Failed");
  EXPECT_TRUE(person.alerts[0].message.contains("Exec format error"));
  EXPECT_EQ(statusLine.text(), "Unable to start camera worker.");
}

}  // namespace
}  // namespace ambrel
