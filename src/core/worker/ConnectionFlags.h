// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace ambrel {

// What the connection to the camera remembers. The states that they make up are drawn in CameraConnection.h.
struct ConnectionFlags {
  bool workerReady = false;                 // the running worker has said "READY|OK"
  bool pendingConnect = false;              // a connect was asked for, its command waits for "READY|OK"
  bool connectRequested = false;            // operator or auto-connect want a camera; keeps retries going
  bool cameraConnected = false;             // "CONNECTED|", and no disconnect since
  bool watching = false;                    // captures are downloaded
  bool manualDisconnect = false;            // the operator ended it: a worker's exit is then no error
  bool autoReconnectScheduled = false;      // an attempt to reconnect is due
  bool restartingWorkerForConnect = false;  // the worker is stopped only to be started again

  bool autoConnect = true;             // the operator's setting
  bool autoConnectSuppressed = false;  // auto-connect rests after a manual disconnect
  bool autoInitiatedConnect = false;   // the current attempt is auto-connect's, not the operator's
  bool detectRunning = false;          // nothing sets it; the pill has a row for it

  // Warnings already shown in this connection.
  bool disconnectWarningShown = false;
  bool cardWarningShownThisConnect = false;
  bool storageWriteWarningShown = false;
  bool notWatchingCaptureWarningShown = false;
};

// Whether the auto-detect timer may start a connect now.
bool autoConnectIsDue(const ConnectionFlags& flags, bool workerRunning);

enum class ToggleChoice { Connect, Disconnect };
// What a single connect/disconnect control does. Pressed while retrying, it stops the retrying.
ToggleChoice toggleChoice(const ConnectionFlags& flags, bool workerRunning);

// Whether a lost or missing camera is still wanted, so that trying again makes sense.
bool retryIsWanted(const ConnectionFlags& flags);

enum class ExitReaction { RestartWorker, ConnectionLost, WorkerStopped, Silent };
// What the end of the worker means.
ExitReaction exitReaction(const ConnectionFlags& flags);

enum class WatchStep { None, Start, Stop };
WatchStep watchStep(const ConnectionFlags& flags, bool targetFolderSet, bool listHasRows);

}  // namespace ambrel
