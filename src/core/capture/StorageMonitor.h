// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <functional>

#include "core/base/Clock.h"
#include "core/base/Files.h"
#include "core/base/Operator.h"

namespace ambrel {

enum class StorageLevel { Unknown, Critical, Low, Healthy };

// What the storage card shows.
struct StorageReading {
  StorageLevel level = StorageLevel::Unknown;
  QString text;
  bool operator==(const StorageReading&) const = default;
};

StorageLevel storageLevel(const VolumeSpace& space);
// "1023 B", "1.0 KB", "150 GB".
QString compactStorageString(quint64 bytes);

// Watches the free space of the volume that photos are written to, and warns once each time it becomes
// critical.
class StorageMonitor : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::seconds kPeriod{15};

  // `watchedPath`: the target folder, else the desktop folder; asked on the main thread.
  StorageMonitor(Clock& clock, Files& files, Operator& operatorSeam, std::function<QString()> watchedPath);

  void startTimer();
  void stopTimer();
  // From any thread; the reading itself is taken on the main thread.
  void updateStorageLabel();
  void clearLowStorageWarning() { _lowLaptopStorageWarningShown = false; }
  const StorageReading& reading() const { return _reading; }

 Q_SIGNALS:
  void refreshed();

 private:
  void refresh();

  Clock& _clock;
  Files& _files;
  Operator& _operator;
  std::function<QString()> _watchedPath;
  StorageReading _reading;
  bool _lowLaptopStorageWarningShown = false;
  Clock::TimerId _storageTimer = Clock::kNoTimer;
};

}  // namespace ambrel
