// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>

#include "core/base/Clock.h"
#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/worker/CameraPill.h"
#include "core/worker/ConnectionFlags.h"
#include "core/worker/WorkerErrors.h"
#include "core/worker/WorkerFiles.h"
#include "core/worker/WorkerLink.h"
#include "protocol/LineFramer.h"
#include "protocol/Messages.h"

namespace ambrel {

// What the connection asks of the rest of the application, at the moment of need.
struct ConnectionSurroundings {
  std::function<QString()> targetDir;     // empty when none is chosen
  std::function<QString()> saveModeWord;  // "both", "disk", "card"
  std::function<bool()> listHasRows;
  std::function<bool()> currentRowValid;
  std::function<void()> selectSavedOrFirstCSVRow;
  std::function<void(qint64 ownWorkerPid)> killStrayWorkers;
};

// Decides when the application connects to the camera and watches it, and how a lost camera comes back.
//
//   Idle --connectCamera--> Connecting --"CONNECTED|"--> Connected --folder and names--> Watching
//    ^                       ^  |   |                     ^   |                           |   |
//    |                     2 s  |   | other "ERROR|"      |   |         folder or names   |   |
//    |                       |  |   v                     |   |         gone              |   |
//    |                       |  |  Failed                 +---|---------------------------+   |
//    |                       |  |                             | camera or worker lost         |
//    |                       |  +-- not detected, busy --+    |                               |
//    |                       |                           v    v                               |
//    |                       +----------------------- Retrying <------------------------------+
//    +-- disconnectCamera, from anywhere; forceCameraReconnect, which connects again kForceConnectDelay later
class CameraConnection : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::milliseconds kAutoDetectPeriod{2500};
  static constexpr std::chrono::milliseconds kRestartDelay{750};      // connectCamera over a running worker
  static constexpr std::chrono::milliseconds kDisconnectGrace{500};   // before the worker is terminated
  static constexpr std::chrono::milliseconds kReconnectDelay{2000};   // from the loss to the next attempt
  static constexpr std::chrono::milliseconds kReconnectGrace{700};    // before the worker is terminated
  static constexpr std::chrono::milliseconds kForceKillDelay{800};    // the old worker is killed
  static constexpr std::chrono::milliseconds kForceSweepDelay{1000};  // stray workers are killed
  static constexpr std::chrono::milliseconds kForceConnectDelay{1800};

  CameraConnection(Clock& clock, WorkerLink& link, StatusLine& statusLine, Operator& operatorSeam,
                   Preferences& preferences, WorkerFiles files, ConnectionSurroundings surroundings);

  void startAutoDetectTimer();
  void stopAutoDetectTimer();
  void autoDetectTick();
  void restoreAutoConnect();  // from the preferences; the default is on
  void toggleAutoConnect();
  void toggleCameraConnection();
  void connectCameraManual();
  void connectCamera();
  void disconnectCamera();
  void forceCameraReconnect();
  void updateAutoWatch();
  void saveModeChanged();
  // The operator chose another target folder: tells a running worker.
  void downloadFolderChanged();
  // The application quits: ends the worker without treating its exit as a loss.
  void shutDown();

  // Starts a worker unless one runs. What stands in the way is told to the operator.
  void startWorkerIfNeeded();
  // A block of worker output, cut anywhere, and one trimmed line of it.
  void consumeWorkerChunk(const QString& text);
  void handleWorkerLine(const QString& line);

  // Recompute what depends on the flags: the pill, and which controls are enabled.
  void refreshCameraStatus();
  void updateControls();

  bool isConnected() const { return _flags.cameraConnected; }
  bool isWatching() const { return _flags.watching; }
  bool isAutoConnect() const { return _flags.autoConnect; }
  // Controls that change where photos go are locked meanwhile.
  bool isConnectPending() const { return _flags.pendingConnect && !_flags.cameraConnected; }
  const ConnectionFlags& flags() const { return _flags; }
  const CameraPill& pill() const { return _pill; }

 Q_SIGNALS:
  // The camera has taken a photo, which may come next or stay where it is.
  void photoAnnounced();
  void downloaded(const QString& path);
  void watchingConfirmed();  // from now on the worker fetches every photo that is taken
  void connectStarted();     // warnings that show once per connection are due again
  void controlsStale();
  void pillChanged();

 private:
  void sendWorkerLine(const protocol::Command& command);
  void sendConnect();
  void connectWhenReady();
  void restartWorkerForConnect();
  void dropWorker();
  void scheduleAutoReconnect();
  void cancelAutoReconnect();
  void reconnect();
  void handleUnexpectedDisconnect(const QString& text);
  void startWatching();

  void workerBlockArrived(const QByteArray& block);
  void workerExited(bool wasCurrent);
  void workerLaunchFailed(const QString& reason);
  void refuseStart(const QString& title, const QString& message, const QString& status);

  void workerIsReady();
  void showProgress(const QString& text);
  void cameraIsConnected();
  void cameraIsDisconnected();
  void setWatching(bool watching);
  void warnOfMissingCard();
  void warnIfPhysicalCaptureIsNotReady();
  void handleWorkerError(const QString& text);
  void warnOnce(bool ConnectionFlags::*shown, const QString& title, const QString& message);
  void showError(const QString& status);

  Clock& _clock;
  WorkerLink& _link;
  StatusLine& _statusLine;
  Operator& _operator;
  Preferences& _preferences;
  WorkerFiles _files;
  ConnectionSurroundings _surroundings;

  ConnectionFlags _flags;
  QString _cameraError;          // the last error's text, or empty
  QString _cameraConnectDetail;  // how far the attempt has come, or empty
  CameraPill _pill;
  protocol::LineFramer _stdoutBuffer;
  Clock::TimerId _detectTimer = Clock::kNoTimer;
  Clock::TimerId _reconnectTimer = Clock::kNoTimer;
};

}  // namespace ambrel
