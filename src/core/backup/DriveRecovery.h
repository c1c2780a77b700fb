// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "core/base/BackgroundJobs.h"
#include "core/base/Clock.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"
#include "core/platform/MountTable.h"

namespace ambrel {

// What the application asks of the system about network drives. All but sendWakePacket may block, and may be
// called on any thread; without an operation nothing is known and nothing happens.
struct DriveMeans {
  std::function<std::optional<MountedVolume>(const QString& folder)> volumeOf;
  std::function<std::optional<QString>(const QString& host)> hardwareAddressOf;
  std::function<bool(const QString& hardwareAddress)> sendWakePacket;
  // Mounts the share that held `folder`, without asking anybody; `url` is percent-encoded.
  std::function<bool(const QString& url, const QString& folder)> remountShare;

  static DriveMeans ofTheSystem();
};

// Brings back a network drive that sleeps or has dropped off the network: remembers how it can be reached
// while it is there, and wakes and mounts it again when a copy has failed. What goes wrong on the way stays
// silent; the copy that fails speaks for itself.
class DriveRecovery : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::seconds kBetweenAttempts{60};
  static constexpr std::chrono::seconds kTimeToWakeUp{3};

  DriveRecovery(Clock& clock, Preferences& preferences, StatusLine& statusLine, DriveMeans means);

  // Remembers the share that holds the backup folder, its server and, later, the server's hardware address;
  // forgets share and hardware address for a folder on a local volume.
  void captureBackupShareInfo(const QString& backupDir);
  // Wakes the server and mounts the share; unless forced, at most once in kBetweenAttempts.
  void attemptBackupDriveRecovery(const QString& backupDir, bool force);
  // The next attempt is made whenever the last one was.
  void forgetLastAttempt() { _lastBackupRecovery.reset(); }

  // To be asked on a background thread: whether the volume that the folder was chosen on is mounted there. A
  // network drive that is gone may leave its empty mount point behind.
  std::function<bool()> driveCheck(const QString& backupDir) const;

 Q_SIGNALS:
  // The backup folder is there, or may be: the queue can go on.
  void driveBack();

 private:
  void remount(const QString& backupDir, const QString& url);

  Clock& _clock;
  Preferences& _preferences;
  StatusLine& _statusLine;
  const DriveMeans _means;
  std::optional<std::chrono::milliseconds> _lastBackupRecovery;
  BackgroundJobs _jobs;
};

}  // namespace ambrel
