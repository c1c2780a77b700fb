// SPDX-License-Identifier: Apache-2.0
#include "core/backup/DriveRecovery.h"

#include <QFileInfo>
#include <utility>

#include "core/backup/ShareAddress.h"
#include "core/backup/WakeOnLan.h"
#include "core/platform/HardwareAddress.h"
#include "core/platform/RemountShare.h"

namespace ambrel {

DriveMeans DriveMeans::ofTheSystem() {
  return {.volumeOf = ambrel::volumeOf,
          .hardwareAddressOf = ambrel::hardwareAddressOf,
          .sendWakePacket = [](const QString& address) { return sendWakeOnLANToMAC(address); },
          .remountShare = ambrel::remountShare};
}

DriveRecovery::DriveRecovery(Clock& clock, Preferences& preferences, StatusLine& statusLine, DriveMeans means)
    : _clock(clock), _preferences(preferences), _statusLine(statusLine), _means(std::move(means)) {}

void DriveRecovery::captureBackupShareInfo(const QString& backupDir) {
  if (backupDir.isEmpty() || !_means.volumeOf) return;
  const std::optional<MountedVolume> volume = _means.volumeOf(backupDir);
  if (!volume) return;
  if (!isNetworkShare(*volume)) {
    _preferences.setBackupShareURL(std::nullopt);
    _preferences.setBackupMAC(std::nullopt);
    return;
  }
  _preferences.setBackupShareURL(shareUrl(*volume));
  const QString host = shareHost(volume->source);
  if (host.isEmpty()) return;
  _preferences.setBackupHost(host);
  if (!_means.hardwareAddressOf) return;
  _jobs.start([this, lookUp = _means.hardwareAddressOf, host]() -> BackgroundJobs::Reply {
    const std::optional<QString> address = lookUp(host);
    if (!address) return {};
    return [this, address = *address] {
      _preferences.setBackupMAC(address);
      _preferences.synchronize();
    };
  });
}

void DriveRecovery::attemptBackupDriveRecovery(const QString& backupDir, bool force) {
  const std::chrono::milliseconds now = _clock.now();
  if (!force && _lastBackupRecovery && now - *_lastBackupRecovery < kBetweenAttempts) return;
  _lastBackupRecovery = now;
  const QString address = _preferences.backupMAC().value_or(QString());
  const QString url = _preferences.backupShareURL().value_or(QString());
  const bool woken = !address.isEmpty() && _means.sendWakePacket && _means.sendWakePacket(address);
  if (woken) {
    _statusLine.setStatus(QStringLiteral("Sent wake signal to the backup drive…"), StatusKind::Busy);
  }
  if (url.isEmpty()) return;
  if (!woken) return remount(backupDir, url);
  _clock.callAfter(kTimeToWakeUp, this, [this, backupDir, url] { remount(backupDir, url); });
}

void DriveRecovery::remount(const QString& backupDir, const QString& url) {
  if (!_means.remountShare) return;
  _jobs.start([this, means = _means, isThere = driveCheck(backupDir), backupDir,
               url]() -> BackgroundJobs::Reply {
    const auto folderIsThere = [&] { return QFileInfo::exists(backupDir) && isThere(); };
    if (folderIsThere()) return [this] { Q_EMIT driveBack(); };
    if (!means.remountShare(percentEncodedShare(url), backupDir) && !folderIsThere()) return {};
    return [this] {
      _statusLine.setStatus(QStringLiteral("Backup drive reconnected — resuming backups."), StatusKind::Good);
      Q_EMIT driveBack();
    };
  });
}

std::function<bool()> DriveRecovery::driveCheck(const QString& backupDir) const {
  const bool onShare = !_preferences.backupShareURL().value_or(QString()).isEmpty();
  if (!onShare || !_means.volumeOf) return [] { return true; };
  return [look = _means.volumeOf, backupDir] {
    const std::optional<MountedVolume> volume = look(backupDir);
    return !volume || isNetworkShare(*volume);
  };
}

}  // namespace ambrel
