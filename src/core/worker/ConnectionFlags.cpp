// SPDX-License-Identifier: Apache-2.0
#include "core/worker/ConnectionFlags.h"

namespace ambrel {

bool autoConnectIsDue(const ConnectionFlags& flags, bool workerRunning) {
  return flags.autoConnect && !flags.cameraConnected && !flags.pendingConnect && !flags.connectRequested &&
         !flags.autoConnectSuppressed && !workerRunning;
}

ToggleChoice toggleChoice(const ConnectionFlags& flags, bool workerRunning) {
  const bool retrying = workerRunning && !flags.pendingConnect && flags.connectRequested;
  return flags.cameraConnected || retrying ? ToggleChoice::Disconnect : ToggleChoice::Connect;
}

bool retryIsWanted(const ConnectionFlags& flags) {
  return flags.connectRequested && !flags.manualDisconnect;
}

ExitReaction exitReaction(const ConnectionFlags& flags) {
  if (flags.restartingWorkerForConnect) return ExitReaction::RestartWorker;
  if (flags.manualDisconnect) return ExitReaction::Silent;
  return flags.connectRequested ? ExitReaction::ConnectionLost : ExitReaction::WorkerStopped;
}

WatchStep watchStep(const ConnectionFlags& flags, bool targetFolderSet, bool listHasRows) {
  const bool wanted = flags.cameraConnected && targetFolderSet && listHasRows;
  if (wanted == flags.watching) return WatchStep::None;
  return wanted ? WatchStep::Start : WatchStep::Stop;
}

}  // namespace ambrel
