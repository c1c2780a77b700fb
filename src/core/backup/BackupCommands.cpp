// SPDX-License-Identifier: Apache-2.0
// What the operator asks of the backup.
#include "core/backup/Backup.h"
#include "core/backup/FolderIdentity.h"
#include "core/backup/MissingFiles.h"
#include "core/base/Text.h"

namespace ambrel {
namespace {

// Why a folder cannot take the copies; empty when it can.
QString objectionTo(FolderRelation relation) {
  switch (relation) {
    case FolderRelation::Apart:
      return {};
    case FolderRelation::Same:
      return QStringLiteral("This is the target folder itself. Choose another folder for the copies.");
    case FolderRelation::Inside:
      return QStringLiteral(
          "This folder lies inside the target folder. Choose a folder outside of it for the copies.");
    case FolderRelation::Around:
      return QStringLiteral(
          "The target folder lies inside this folder. Choose a folder apart from it for the copies.");
  }
  return {};
}

}  // namespace

void Backup::chooseBackupFolder() {
  _operator.choosePath(
      {.kind = PathRequest::Kind::OpenFolder,
       .message = QStringLiteral("Choose a backup folder. A network drive already mounted in "
                                 "Finder works here too.")},
      [this](const QString& path) {
        if (!path.isEmpty() && !refuseFolder(path)) useBackupFolder(path);
      });
}

bool Backup::refuseFolder(const QString& path) {
  const QString objection = objectionTo(relationOf(path, _surroundings.targetDir()));
  if (objection.isEmpty()) return false;
  _operator.showAlert(QStringLiteral("Folder Cannot Be Used"), objection);
  return true;
}

void Backup::useBackupFolder(const QString& path) {
  _backupDir = path;
  _backupEnabled = true;
  _preferences.setBackupDir(path);
  _recovery.captureBackupShareInfo(path);
  storeEnabled();
  Q_EMIT changed();
  _statusLine.setStatus(QStringLiteral("Backup ON → ") + path, StatusKind::Good);
}

void Backup::storeEnabled() {
  _preferences.setBackupEnabled(_backupEnabled);
  _preferences.synchronize();
}

void Backup::toggleBackupEnabled() {
  if (!_backupEnabled && _backupDir.isEmpty()) {
    chooseBackupFolder();
    return;
  }
  _backupEnabled = !_backupEnabled;
  _backupWarnedThisSession = false;
  storeEnabled();
  Q_EMIT changed();
  _statusLine.setStatus(
      _backupEnabled ? QStringLiteral("Backup ON → ") + _backupDir : QStringLiteral("Backup OFF."),
      StatusKind::Neutral);
}

void Backup::retryBackupNow() {
  _backupWarnedThisSession = false;
  processBackupQueue();
  const qint64 count = _backupQueue.size();
  _statusLine.setStatus(count > 0 ? QStringLiteral("Retrying backup of %1 file").arg(count) +
                                        pluralEnding(count) + QStringLiteral("…")
                                  : QStringLiteral("Backup is already up to date."),
                        StatusKind::Busy);
}

void Backup::wakeAndReconnectBackup() {
  _recovery.forgetLastAttempt();
  _backupWarnedThisSession = false;
  if (isSetUp()) _recovery.attemptBackupDriveRecovery(_backupDir, true);
}

void Backup::backupMissingNow() {
  if (!isSetUp()) {
    _operator.showAlert(QStringLiteral("Backup Not Set Up"),
                        QStringLiteral("Choose a backup folder and turn Backup on first."));
    return;
  }
  const QString targetDir = _surroundings.targetDir();
  if (targetDir.isEmpty()) {
    _operator.showAlert(QStringLiteral("No Target Folder"), QStringLiteral("Choose a Target Folder first."));
    return;
  }
  if (_lookingForMissing) return;
  _lookingForMissing = true;
  _jobs.start([this, targetDir, backupDir = _backupDir,
               isImage = _surroundings.isImageFileName]() -> BackgroundJobs::Reply {
    return [this, targetDir, backupDir, missing = missingFromBackup(targetDir, backupDir, isImage)] {
      _lookingForMissing = false;
      // What was found is about these two folders only.
      const bool same = _backupDir == backupDir && _surroundings.targetDir() == targetDir;
      if (isSetUp() && same) queueMissing(missing);
    };
  });
}

void Backup::queueMissing(const QStringList& missing) {
  qint64 count = 0;
  for (const QString& path : missing)
    count += _backupQueue.append(path) ? 1 : 0;
  _backupBatchTotal += count;
  _backupQueue.saveBackupQueue();
  Q_EMIT changed();
  if (count == 0) {
    _statusLine.setStatus(QStringLiteral("Backup is already complete — nothing missing."), StatusKind::Good);
    return;
  }
  _statusLine.setStatus(QStringLiteral("Queued %1 missing file").arg(count) + pluralEnding(count) +
                            QStringLiteral(" for backup."),
                        StatusKind::Busy);
  processBackupQueue();
}

void Backup::clearBackupQueue() {
  if (_backupQueue.isEmpty()) {
    _statusLine.setStatus(QStringLiteral("Backup queue is already empty."), StatusKind::Neutral);
    return;
  }
  const qint64 count = _backupQueue.size();
  _operator.ask(
      {.title = QStringLiteral("Clear %1 waiting backup").arg(count) + pluralEnding(count) + QLatin1Char('?'),
       .message = QStringLiteral("Those photos won't be backed up unless you run Back Up Missing "
                                 "Files Now later. Your originals in the Target Folder are "
                                 "untouched."),
       .buttons = {QStringLiteral("Clear Queue"), QStringLiteral("Cancel")}},
      [this](const Answer& answer) {
        if (answer.button == 0) emptyQueue();
      });
}

// The counters of the batch go on from where they are.
void Backup::emptyQueue() {
  _backupQueue.clear();
  _backupQueue.saveBackupQueue();
  _backupOffline = false;
  stopTimer(_backupTimer);
  Q_EMIT changed();
  _statusLine.setStatus(QStringLiteral("Backup queue cleared."), StatusKind::Neutral);
}

}  // namespace ambrel
