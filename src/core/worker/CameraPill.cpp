// SPDX-License-Identifier: Apache-2.0
#include "core/worker/CameraPill.h"

namespace ambrel {
namespace {

// Most tooltips repeat the pill's text.
CameraPill pill(const QString& text, PillColor color, const QString& detail = {}) {
  return {text, color, QStringLiteral("Camera: ") + (detail.isEmpty() ? text : detail)};
}

CameraPill connectingPill(const PillInputs& inputs) {
  const bool failed = !inputs.cameraError.isEmpty();
  if (!failed && !inputs.cameraConnectDetail.isEmpty())
    return pill(QStringLiteral("Connecting…"), PillColor::Orange, inputs.cameraConnectDetail);
  if (!failed && inputs.autoInitiatedConnect) return pill(QStringLiteral("Searching…"), PillColor::Orange);
  return pill(QStringLiteral("Connecting…"), PillColor::Orange);
}

}  // namespace

CameraPill cameraPill(const PillInputs& inputs) {
  if (inputs.cameraConnected) return pill(QStringLiteral("Connected"), PillColor::Green);
  if (inputs.connecting) return connectingPill(inputs);
  if (!inputs.cameraError.isEmpty()) return pill(QStringLiteral("Error"), PillColor::Red);
  if (!inputs.targetFolderSet) {
    return pill(QStringLiteral("No folder"), PillColor::Secondary,
                QStringLiteral("Set a Target Folder to connect"));
  }
  if (!inputs.autoConnect) {
    return pill(QStringLiteral("Auto off"), PillColor::Secondary,
                QStringLiteral("Auto-connect off — use the Camera menu"));
  }
  if (inputs.autoConnectSuppressed) {
    return pill(QStringLiteral("Disconnected"), PillColor::Secondary,
                QStringLiteral("Unplug and replug to reconnect"));
  }
  if (inputs.detectRunning) return pill(QStringLiteral("Searching…"), PillColor::Orange);
  return pill(QStringLiteral("No camera"), PillColor::Orange, QStringLiteral("Waiting for a camera"));
}

}  // namespace ambrel
