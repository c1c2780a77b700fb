// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <vector>

#include "support/LiveApplication.h"
#include "support/SimulatedCamera.h"

namespace ambrel {

// A folder and a camera on loopback of the session's own; made before the application.
struct LiveSurroundings {
  LiveSurroundings();

  QTemporaryDir folder;
  SimulatedCamera camera;
};

// The live application with a camera, and what came of it.
class LiveSession : public LiveSurroundings, public LiveApplication {
 public:
  LiveSession();
  ~LiveSession() { quit(); }

  // Launches with these names and a target folder, connects, and waits until the camera is watched.
  void shootWith(const QStringList& names);
  // Presses the shutter and waits until that many more photos are filed.
  void shoot(const std::string& arguments = {}, std::size_t files = 1);
  // As LiveApplication's, and tells what the worker said where it is in vain.
  bool waitUntil(const std::function<bool()>& done, std::chrono::seconds limit = std::chrono::seconds(60));

  struct Filed {
    QString path;
    qint64 row;
  };
  QString target() const { return folder.filePath("Photos"); }
  QStringList filesBelowTarget() const;

  std::vector<Filed> filed;
  bool watched = false;  // the worker has said that it watches; a test that cuts the link clears it
  QStringList errors;    // what the worker complained of
  QStringList reported;  // every path that the worker said it had downloaded

 private:
  QByteArray _transcript;  // what the worker said, for the one who reads a failed test
};

}  // namespace ambrel
