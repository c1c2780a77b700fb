// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "support/RecordingScreen.h"
#include "support/ScriptedOperator.h"

namespace ambrel {

// The application's core in real time on real files, with the real worker. Only the window and the person are
// played. Its camera is the one that AMBREL_CAMERA_PORT names at the launch.
class LiveApplication {
 public:
  // Keeps everything of its own below `home`.
  explicit LiveApplication(const QString& home);
  ~LiveApplication();
  LiveApplication(const LiveApplication&) = delete;
  LiveApplication& operator=(const LiveApplication&) = delete;

  // Another application on the data of the last one, which has quit. Not launched yet, so that whoever
  // listens misses nothing.
  void make();
  // True once the window is built.
  [[nodiscard]] bool launch();
  // As the operator ends it; the worker ends too.
  void quit();

  // The person's ways to a list, a target folder and a backup folder; the folders are made.
  void importNames(const QString& csvFile, const QStringList& names);
  void chooseTarget(const QString& folder);
  void chooseBackup(const QString& folder);
  void select(qint64 row);

  // Serves events until `done`, at most `limit`; whether it came to pass.
  static bool waitUntil(const std::function<bool()>& done,
                        std::chrono::seconds limit = std::chrono::seconds(60));

  Locations locations;
  SystemClock clock;
  ScriptedOperator operatorSeam;
  RecordingScreen screen;
  std::unique_ptr<ProcessLink> link;
  std::unique_ptr<AmbrelAppDelegate> app;  // none once it has quit

 private:
  const QString _temporary;
  int _starts = 0;
};

}  // namespace ambrel
