// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/worker/CameraConnection.h"
#include "support/Printing.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"
#include "support/TestLink.h"

namespace ambrel {

using std::chrono_literals::operator""ms;

// A connection at a desk: the test plays worker, operator and time, and reads back what they are told. A
// target folder is set and the list has names unless a test says otherwise.
class ConnectionFixture : public ::testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  using Alert = ScriptedOperator::Alert;

  ConnectionFixture() {
    EXPECT_TRUE(QDir(home.path()).mkpath("target"));
    EXPECT_TRUE(QDir(home.path()).mkpath("bundle/Contents/MacOS"));
    QFile worker(files.workerPath());
    EXPECT_TRUE(worker.open(QIODevice::WriteOnly));
    EXPECT_TRUE(worker.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    QObject::connect(&connection, &CameraConnection::downloaded,
                     [this](const QString& path) { downloads.push_back(path); });
    QObject::connect(&connection, &CameraConnection::connectStarted, [this] { ++connectsStarted; });
    QObject::connect(&connection, &CameraConnection::controlsStale, [this] { ++controlsRefreshed; });
  }

  ConnectionSurroundings surroundings() {
    return {[this] { return targetDir; },   [this] { return saveMode; },
            [this] { return listHasRows; }, [this] { return currentRowValid; },
            [this] { ++rowSelections; },    [this](qint64 ownWorker) { sweeps.push_back(ownWorker); }};
  }

  // Until the worker has been told to connect.
  void connectPending() {
    connection.connectCameraManual();
    link.say("READY|OK");
  }
  // Until the camera is there; with folder and names that means watching.
  void connectWhole() {
    connectPending();
    link.say("CONNECTED|");
  }
  void connectNotWatching() {
    targetDir.clear();
    connectWhole();
    link.sent.clear();
  }
  // The commands since the last look.
  Lines commands() {
    Lines lines;
    for (const QByteArray& line : link.sent)
      lines.push_back(line.toStdString());
    link.sent.clear();
    return lines;
  }
  std::string status() const { return statusLine.text().toStdString(); }
  StatusKind kind() const { return statusLine.kind(); }
  std::string pill() const { return connection.pill().text.toStdString(); }
  std::string pillTip() const { return connection.pill().toolTip.toStdString(); }
  const ConnectionFlags& flags() const { return connection.flags(); }

  QTemporaryDir home;
  QString targetDir = home.filePath("target");
  QString saveMode = "both";
  bool listHasRows = true;
  bool currentRowValid = true;
  bool photoBeingFiled = false;
  int rowSelections = 0;
  std::vector<qint64> sweeps;
  std::vector<QString> downloads;
  int connectsStarted = 0;
  int controlsRefreshed = 0;

  TestClock clock;
  TestLink link;
  ScriptedOperator person;
  Preferences preferences{home.filePath("preferences.ini")};
  WorkerFiles files{Bundle(home.filePath("bundle")), home.filePath("tmp")};
  StatusLine statusLine{clock, [this] {
                          return Readiness{flags().cameraConnected, flags().watching, !targetDir.isEmpty(),
                                           !listHasRows, photoBeingFiled};
                        }};
  CameraConnection connection{clock, link, statusLine, person, preferences, files, surroundings()};
};

}  // namespace ambrel
