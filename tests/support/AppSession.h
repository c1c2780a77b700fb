// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <QUrl>
#include <chrono>
#include <memory>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "support/BrokenFiles.h"
#include "support/LongWait.h"
#include "support/RecordingScreen.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"
#include "support/TestLink.h"

namespace ambrel {

// The whole core on a temporary folder, with time, operator, worker and window played by the test.
class AppSession {
 public:
  AppSession();

  // A new delegate on the same folder, as after a restart; the one before ends first.
  void startApplication();
  // Launches and lets the splash pass.
  void launch();
  void quit();

  void writeFile(const QString& path, const QByteArray& bytes) const;
  QByteArray readFile(const QString& path) const;
  QString path(const QString& name) const { return folder.filePath(name); }
  QString storePath() const { return locations.dataFile(QStringLiteral("ambrel_grid.csv")); }
  // Imports a list with these names through the operator's flow.
  void importNames(const QStringList& names);
  // Chooses a target folder below the session's folder; creates it.
  QString chooseTarget(const QString& name = QStringLiteral("Photos"));
  // A worker that announces itself and a camera, up to watching.
  void connectCamera();
  // The worker reports a photo of these bytes, and filing is waited for.
  void download(const QString& fileName, const QByteArray& bytes = "photo");

  QTemporaryDir folder;
  Locations locations;
  TestClock clock;
  ScriptedOperator operatorSeam;
  PosixFiles realFiles;
  BrokenFiles files{realFiles};
  TestLink link;
  RecordingScreen screen;
  QStringList opened;                 // folders, in the file manager
  QStringList revealed;               // files
  std::vector<qint64> strayRemovals;  // the own worker's process id at each removal
  QUrl releaseHost;                   // of the next start; empty: no release check
  std::chrono::milliseconds longestWaitForListStore = kAsLongAsItTakes;   // of the next start
  std::chrono::milliseconds timeToFinishWhenQuitting = kAsLongAsItTakes;  // of the next start
  std::unique_ptr<AmbrelAppDelegate> app;

 private:
  int _starts = 0;
};

}  // namespace ambrel
