// SPDX-License-Identifier: Apache-2.0
// What the worker says, and the connection's reaction to each message.
#include "core/base/Text.h"
#include "core/worker/CameraConnection.h"
#include "core/worker/WorkerTexts.h"

namespace ambrel {

using protocol::Message;

void CameraConnection::workerBlockArrived(const QByteArray& block) {
  // What is not valid UTF-8 decodes to nothing.
  consumeWorkerChunk(std_to_ns({block.constData(), static_cast<std::size_t>(block.size())}));
}

void CameraConnection::consumeWorkerChunk(const QString& text) {
  _stdoutBuffer.feed(ns_to_std(text), [this](std::string_view line) {
    const QString trimmed = NSTrim(std_to_ns(line));
    if (!trimmed.isEmpty()) handleWorkerLine(trimmed);
  });
}

void CameraConnection::handleWorkerLine(const QString& line) {
  const Message message = protocol::parseMessage(ns_to_std(line));
  switch (message.kind) {
    case Message::Kind::Log:
    case Message::Kind::CppWorker:
    case Message::Kind::WarnCaptureIgnored:  // the capture event beside it has warned already
    case Message::Kind::Unknown:
      return;
    case Message::Kind::Ready:
      return workerIsReady();
    case Message::Kind::Status:
      return showProgress(friendlyStatusForWorker(std_to_ns(message.payload)));
    case Message::Kind::Connected:
      return cameraIsConnected();
    case Message::Kind::Disconnected:
      return cameraIsDisconnected();
    case Message::Kind::PumpActiveReady:
      setWatching(true);
      Q_EMIT watchingConfirmed();
      return;
    case Message::Kind::PumpIdleReady:
      return setWatching(false);
    case Message::Kind::WarnCardMissing:
      return warnOfMissingCard();
    case Message::Kind::CaptureEvent:
      Q_EMIT photoAnnounced();
      return warnIfPhysicalCaptureIsNotReady();
    case Message::Kind::Downloaded:
      Q_EMIT downloaded(std_to_ns(message.payload));
      return;
    case Message::Kind::Error:
      return handleWorkerError(std_to_ns(message.payload));
  }
}

void CameraConnection::workerIsReady() {
  _flags.workerReady = true;
  if (_flags.pendingConnect) sendConnect();
  updateControls();
}

void CameraConnection::showProgress(const QString& text) {
  if (_flags.cameraConnected) return _statusLine.setStatus(text, StatusKind::Busy);
  _cameraConnectDetail = text;
  refreshCameraStatus();
}

void CameraConnection::cameraIsConnected() {
  _flags.cameraConnected = true;
  _cameraError.clear();
  _cameraConnectDetail.clear();
  _flags.autoInitiatedConnect = false;
  _flags.pendingConnect = false;
  _flags.manualDisconnect = false;
  cancelAutoReconnect();
  _flags.disconnectWarningShown = false;
  _flags.watching = false;
  _flags.notWatchingCaptureWarningShown = false;
  // cardWarningShownThisConnect stays: the card's warning precedes this message.
  _surroundings.selectSavedOrFirstCSVRow();
  updateAutoWatch();
}

void CameraConnection::cameraIsDisconnected() {
  if (retryIsWanted(_flags)) {
    return handleUnexpectedDisconnect(QStringLiteral("Camera disconnected. Retrying automatically..."));
  }
  _flags.cameraConnected = false;
  _cameraConnectDetail.clear();
  updateAutoWatch();
  _statusLine.setStatus(QStringLiteral("Camera disconnected."), StatusKind::Neutral);
}

void CameraConnection::setWatching(bool watching) {
  _flags.watching = watching;
  _statusLine.refreshReadyStatusIfIdle();
  updateControls();
}

void CameraConnection::warnOfMissingCard() {
  if (!retryIsWanted(_flags)) return;
  warnOnce(&ConnectionFlags::cardWarningShownThisConnect, QStringLiteral("Memory Card Required"),
           QStringLiteral("The camera does not appear to have a memory card inserted.\n\n"
                          "Please insert a card when using Card or Both save mode."));
  _statusLine.setStatus(QStringLiteral("No camera memory card detected."), StatusKind::Error);
}

void CameraConnection::warnIfPhysicalCaptureIsNotReady() {
  if (!_flags.connectRequested || !_flags.cameraConnected) return;
  if (_surroundings.listHasRows() && !_surroundings.currentRowValid())
    _surroundings.selectSavedOrFirstCSVRow();
  if (_flags.watching) return;
  _statusLine.setStatus(QStringLiteral("Not watching — photos are ignored. Click Start before shooting."),
                        StatusKind::Error);
  warnOnce(&ConnectionFlags::notWatchingCaptureWarningShown, QStringLiteral("Not Watching Yet"),
           QStringLiteral("The camera took a photo, but watching is not active, so nothing was saved.\n\n"
                          "Click Start before shooting. This reminder won't show again until you "
                          "reconnect."));
}

void CameraConnection::handleWorkerError(const QString& text) {
  const WorkerError error = classifyWorkerError(text);
  switch (error) {
    case WorkerError::StorageWrite:
      warnOnce(&ConnectionFlags::storageWriteWarningShown, QStringLiteral("Storage Write Failed"),
               QStringLiteral("The camera or laptop could not write the photo. Check laptop free space and "
                              "the camera memory card. Disk mode only needs laptop space; Card mode needs "
                              "card space; Both mode may fail if either destination cannot complete on "
                              "some Canon bodies."));
      break;
    case WorkerError::CameraBusy:
      scheduleAutoReconnect();
      break;
    case WorkerError::CameraNotDetected:
      scheduleAutoReconnect();
      if (!_flags.autoInitiatedConnect) break;
      // Nobody asked for this attempt: a camera that is not there yet is no error.
      _cameraError.clear();
      _statusLine.setStatus(QStringLiteral("Looking for camera... (plug in and power on your camera)"),
                            StatusKind::Busy);
      return updateControls();
    case WorkerError::Other:
      break;
  }
  showError(workerErrorStatus(error, text));
}

void CameraConnection::showError(const QString& status) {
  _cameraError = status;
  _cameraConnectDetail.clear();
  _statusLine.setStatus(status, StatusKind::Error);
  updateControls();
}

void CameraConnection::warnOnce(bool ConnectionFlags::*shown, const QString& title, const QString& message) {
  if (_flags.*shown) return;
  _flags.*shown = true;
  _operator.showAlert(title, message);
}

}  // namespace ambrel
