// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

enum class PillColor { Green, Orange, Red, Secondary };

// The camera's state in one word, with its colour and the tooltip.
struct CameraPill {
  QString text;
  PillColor color = PillColor::Secondary;
  QString toolTip;
  bool operator==(const CameraPill&) const = default;
};

// What the pill depends on.
struct PillInputs {
  bool cameraConnected = false;
  bool connecting = false;  // a connect is pending or requested
  bool autoInitiatedConnect = false;
  QString cameraError;          // empty for none
  QString cameraConnectDetail;  // empty for none
  bool targetFolderSet = false;
  bool autoConnect = true;
  bool autoConnectSuppressed = false;
  bool detectRunning = false;
};

CameraPill cameraPill(const PillInputs& inputs);

}  // namespace ambrel
