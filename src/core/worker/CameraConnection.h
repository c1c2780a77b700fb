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
#include "core/worker/WorkerFiles.h"
#include "core/worker/WorkerLink.h"

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
class CameraConnection : public QObject {
  Q_OBJECT
 public:
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

  // A block of worker output, and one trimmed line of it.
  void consumeWorkerChunk(const QString& text);
  void handleWorkerLine(const QString& line);

  bool isConnected() const { return _cameraConnected; }
  bool isWatching() const { return _watching; }
  bool isAutoConnect() const { return _autoConnect; }
  // Controls that change where photos go are locked meanwhile.
  bool isConnectPending() const { return _pendingConnect && !_cameraConnected; }
  const CameraPill& pill() const { return _pill; }

 Q_SIGNALS:
  void downloaded(const QString& path);
  void connectStarted();  // warnings that show once per connection are due again
  void controlsStale();
  void pillChanged();

 private:
  bool _cameraConnected = false;
  bool _watching = false;
  bool _autoConnect = true;
  bool _pendingConnect = false;
  CameraPill _pill;
};

}  // namespace ambrel
