// SPDX-License-Identifier: Apache-2.0
#include "core/worker/CameraConnection.h"

namespace ambrel {

using protocol::Command;

CameraConnection::CameraConnection(Clock& clock, WorkerLink& link, StatusLine& statusLine,
                                   Operator& operatorSeam, Preferences& preferences, WorkerFiles files,
                                   ConnectionSurroundings surroundings)
    : _clock(clock),
      _link(link),
      _statusLine(statusLine),
      _operator(operatorSeam),
      _preferences(preferences),
      _files(std::move(files)),
      _surroundings(std::move(surroundings)) {
  connect(&_link, &WorkerLink::blockArrived, this, &CameraConnection::workerBlockArrived);
  connect(&_link, &WorkerLink::exited, this, &CameraConnection::workerExited);
  connect(&_link, &WorkerLink::launchFailed, this, &CameraConnection::workerLaunchFailed);
}

void CameraConnection::startAutoDetectTimer() {
  if (_detectTimer != Clock::kNoTimer) return;
  _detectTimer = _clock.callEvery(kAutoDetectPeriod, this, [this] { autoDetectTick(); });
}

void CameraConnection::stopAutoDetectTimer() {
  _clock.cancel(_detectTimer);
  _detectTimer = Clock::kNoTimer;
}

void CameraConnection::autoDetectTick() {
  if (!autoConnectIsDue(_flags, _link.isRunning())) return;
  _flags.autoInitiatedConnect = true;
  _statusLine.setStatus(QStringLiteral("Looking for camera..."), StatusKind::Busy);
  connectCamera();
}

void CameraConnection::restoreAutoConnect() {
  _flags.autoConnect = _preferences.autoConnect().value_or(true);
  _flags.autoConnectSuppressed = false;
  updateControls();
}

void CameraConnection::toggleAutoConnect() {
  _flags.autoConnect = !_flags.autoConnect;
  _flags.autoConnectSuppressed = false;
  _preferences.setAutoConnect(_flags.autoConnect);
  _statusLine.setStatus(
      _flags.autoConnect
          ? QStringLiteral("Auto-connect ON: the camera connects on its own once a folder is set.")
          : QStringLiteral("Auto-connect OFF: click Connect Camera to connect."),
      StatusKind::Neutral);
  updateControls();
}

void CameraConnection::toggleCameraConnection() {
  switch (toggleChoice(_flags, _link.isRunning())) {
    case ToggleChoice::Connect:
      return connectCameraManual();
    case ToggleChoice::Disconnect:
      return disconnectCamera();
  }
}

void CameraConnection::connectCameraManual() {
  _flags.autoInitiatedConnect = false;
  _flags.autoConnectSuppressed = false;
  connectCamera();
}

void CameraConnection::connectCamera() {
  _cameraConnectDetail.clear();
  _cameraError.clear();
  _flags.manualDisconnect = false;
  _flags.connectRequested = true;
  _flags.autoConnectSuppressed = false;
  _flags.disconnectWarningShown = false;
  _flags.cardWarningShownThisConnect = false;
  _flags.storageWriteWarningShown = false;
  _flags.notWatchingCaptureWarningShown = false;
  _flags.pendingConnect = true;
  Q_EMIT connectStarted();
  _statusLine.setStatus(QStringLiteral("Connecting camera..."), StatusKind::Busy);
  updateControls();
  if (_link.isRunning() && !_flags.cameraConnected) return restartWorkerForConnect();
  connectWhenReady();
}

// Whichever comes second, the delay or the reaction to the worker's exit, finds a worker running.
void CameraConnection::restartWorkerForConnect() {
  _flags.restartingWorkerForConnect = true;
  sendWorkerLine({Command::Kind::Quit});
  _link.terminate();
  _clock.callAfter(kRestartDelay, this, [this] {
    if (!_flags.manualDisconnect) startWorkerIfNeeded();
  });
}

// A worker that is not ready yet gets the command once it says so.
void CameraConnection::connectWhenReady() {
  startWorkerIfNeeded();
  if (_flags.workerReady) sendConnect();
}

void CameraConnection::sendConnect() {
  _flags.pendingConnect = false;
  sendWorkerLine({Command::Kind::Connect, _surroundings.saveModeWord().toStdString()});
}

void CameraConnection::disconnectCamera() {
  _flags.autoConnectSuppressed = true;
  _flags.connectRequested = false;
  cancelAutoReconnect();
  _flags.cameraConnected = false;
  _flags.watching = false;
  _flags.cardWarningShownThisConnect = true;
  _flags.manualDisconnect = true;
  // An attempt that is still under way must not connect after all.
  _flags.pendingConnect = false;
  _flags.restartingWorkerForConnect = false;
  sendWorkerLine({Command::Kind::PumpIdle});
  sendWorkerLine({Command::Kind::Disconnect});
  sendWorkerLine({Command::Kind::Quit});
  if (_link.isRunning()) {
    _clock.callAfter(kDisconnectGrace, this, [this, worker = _link.processId()] {
      if (_link.processId() != worker) return;  // it has ended, or a newer one runs
      _link.terminate();
      dropWorker();
      updateControls();
    });
  } else {
    dropWorker();
  }
  _statusLine.setStatus(QStringLiteral("Camera disconnected."), StatusKind::Neutral);
  updateControls();
}

void CameraConnection::forceCameraReconnect() {
  _cameraError.clear();
  _flags.autoConnectSuppressed = false;
  _flags.autoInitiatedConnect = false;
  _flags.manualDisconnect = false;
  _flags.connectRequested = false;
  cancelAutoReconnect();
  _flags.cameraConnected = false;
  _flags.restartingWorkerForConnect = false;  // the old worker's exit starts nothing
  _cameraConnectDetail = QStringLiteral("Restarting session…");
  _statusLine.setStatus(QStringLiteral("Forcing camera session restart…"), StatusKind::Busy);
  refreshCameraStatus();
  const qint64 oldWorker = _link.processId();
  if (_link.isRunning()) {
    sendWorkerLine({Command::Kind::Quit});
    _link.terminate();
  }
  dropWorker();
  updateControls();
  if (oldWorker >= 1) _clock.callAfter(kForceKillDelay, this, [this, oldWorker] { _link.kill(oldWorker); });
  _clock.callAfter(kForceSweepDelay, this, [this] { _surroundings.killStrayWorkers(_link.processId()); });
  _clock.callAfter(kForceConnectDelay, this, [this] {
    if (!_flags.manualDisconnect) connectCamera();
  });
}

void CameraConnection::scheduleAutoReconnect() {
  if (!retryIsWanted(_flags) || _flags.autoReconnectScheduled) return;
  _flags.autoReconnectScheduled = true;
  _reconnectTimer = _clock.callAfter(kReconnectDelay, this, [this] { reconnect(); });
}

void CameraConnection::cancelAutoReconnect() {
  _flags.autoReconnectScheduled = false;
  _clock.cancel(_reconnectTimer);
  _reconnectTimer = Clock::kNoTimer;
}

void CameraConnection::reconnect() {
  cancelAutoReconnect();
  if (!retryIsWanted(_flags) || _flags.cameraConnected) return;
  _flags.pendingConnect = true;
  _statusLine.setStatus(QStringLiteral("Trying to reconnect camera..."), StatusKind::Busy);
  if (_link.isRunning()) {
    _flags.restartingWorkerForConnect = true;
    sendWorkerLine({Command::Kind::PumpIdle});
    sendWorkerLine({Command::Kind::Disconnect});
    sendWorkerLine({Command::Kind::Quit});
    _clock.callAfter(kReconnectGrace, this, [this, worker = _link.processId()] {
      if (_link.processId() == worker) _link.terminate();
    });
  } else {
    dropWorker();
    connectWhenReady();
  }
  updateControls();
}

void CameraConnection::handleUnexpectedDisconnect(const QString& text) {
  _flags.cameraConnected = false;
  _flags.watching = false;
  warnOnce(&ConnectionFlags::disconnectWarningShown, QStringLiteral("Camera Disconnected"),
           QStringLiteral("The camera is no longer detected. Ambrel Photo Tether will try to reconnect "
                          "automatically. If it does not reconnect, check the USB cable and camera power."));
  _statusLine.setStatus(text.isEmpty() ? QStringLiteral("Camera disconnected. Retrying...") : text,
                        StatusKind::Error);
  scheduleAutoReconnect();
  updateControls();
}

void CameraConnection::updateAutoWatch() {
  const bool targetFolderSet = !_surroundings.targetDir().isEmpty();
  switch (watchStep(_flags, targetFolderSet, _surroundings.listHasRows())) {
    case WatchStep::None:
      break;
    case WatchStep::Start:
      startWatching();
      break;
    case WatchStep::Stop:
      _flags.watching = false;
      sendWorkerLine({Command::Kind::PumpIdle});
      break;
  }
  updateControls();
  _statusLine.refreshReadyStatusIfIdle();
}

void CameraConnection::startWatching() {
  _surroundings.selectSavedOrFirstCSVRow();
  _flags.watching = true;
  _flags.notWatchingCaptureWarningShown = false;
  sendWorkerLine({Command::Kind::SetDownloadDir, _surroundings.targetDir().toStdString()});
  sendWorkerLine({Command::Kind::PumpActive});
}

void CameraConnection::saveModeChanged() {
  if (!_flags.watching && _flags.cameraConnected) {
    const QString mode = _surroundings.saveModeWord();
    sendWorkerLine({Command::Kind::SetSaveDest, mode.toStdString()});
    _statusLine.setStatus(QStringLiteral("Save mode changed to %1.").arg(mode.toUpper()), StatusKind::Good);
  }
  updateControls();
}

void CameraConnection::downloadFolderChanged() {
  sendWorkerLine({Command::Kind::SetDownloadDir, _surroundings.targetDir().toStdString()});
}

void CameraConnection::shutDown() {
  _flags.manualDisconnect = true;
  _flags.restartingWorkerForConnect = false;
  sendWorkerLine({Command::Kind::Quit});
  if (_link.isRunning()) _link.terminate();
}

void CameraConnection::refreshCameraStatus() {
  const CameraPill pill = cameraPill(
      {_flags.cameraConnected, _flags.pendingConnect || _flags.connectRequested, _flags.autoInitiatedConnect,
       _cameraError, _cameraConnectDetail, !_surroundings.targetDir().isEmpty(), _flags.autoConnect,
       _flags.autoConnectSuppressed, _flags.detectRunning});
  if (pill == _pill) return;
  _pill = pill;
  Q_EMIT pillChanged();
}

void CameraConnection::updateControls() {
  refreshCameraStatus();
  Q_EMIT controlsStale();
}

}  // namespace ambrel
