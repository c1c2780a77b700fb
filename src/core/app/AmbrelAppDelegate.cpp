// SPDX-License-Identifier: Apache-2.0
#include "core/app/AmbrelAppDelegate.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <algorithm>

#include "core/app/PathLine.h"
#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/NumberedFolder.h"

namespace ambrel {
namespace {

// A path travels to the worker in one line of text.
bool holdsLineBreak(const QString& path) {
  return path.contains(QLatin1Char('\n')) || path.contains(QLatin1Char('\r'));
}

QHash<QString, QString> asPaths(const std::vector<FileMove>& moves) {
  QHash<QString, QString> paths;
  for (const FileMove& move : moves)
    paths.insert(path_to_ns(move.from), path_to_ns(move.to));
  return paths;
}

Question resetQuestion() {
  return {
      QStringLiteral("Reset Ambrel Tether?"),
      QStringLiteral("This will clear the list (names and notes), clear the target folder selection, turn "
                     "off FR/SS, reset Destination to Both, and reset the counter to 1. Use Export first "
                     "if you want to keep the list."),
      {QStringLiteral("Reset"), QStringLiteral("Cancel")}};
}

}  // namespace

AmbrelAppDelegate::AmbrelAppDelegate(Clock& clock, Operator& operatorSeam, Files& files, WorkerLink& link,
                                     const Surroundings& surroundings)
    : _clock(clock),
      _operator(operatorSeam),
      _surroundings(surroundings),
      _displayVersion(surroundings.bundle.displayVersion()),
      _instanceLock(surroundings.locations.temporary),
      _link(link),
      _preferences(surroundings.locations.preferencesFile),
      _statusLine(clock, [this] { return readiness(); }),
      _listStore(files, surroundings.locations, surroundings.longestWaitForListStore),
      _list(_listStore, _preferences, _statusLine),
      _listTransfer(_list, operatorSeam, _statusLine, files),
      _listEditing(_list, operatorSeam, _statusLine),
      _tags(_preferences, operatorSeam, _statusLine),
      _storage(clock, files, operatorSeam, [this] { return watchedPath(); }),
      _filer(files, filingDesk()),
      _folders(_filer.thread(), _list, [this] { return _settings.targetDir(); }),
      _folderRename(files, _filer.thread(), _folders, _list, _tags, operatorSeam, _statusLine, renameDesk()),
      _backup(clock, operatorSeam, files, _statusLine, _preferences, surroundings.locations,
              backupSurroundings(), surroundings.driveMeans),
      _preview(clock, [this] { return _settings.targetDir(); }),
      _camera(clock, link, _statusLine, operatorSeam, _preferences,
              WorkerFiles{surroundings.bundle, surroundings.locations.temporary}, connectionSurroundings()),
      _releaseCheck(clock, operatorSeam, _preferences, surroundings.releaseHost, _displayVersion,
                    surroundings.openInBrowser) {
  connectSubsystems();
}

AmbrelAppDelegate::~AmbrelAppDelegate() = default;

FilingDesk AmbrelAppDelegate::filingDesk() {
  return {
      .targetDir = [this] { return _settings.targetDir(); },
      .selectedQueueItemName = [this] { return _list.selectedQueueItemName(); },
      .enabledSuffixString = [this] { return _tags.enabledSuffixString(); },
      .captureRow = [this] { return _list.captureRow(); },
      .counter = [this] { return _settings.counter(); },
      .advanceCounterPast =
          [this](qint64 used) {
            _settings.advanceCounterPast(used);
            savePersistentPaths();
          },
      .witness = [this] { return filingWitness(); },
  };
}

// Holds no part of this object: the filing thread may outlive it.
FilingWitness AmbrelAppDelegate::filingWitness() const {
  const std::shared_ptr<PendingPhotos> pending = _backup.pendingPhotos();
  if (!pending) return {};
  return {.willFile = [pending](const QString& path) { pending->add(path); },
          .didNotFile = [pending](const QString& path) { pending->settle(path); }};
}

RenameDesk AmbrelAppDelegate::renameDesk() {
  return {
      .targetDir = [this] { return _settings.targetDir(); },
      .backupDestForSource =
          [this](const QString& folder) {
            const bool mirrored = _backup.isEnabled() && !_backup.backupDir().isEmpty();
            return mirrored ? _backup.backupDestForSource(folder) : QString();
          },
      .pathWitness = [this]() -> std::function<void(const QStringList&)> {
        const std::shared_ptr<PendingPhotos> pending = _backup.pendingPhotos();
        if (!pending) return nullptr;
        return [pending](const QStringList& paths) { pending->add(paths); };
      },
      .whenBackupRests = [this](std::function<void()> act) { _backup.whenAtRest(std::move(act)); },
      .unfinishedCopySuffix = CopyPlace::kTemporarySuffix,
  };
}

BackupSurroundings AmbrelAppDelegate::backupSurroundings() const {
  return {.targetDir = [this] { return _settings.targetDir(); }, .isImageFileName = isImageFileName};
}

ConnectionSurroundings AmbrelAppDelegate::connectionSurroundings() {
  return {
      .targetDir = [this] { return _settings.targetDir(); },
      .saveModeWord = [this] { return _settings.selectedSaveModeLower(); },
      .listHasRows = [this] { return !_list.grid().isEmpty(); },
      .currentRowValid = [this] { return _list.grid().contains(_list.selectedRow()); },
      .selectSavedOrFirstCSVRow = [this] { _list.selectSavedOrFirstCSVRow(); },
      .killStrayWorkers = _surroundings.killStrayWorkers,
  };
}

Readiness AmbrelAppDelegate::readiness() const {
  return {.cameraConnected = _camera.isConnected(),
          .watching = _camera.isWatching(),
          .targetFolderSet = !_settings.targetDir().isEmpty(),
          .listEmpty = _list.grid().isEmpty(),
          .photoBeingFiled = _filer.isRenaming()};
}

QString AmbrelAppDelegate::watchedPath() const {
  return _settings.targetDir().isEmpty() ? _surroundings.locations.desktop : _settings.targetDir();
}

void AmbrelAppDelegate::connectSubsystems() {
  connect(&_list, &NameList::persistentPathsStale, this, &AmbrelAppDelegate::savePersistentPaths);
  connect(&_list, &NameList::autoWatchStale, this, [this] { _camera.updateAutoWatch(); });
  connect(&_list, &NameList::pathLabelsStale, this, &AmbrelAppDelegate::updatePathLabels);
  connect(&_list, &NameList::controlsStale, this, &AmbrelAppDelegate::updateControls);

  connect(&_listEditing, &ListEditing::photoMoveRequested, &_folderRename, &FolderRename::promptMoveFromRow);

  connect(&_tags, &Tags::toggled, this, &AmbrelAppDelegate::updatePathLabels);

  connect(&_camera, &CameraConnection::connectStarted, this, [this] { _storage.clearLowStorageWarning(); });
  connect(&_camera, &CameraConnection::controlsStale, this, &AmbrelAppDelegate::updateControls);
  connect(&_camera, &CameraConnection::pillChanged, this, &AmbrelAppDelegate::updateControls);
  connect(&_camera, &CameraConnection::watchingConfirmed, this, &AmbrelAppDelegate::watchingConfirmed);
  connect(&_camera, &CameraConnection::photoAnnounced, &_backup.rightOfWay(), &RightOfWay::photoAnnounced);
  connect(&_camera, &CameraConnection::downloaded, &_backup.rightOfWay(), &RightOfWay::photoArrived);
  connect(&_camera, &CameraConnection::downloaded, &_filer, &PhotoFiler::handleDownloadedPath);

  connect(&_filer, &PhotoFiler::filed, this, &AmbrelAppDelegate::photoFiled);
  connect(&_filer, &PhotoFiler::failed, this, &AmbrelAppDelegate::photoNotFiled);
  connect(&_folders, &PhotoFolders::pathLabelsStale, this, &AmbrelAppDelegate::updatePathLabels);
  connect(&_preview, &PreviewList::controlsStale, this, &AmbrelAppDelegate::updateControls);

  connect(&_folderRename, &FolderRename::renameBegins, &_backup, &Backup::photosWillMove);
  connect(&_folderRename, &FolderRename::photosMoved, this, [this](const Renamed& renamed) {
    std::vector<MovedPaths> moves;
    for (const MovedFiles& moved : renamed.moved)
      moves.push_back({asPaths(moved.folders), asPaths(moved.files)});
    _backup.photosMoved(moves, renamed.announced);
  });
  connect(&_folderRename, &FolderRename::backupFollowed, &_backup, &Backup::backupFollowed);
  connect(&_backup, &Backup::changed, this, &AmbrelAppDelegate::updatePathLabels);
}

// ---- Launch and shut-down

void AmbrelAppDelegate::applicationDidFinishLaunching(Screen& screen) {
  if (!_instanceLock.acquireSingleInstanceLock()) {
    _operator.showAlert(
        QStringLiteral("Ambrel Photo Tether is already open"),
        QStringLiteral("Only one instance can run at a time. Please use the existing Ambrel Photo "
                       "Tether window."),
        [&screen] { screen.terminate(); });
    return;
  }
  _screen = &screen;
  _list.loadGridAhead();
  _tags.loadSuffixes();
  screen.installMainMenu(_displayVersion);
  screen.installAppIconIfAvailable(resourcesNamedAny(
      {QStringLiteral("ambrel_tether_icon.icns"), QStringLiteral("ambrel_tether_icon.png")}));
  screen.observeAppearance();
  screen.installKeyMonitor();
  _surroundings.killStrayWorkers(_link.processId());
  screen.showSplash(_displayVersion, resourcesNamedAny({QStringLiteral("ambrel_splash_mark.png")}));
  _clock.callAfter(kSplashTime, this, [this] { finishLaunching(); });
}

void AmbrelAppDelegate::finishLaunching() {
  if (!_screen) return;
  _screen->closeSplash();
  if (_screen->isBuilt()) return;
  buildUI();
  updatePathLabels();
  updateControls();
  _statusLine.refreshReadyStatusIfIdle();
}

void AmbrelAppDelegate::buildUI() {
  _screen->buildUI(_displayVersion);
  _screen->layoutUI();
  restoreSavedPaths();
  _storage.updateStorageLabel();
  _storage.startTimer();
  _screen->applyAppearance();
  _clock.callAfter(kReleaseCheckDelay, this, [this] { _releaseCheck.checkForUpdatesInBackgroundIfDue(); });
  _camera.startAutoDetectTimer();
  _saveAgainTimer = _clock.callEvery(kSaveAgainPeriod, this, [this] { _list.saveGridIfUnsaved(); });
  _screen->showWindow();
}

void AmbrelAppDelegate::applicationWillTerminate() {
  if (!_screen) return;
  // Photos that the camera has already delivered are filed before anything is taken down.
  const QDeadlineTimer deadline(_surroundings.timeToFinishWhenQuitting);
  const auto timeLeft = [&deadline] { return std::chrono::milliseconds(deadline.remainingTime()); };
  _filer.finishQueued(timeLeft());
  _folderRename.finishMirroring(timeLeft());
  _list.finishSaving(timeLeft());
  savePersistentPaths();
  _clock.cancel(_saveAgainTimer);
  _storage.stopTimer();
  _camera.stopAutoDetectTimer();
  _backup.stop();
  _screen->stopObservingAppearance();
  _screen->removeKeyMonitor();
  _camera.shutDown();
  _screen = nullptr;
}

QStringList AmbrelAppDelegate::resourcesNamedAny(const QStringList& fileNames) const {
  QStringList found;
  for (const QString& name : fileNames) {
    const QString path = _surroundings.bundle.resourcePath(name);
    if (!path.isEmpty()) found.append(path);
  }
  return found;
}

void AmbrelAppDelegate::showAlert(const QString& title, const QString& message) {
  QMetaObject::invokeMethod(
      this, [this, title, message] { _operator.showAlert(title, message); }, Qt::QueuedConnection);
}

// ---- Settings between launches

void AmbrelAppDelegate::restoreSavedPaths() {
  const QString targetDir = _preferences.lastTargetDir().value_or(QString());
  if (!targetDir.isEmpty() && !pathIsMissing(ns_to_path(targetDir)) && !holdsLineBreak(targetDir)) {
    _settings.setTargetDir(targetDir);
    _folders.rescanOutputFolders();
  }
  _camera.restoreAutoConnect();
  _backup.restore();
  const qint64 counter = _preferences.lastCounterValue().value_or(0);
  if (counter >= 1) _settings.setCounterText(QString::number(counter));
  const QString csvPath = _preferences.lastCSVPath().value_or(QString());
  if (!csvPath.isEmpty() && QFileInfo::exists(csvPath)) _list.setCsvPath(csvPath);
  restoreList();
  _settings.setSaveModeIndex(0);
  updatePathLabels();
  _storage.updateStorageLabel();
  updateControls();
}

void AmbrelAppDelegate::restoreList() {
  if (_list.loadGridFromDisk()) {
    _list.selectSavedOrFirstCSVRow();
  } else if (!_list.csvPath().isEmpty()) {
    _list.importFirstColumnFromCSV(_list.csvPath());
    _list.saveGridToDisk();
  }
}

void AmbrelAppDelegate::savePersistentPaths() {
  if (!_list.csvPath().isEmpty()) _preferences.setLastCSVPath(_list.csvPath());
  if (!_settings.targetDir().isEmpty()) _preferences.setLastTargetDir(_settings.targetDir());
  if (_list.selectedRow() >= 0) _preferences.setLastSelectedRowIndex(_list.selectedRow());
  if (_settings.counterFieldValue() >= 1) _preferences.setLastCounterValue(_settings.counterFieldValue());
  _preferences.synchronize();
}

// ---- The road of one photo ends here

void AmbrelAppDelegate::photoFiled(const QString& path, qint64 row) {
  _list.markCaptureForRow(row);
  _folders.noteFolderWithImage(path);
  _preview.scheduleLatestCapturePreviewAtPath(path);
  _statusLine.setStatus(QStringLiteral("Saved: ") + QFileInfo(path).fileName(),
                        _camera.isWatching() ? StatusKind::Watching : StatusKind::Good);
  _storage.updateStorageLabel();
  _statusLine.scheduleReadyStatusRefresh();
  filingEnded();
  _backup.backupSavedFile(path);
}

void AmbrelAppDelegate::photoNotFiled(const QString& message) {
  filingEnded();
  if (message.isEmpty()) return;
  showAlert(QStringLiteral("Write Error"), message);
  _statusLine.setStatus(message, StatusKind::Error);
}

void AmbrelAppDelegate::filingEnded() {
  if (!_filer.hasQueued()) _backup.rightOfWay().photosAreFiled();
}

// ---- Intents

void AmbrelAppDelegate::selectFolder() {
  _operator.choosePath({.kind = PathRequest::Kind::OpenFolder,
                        .message = QStringLiteral("Choose the folder where captured images are saved"),
                        .startFolder = _settings.targetDir()},
                       [this](const QString& path) {
                         if (!path.isEmpty()) useTargetFolder(path);
                       });
}

void AmbrelAppDelegate::useTargetFolder(const QString& path) {
  if (holdsLineBreak(path)) {
    _operator.showAlert(
        QStringLiteral("Folder Cannot Be Used"),
        QStringLiteral("The folder's path contains a line break, which cannot be passed on to the "
                       "camera. Rename the folder or choose another one."));
    return;
  }
  _settings.setTargetDir(path);
  _camera.downloadFolderChanged();
  _folders.rescanOutputFolders();
  updatePathLabels();
  savePersistentPaths();
  _storage.updateStorageLabel();
  _statusLine.setStatus(QStringLiteral("Target folder selected."), StatusKind::Good);
  _camera.updateAutoWatch();
}

void AmbrelAppDelegate::selectDestination(int index) {
  if (index >= 0 && index <= 2) _settings.setSaveModeIndex(index);
  updateControls();
  _camera.saveModeChanged();
}

void AmbrelAppDelegate::counterTextDidChange(const QString& text) {
  _settings.setCounterText(text);
  savePersistentPaths();
  updatePathLabels();
}

void AmbrelAppDelegate::connectCameraManual() {
  _camera.connectCameraManual();
}

void AmbrelAppDelegate::disconnectCamera() {
  _camera.disconnectCamera();
}

void AmbrelAppDelegate::forceCameraReconnect() {
  _camera.forceCameraReconnect();
}

void AmbrelAppDelegate::toggleAutoConnect() {
  _camera.toggleAutoConnect();
}

void AmbrelAppDelegate::revealPreviewInFinder() {
  const QString photo = _preview.currentPreviewPath();
  if (!photo.isEmpty() && fileExists(photo)) {
    _surroundings.revealFile(photo);
  } else {
    _operator.beep();
  }
}

std::optional<PersonsFolders> AmbrelAppDelegate::foldersOfRow(qint64 modelRow) const {
  const NameGrid& grid = _list.grid();
  if (!grid.contains(modelRow) || grid.rows()[static_cast<std::size_t>(modelRow)].empty())
    return std::nullopt;
  PersonsFolders person{std_to_ns(sanitize_filename(grid.bytes(modelRow, Cell::Name))), {}};
  for (const std::string& folder : _folders.foldersForRowName(ns_to_std(person.name)))
    person.folders.append(path_to_ns(folder));
  return person;
}

void AmbrelAppDelegate::openSelectedRowFolder() {
  showFolder(folderOfSelectedRow(foldersOfRow(_list.selectedRow()), _settings.targetDir()));
}

void AmbrelAppDelegate::ctxOpenFolder(qint64 modelRow) {
  showFolder(folderOfMenuRow(foldersOfRow(modelRow), _settings.targetDir()));
}

void AmbrelAppDelegate::showFolder(const FolderToShow& toShow) {
  if (!toShow.status.isEmpty()) _statusLine.setStatus(toShow.status, StatusKind::Neutral);
  if (!toShow.folder.isEmpty()) _surroundings.openFolder(toShow.folder);
}

void AmbrelAppDelegate::tableClicked() {
  savePersistentPaths();
  if (!_list.showSelectionTotalsIfMultiple()) _statusLine.refreshReadyStatusIfIdle();
  updatePathLabels();
  updateControls();
}

bool AmbrelAppDelegate::refuseResetWhileWatching() {
  if (!_camera.isWatching()) return false;
  _operator.showAlert(QStringLiteral("Stop Watching First"),
                      QStringLiteral("Please stop watching before resetting the app state."));
  return true;
}

void AmbrelAppDelegate::resetWorkflow() {
  if (refuseResetWhileWatching()) return;
  _operator.ask(resetQuestion(), [this](const Answer& answer) {
    // A camera may have come back while the question was open.
    if (answer.button == 0 && !refuseResetWhileWatching()) forgetWorkflow();
  });
}

void AmbrelAppDelegate::forgetWorkflow() {
  _settings.setTargetDir(QString());
  _list.reset();
  _folders.forgetFolders();
  _tags.switchAllOff();
  _settings.setSaveModeIndex(0);
  _settings.setCounterText(QStringLiteral("1"));
  _preferences.removeWorkflowKeys();
  _preferences.synchronize();
  updatePathLabels();
  _storage.updateStorageLabel();
  _statusLine.setStatus(QStringLiteral("Reset complete."), StatusKind::Neutral);
  _camera.updateAutoWatch();
}

// ---- What the window shows beside the subsystems' own state

void AmbrelAppDelegate::updatePathLabels() {
  if (!_screen || !_screen->isBuilt()) return;
  _screen->updatePathLabels(pathLine(
      {.rows = _list.grid().rowCount(), .csvPath = _list.csvPath(), .targetDir = _settings.targetDir()}));
}

void AmbrelAppDelegate::updateControls() {
  if (!_screen || !_screen->isBuilt()) return;
  _screen->updateControls({.setupUnlocked = !_camera.isConnectPending(),
                           .exportEnabled = !_list.grid().isEmpty(),
                           .saveModeIndex = _settings.saveModeIndex(),
                           .autoConnect = _camera.isAutoConnect(),
                           .pill = _camera.pill()});
}

}  // namespace ambrel
