// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <chrono>
#include <functional>
#include <optional>

#include "core/app/Screen.h"
#include "core/app/SingleInstanceLock.h"
#include "core/backup/Backup.h"
#include "core/base/Bundle.h"
#include "core/base/Clock.h"
#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/FolderRename.h"
#include "core/capture/FolderToShow.h"
#include "core/capture/PhotoFiler.h"
#include "core/capture/PhotoFolders.h"
#include "core/capture/PreviewList.h"
#include "core/capture/StorageMonitor.h"
#include "core/capture/Tags.h"
#include "core/list/ListEditing.h"
#include "core/list/ListStore.h"
#include "core/list/ListTransfer.h"
#include "core/list/NameList.h"
#include "core/update/ReleaseCheck.h"
#include "core/worker/CameraConnection.h"
#include "core/worker/WorkerLink.h"

namespace ambrel {

// Where the application runs.
struct Surroundings {
  Locations locations;
  Bundle bundle;
  // Ends worker processes of this user, all but the one with the given process id.
  std::function<void(qint64 ownWorkerPid)> killStrayWorkers;
  // How network drives are found, woken and mounted; none of it without them.
  DriveMeans driveMeans = {};
  QUrl releaseHost = {};  // API host of the release service; empty: never asked
  std::function<void(const QUrl&)> openInBrowser = [](const QUrl&) {};
  // The desktop's file manager shows a folder, or a file selected in its folder.
  std::function<void(const QString& folder)> openFolder = [](const QString&) {};
  std::function<void(const QString& file)> revealFile = [](const QString&) {};
  // For how long a change of the list waits until it is in its file.
  std::chrono::milliseconds longestWaitForListStore = ListStore::kLongestWait;
  // Of the two seconds that quitting may take, what photos and list get; the rest is for what follows.
  std::chrono::milliseconds timeToFinishWhenQuitting{1700};
};

// The composition root: holds every subsystem, connects them in one place, and runs the launch and shut-down
// sequences and the flows that cross subsystems. Rules live in the subsystems. Main thread only, showAlert
// apart.
class AmbrelAppDelegate : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::milliseconds kSplashTime{1150};
  static constexpr std::chrono::milliseconds kReleaseCheckDelay{3000};  // after the window is built
  static constexpr std::chrono::seconds kSaveAgainPeriod{20};           // a list that could not be saved

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
  ListEditing& listEditing() { return _listEditing; }
  CaptureSettings& settings() { return _settings; }
  Tags& tags() { return _tags; }
  StorageMonitor& storage() { return _storage; }
  Backup& backup() { return _backup; }
  StatusLine& statusLine() { return _statusLine; }
  PhotoFiler& photoFiler() { return _filer; }
  PhotoFolders& folders() { return _folders; }
  FolderRename& folderRename() { return _folderRename; }
  PreviewList& preview() { return _preview; }
  bool isWatching() const { return _camera.isWatching(); }

  // Intents of the operator.
  void selectFolder();
  void selectDestination(int index);  // an index other than 0, 1, 2 changes nothing
  void counterTextDidChange(const QString& text);
  void connectCameraManual();
  void disconnectCamera();
  void forceCameraReconnect();
  void toggleAutoConnect();
  void checkForUpdatesInteractive() { _releaseCheck.checkForUpdatesInteractive(); }
  void revealPreviewInFinder();
  void openSelectedRowFolder();
  void ctxOpenFolder(qint64 modelRow);
  void tableClicked();  // after the table's selection has taken in the click
  // Forgets list, target folder, tags, destination and counter, once the operator has agreed. Refused while
  // the camera is watched.
  void resetWorkflow();

  void updatePathLabels();
  void updateControls();

  // Size and divider of the window between launches, in a text of the window's own; empty at first.
  QString windowPlacement() const { return _preferences.windowPlacement().value_or(QString()); }
  void windowPlacementDidChange(const QString& placement) { _preferences.setWindowPlacement(placement); }

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
  bool refuseResetWhileWatching();
  void forgetWorkflow();
  void photoFiled(const QString& path, qint64 row);
  void photoNotFiled(const QString& message);
  void filingEnded();
  FilingDesk filingDesk();
  FilingWitness filingWitness() const;
  RenameDesk renameDesk();
  BackupSurroundings backupSurroundings() const;
  std::optional<PersonsFolders> foldersOfRow(qint64 modelRow) const;
  void showFolder(const FolderToShow& toShow);
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
  ListEditing _listEditing;
  CaptureSettings _settings;
  Tags _tags;
  StorageMonitor _storage;
  PhotoFiler _filer;
  PhotoFolders _folders;
  FolderRename _folderRename;
  Backup _backup;
  PreviewList _preview;
  CameraConnection _camera;
  ReleaseCheck _releaseCheck;
  Clock::TimerId _saveAgainTimer = Clock::kNoTimer;
};

}  // namespace ambrel
