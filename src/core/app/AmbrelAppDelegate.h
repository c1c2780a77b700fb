// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>

#include "core/app/Screen.h"
#include "core/app/SingleInstanceLock.h"
#include "core/base/Bundle.h"
#include "core/base/Clock.h"
#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/PhotoFiler.h"
#include "core/capture/StorageMonitor.h"
#include "core/capture/Tags.h"
#include "core/list/ListStore.h"
#include "core/list/ListTransfer.h"
#include "core/list/NameList.h"
#include "core/worker/CameraConnection.h"
#include "core/worker/WorkerLink.h"

namespace ambrel {

// Where the application runs.
struct Surroundings {
  Locations locations;
  Bundle bundle;
  // Ends worker processes of this user, all but the one with the given process id.
  std::function<void(qint64 ownWorkerPid)> killStrayWorkers;
};

// The composition root: holds every subsystem, connects them in one place, and runs the launch and shut-down
// sequences and the flows that cross subsystems. Rules live in the subsystems. Main thread only, showAlert
// apart.
class AmbrelAppDelegate : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::milliseconds kSplashTime{1150};
  static constexpr std::chrono::milliseconds kFilingTimeWhenQuitting{2000};

  AmbrelAppDelegate(Clock& clock, Operator& operatorSeam, Files& files, WorkerLink& link,
                    const Surroundings& surroundings);
  ~AmbrelAppDelegate() override;

  // Lifecycle. `screen` must outlive applicationWillTerminate.
  void applicationDidFinishLaunching(Screen& screen);
  bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
  void applicationWillTerminate();

  // A modal alert with one "OK" button; from any thread, shown on the main thread later.
  void showAlert(const QString& title, const QString& message);
  QString displayVersion() const { return _displayVersion; }
  // Paths of those of the named resources that exist, in the order given.
  QStringList resourcesNamedAny(const QStringList& fileNames) const;

  // What the window shows and edits.
  NameList& list() { return _list; }
  ListTransfer& listTransfer() { return _listTransfer; }
  CaptureSettings& settings() { return _settings; }
  Tags& tags() { return _tags; }
  StorageMonitor& storage() { return _storage; }
  StatusLine& statusLine() { return _statusLine; }
  PhotoFiler& photoFiler() { return _filer; }
  bool isWatching() const { return _camera.isWatching(); }

  // Intents of the operator.
  void selectFolder();
  void selectDestination(int index);  // an index other than 0, 1, 2 changes nothing
  void counterTextDidChange(const QString& text);
  void connectCameraManual();
  void disconnectCamera();
  void forceCameraReconnect();
  void toggleAutoConnect();
  void tableClicked();  // after the table's selection has taken in the click

  void updatePathLabels();
  void updateControls();

 Q_SIGNALS:
  void watchingConfirmed();  // from now on every photo that is taken is fetched

 private:
  void connectSubsystems();
  void finishLaunching();
  void buildUI();
  void restoreSavedPaths();
  void savePersistentPaths();
  void restoreList();
  void useTargetFolder(const QString& path);
  void photoFiled(const QString& path, qint64 row);
  void photoNotFiled(const QString& message);
  FilingDesk filingDesk();
  ConnectionSurroundings connectionSurroundings();
  Readiness readiness() const;
  QString watchedPath() const;

  Clock& _clock;
  Operator& _operator;
  Screen* _screen = nullptr;
  Surroundings _surroundings;
  QString _displayVersion;
  SingleInstanceLock _instanceLock;
  WorkerLink& _link;

  Preferences _preferences;
  StatusLine _statusLine;
  ListStore _listStore;
  NameList _list;
  ListTransfer _listTransfer;
  CaptureSettings _settings;
  Tags _tags;
  StorageMonitor _storage;
  PhotoFiler _filer;
  CameraConnection _camera;
};

}  // namespace ambrel
