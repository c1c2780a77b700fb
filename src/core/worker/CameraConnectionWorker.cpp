// SPDX-License-Identifier: Apache-2.0
// The connection's side of the worker process: starting it, sending to it, and what its end means.
#include <QDir>
#include <QFileInfo>

#include "core/worker/CameraConnection.h"

namespace ambrel {
namespace {

bool isExecutableFile(const QString& path) {
  const QFileInfo file(path);
  return file.isFile() && file.isExecutable();
}

// A network drive may answer the first call after a pause with an error, and the next one properly.
bool isFolder(const QString& path) {
  return QFileInfo(path).isDir() || QFileInfo(path).isDir();
}

}  // namespace

void CameraConnection::startWorkerIfNeeded() {
  if (_link.isRunning()) return;
  const QString worker = _files.workerPath();
  if (!isExecutableFile(worker)) {
    return refuseStart(QStringLiteral("Worker Missing"),
                       QStringLiteral("Cannot find executable worker:\n") + worker,
                       QStringLiteral("Camera worker is missing."));
  }
  QString downloadFolder = _surroundings.targetDir();
  if (downloadFolder.isEmpty()) {
    downloadFolder = _files.unsetDownloadFolder();
    QDir().mkpath(downloadFolder);
  } else if (!isFolder(downloadFolder)) {
    return refuseStart(QStringLiteral("Target Folder Missing"),
                       QStringLiteral("The selected Target Folder no longer exists. Please choose it again."),
                       QStringLiteral("Target folder missing."));
  }
  _flags.workerReady = false;
  _flags.cameraConnected = false;
  _stdoutBuffer.clear();
  const Result<void> started = _link.start(_files.launch(downloadFolder, _surroundings.saveModeWord()));
  if (!started) workerLaunchFailed(started.error());
}

void CameraConnection::workerLaunchFailed(const QString& reason) {
  refuseStart(QStringLiteral("Worker Launch Failed"), reason,
              QStringLiteral("Unable to start camera worker."));
}

void CameraConnection::refuseStart(const QString& title, const QString& message, const QString& status) {
  // Nobody will say "READY|OK": a connect left pending would lock the folder button that the operator needs.
  _flags.pendingConnect = false;
  _operator.showAlert(title, message);
  _statusLine.setStatus(status, StatusKind::Error);
  updateControls();
}

void CameraConnection::dropWorker() {
  _link.drop();
  _flags.workerReady = false;
  _stdoutBuffer.clear();
}

void CameraConnection::sendWorkerLine(const protocol::Command& command) {
  if (!_link.isRunning()) return;
  const QByteArray line = QByteArray::fromStdString(protocol::encode(command));
  // A folder's name may hold a line break, which would make two commands of one.
  if (line.contains('\n') || !_link.sendLine(line)) {
    _statusLine.setStatus(QStringLiteral("Unable to communicate with camera worker."), StatusKind::Error);
  }
}

void CameraConnection::workerExited(bool wasCurrent) {
  if (!wasCurrent && _link.isRunning()) return;  // an old worker's end says nothing about its successor
  _flags.workerReady = false;
  _flags.cameraConnected = false;
  _flags.watching = false;
  switch (exitReaction(_flags)) {
    case ExitReaction::RestartWorker:
      _flags.restartingWorkerForConnect = false;
      // What the old worker still said while it ended may have answered the wish for a connection.
      _flags.pendingConnect = true;
      startWorkerIfNeeded();
      break;
    case ExitReaction::ConnectionLost:
      handleUnexpectedDisconnect(QStringLiteral("Camera connection was lost."));
      break;
    case ExitReaction::WorkerStopped:
      _statusLine.setStatus(QStringLiteral("Camera worker stopped."), StatusKind::Error);
      break;
    case ExitReaction::Silent:
      break;
  }
  updateControls();
}

}  // namespace ambrel
