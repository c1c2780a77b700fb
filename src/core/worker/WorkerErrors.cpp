// SPDX-License-Identifier: Apache-2.0
#include "core/worker/WorkerErrors.h"

#include <algorithm>
#include <initializer_list>

namespace ambrel {
namespace {

bool containsAny(const QString& text, std::initializer_list<QLatin1String> needles) {
  return std::any_of(needles.begin(), needles.end(),
                     [&text](QLatin1String needle) { return text.contains(needle); });
}

}  // namespace

WorkerError classifyWorkerError(const QString& text) {
  const QString lower = text.toLower();
  if (containsAny(lower, {QLatin1String("download failed"), QLatin1String("createfilestream"),
                          QLatin1String("storage"), QLatin1String("disk")}))
    return WorkerError::StorageWrite;
  if (containsAny(lower, {QLatin1String("camera busy"), QLatin1String("0x000000c0")}))
    return WorkerError::CameraBusy;
  if (lower.contains(QLatin1String("camera not detected"))) return WorkerError::CameraNotDetected;
  return WorkerError::Other;
}

QString workerErrorStatus(WorkerError error, const QString& text) {
  switch (error) {
    case WorkerError::StorageWrite:
      return QStringLiteral("Storage write failed. Check laptop free space and camera memory card space.");
    case WorkerError::CameraBusy:
      return QStringLiteral(
          "Camera busy — close EOS Utility / Photos / Image Capture, or replug the camera. Retrying…");
    case WorkerError::CameraNotDetected:
      return QStringLiteral("Camera not detected. Check USB/camera power. Retrying...");
    case WorkerError::Other:
      return text;
  }
  return text;
}

}  // namespace ambrel
