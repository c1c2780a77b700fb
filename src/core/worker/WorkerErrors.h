// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

enum class WorkerError { StorageWrite, CameraBusy, CameraNotDetected, Other };

// What an "ERROR|" text is about, whatever its letter case. A text that speaks of storage is a storage
// failure even when it names the busy code too.
WorkerError classifyWorkerError(const QString& text);

// What the operator reads; another error's own text stays as it is.
QString workerErrorStatus(WorkerError error, const QString& text);

}  // namespace ambrel
