// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "support/RecordingScreen.h"
#include "support/ScriptedOperator.h"
#include "support/SimulatedCamera.h"

namespace ambrel {

// The application's core in real time on real files, with the real worker and a camera on loopback. Only the
// window and the person are played.
class LiveSession {
 public:
  LiveSession();
  ~LiveSession();

  // Launches with these names and a target folder, connects, and waits until the camera is watched.
  void shootWith(const QStringList& names);
  void select(qint64 row);
  // Presses the shutter and waits until that many more photos are filed.
  void shoot(const std::string& arguments = {}, std::size_t files = 1);
  // Serves events until `done`, at most `limit`; whether it came to pass.
  bool waitUntil(const std::function<bool()>& done, std::chrono::seconds limit = std::chrono::seconds(60));

  struct Filed {
    QString path;
    qint64 row;
  };
  QString target() const { return folder.filePath("Photos"); }
  QStringList filesBelowTarget() const;

  QTemporaryDir folder;
  SimulatedCamera camera;
  Locations locations;
  SystemClock clock;
  ScriptedOperator operatorSeam;
  PosixFiles files;
  ProcessLink link;
  RecordingScreen screen;
  std::unique_ptr<AmbrelAppDelegate> app;
  std::vector<Filed> filed;
  bool watched = false;  // the worker has said that it watches; a test that cuts the link clears it
  QStringList errors;    // what the worker complained of
  QStringList reported;  // every path that the worker said it had downloaded

 private:
  QByteArray _transcript;  // what the worker said, for the one who reads a failed test
};

}  // namespace ambrel
