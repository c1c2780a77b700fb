// SPDX-License-Identifier: Apache-2.0
#include "core/backup/Backup.h"

#include <algorithm>
#include <utility>

namespace ambrel {

using Kind = BackupOutcome::Kind;
using Names = BackupOutcome::Names;

Backup::Backup(Clock& clock, Operator& operatorSeam, Files& files, StatusLine& statusLine,
               Preferences& preferences, const Locations& locations, BackupSurroundings surroundings,
               DriveMeans driveMeans)
    : _clock(clock),
      _operator(operatorSeam),
      _files(files),
      _statusLine(statusLine),
      _preferences(preferences),
      _surroundings(std::move(surroundings)),
      _recovery(clock, preferences, statusLine, std::move(driveMeans)),
      _rightOfWay(clock),
      _backupQueue(files, locations),
      _copiesAhead(std::make_shared<CopiesAhead>(files, _rightOfWay.gate())) {
  connect(&_recovery, &DriveRecovery::driveBack, this, &Backup::processBackupQueue);
  connect(&_backupQueue, &BackupQueue::written, this, [this] {
    _queueWriteFailed = false;
    processBackupQueue();
  });
  connect(&_backupQueue, &BackupQueue::notWritten, this, &Backup::queueNotWritten);
}

BackupState Backup::state() const {
  return {.enabled = _backupEnabled,
          .dir = _backupDir,
          .queued = _backupQueue.size(),
          .busy = _backupBusy,
          .offline = _backupOffline,
          .slow = _backupSlow,
          .batchDone = _backupBatchDone,
          .batchTotal = _backupBatchTotal};
}

QString Backup::backupDestForSource(const QString& source) const {
  return ambrel::backupDestForSource(source, _surroundings.targetDir(), _backupDir);
}

void Backup::restore() {
  _backupDir = _preferences.backupDir().value_or(QString());
  _backupEnabled = _preferences.backupEnabled().value_or(false) && !_backupDir.isEmpty();
  _backupQueue.loadBackupQueue();
  Q_EMIT changed();
  if (_backupEnabled && !_backupQueue.isEmpty()) {
    _clock.callAfter(kStartDelay, this, [this] { processBackupQueue(); });
  }
}

void Backup::stop() {
  _stopped = true;
  for (Clock::TimerId* timer : {&_backupTimer, &_slowTimer, &_saveTimer, &_holdTimer})
    stopTimer(*timer);
}

void Backup::stopTimer(Clock::TimerId& timer) {
  _clock.cancel(std::exchange(timer, Clock::kNoTimer));
}

// ---- The queue at work

void Backup::backupSavedFile(const QString& path) {
  if (path.isEmpty()) return;
  if (!isSetUp()) {
    _backupQueue.pending()->settle(path);  // backup was on when the filing began
    return;
  }
  if (_backupQueue.append(path)) {
    ++_backupBatchTotal;
    _backupQueue.saveBackupQueue();
  }
  Q_EMIT changed();
  processBackupQueue();
}

void Backup::processBackupQueue() {
  if (_stopped) return;
  if (_backupBusy || !_backupEnabled || _backupQueue.isEmpty()) {
    Q_EMIT changed();
    return;
  }
  // A photo that does not count as queued yet is taken up when it does.
  if (_backupDir.isEmpty() || _windingUp || isHeld() || !_backupQueue.firstMayGo()) return;
  startCopy(_backupQueue.paths().first());
}

void Backup::startCopy(const QString& source) {
  _backupBusy = true;
  _backupSlow = false;
  _copying = source;
  _copyMoved = false;
  Q_EMIT changed();
  _slowTimer = _clock.callAfter(kSlowAfter, this, [this] {
    _backupSlow = true;
    Q_EMIT changed();
  });
  const BackupJob job{.source = source,
                      .targetDir = _surroundings.targetDir(),
                      .backupDir = _backupDir,
                      .driveIsThere = _recovery.driveCheck(_backupDir),
                      .next = _backupQueue.next(CopiesAhead::kMaxCopies)};
  _jobs.start([this, &files = _files, ahead = _copiesAhead, job]() -> BackgroundJobs::Reply {
    return [this, source = job.source, outcome = copyToBackup(files, *ahead, job)] {
      copyEnded(source, outcome);
    };
  });
}

// The copies that were made for photos whose turn does not come now are taken away.
void Backup::startWindUp() {
  _windingUp = true;
  _jobs.start([this, ahead = _copiesAhead]() -> BackgroundJobs::Reply {
    return [this, names = windUp(*ahead) ? Names::OnDisk : Names::InDoubt] {
      _windingUp = false;
      settleNames(names);
      processBackupQueue();
      tellRest();
    };
  });
}

void Backup::copyEnded(const QString& source, const BackupOutcome& outcome) {
  stopTimer(_slowTimer);
  _backupBusy = false;
  _backupSlow = false;
  if (_copyMoved || (isHeld() && outcome.kind != Kind::Done)) {
    // It waits under its new path, or is about to.
    settleNames(outcome.names);
    processBackupQueue();
  } else if (outcome.kind == Kind::Failed) {
    settleNames(outcome.names);
    copyFailed(outcome.message);
  } else {
    copySucceeded(source, outcome);
  }
  if (!_backupBusy && (outcome.copiesAhead || outcome.names == Names::Waiting)) startWindUp();
  tellRest();
  Q_EMIT changed();
}

void Backup::copyFailed(const QString& message) {
  _backupOffline = true;
  if (isSetUp()) _recovery.attemptBackupDriveRecovery(_backupDir, false);
  if (!std::exchange(_backupWarnedThisSession, true)) {
    _operator.showAlert(QStringLiteral("Backup Paused"), backupPausedMessage(_backupQueue.size(), message));
  }
  scheduleBackupRetry();
}

void Backup::copySucceeded(const QString& source, const BackupOutcome& outcome) {
  if (outcome.kind == Kind::Done) {
    _backupQueue.finish(source);
    ++_backupDoneCount;
    ++_backupBatchDone;
  } else {
    _backupQueue.remove(source);
    _backupQueue.saveBackupQueue();
  }
  settleNames(outcome.names);
  _backupOffline = false;
  _backupWarnedThisSession = false;
  if (_backupQueue.isEmpty()) {
    _backupBatchDone = 0;
    _backupBatchTotal = 0;
  }
  processBackupQueue();
}

// The file keeps the photos whose copies a crash could still undo, and is written when none of them can be.
void Backup::settleNames(Names names) {
  if (names == Names::OnDisk) {
    if (_backupQueue.settleFinished()) _backupQueue.saveBackupQueue();
  } else if (names == Names::InDoubt) {
    // The batch may have been counted out since.
    const qint64 back = _backupQueue.putFinishedBack();
    const qint64 counted = std::min(back, _backupBatchDone);
    _backupBatchDone -= counted;
    _backupBatchTotal += back - counted;
  }
}

// ---- Trying again

void Backup::scheduleBackupRetry() {
  if (_stopped || _backupTimer != Clock::kNoTimer) return;
  _backupTimer = _clock.callEvery(kRetryPeriod, this, [this] { backupRetryTick(); });
}

void Backup::backupRetryTick() {
  if (!_backupQueue.isEmpty() && _backupEnabled) {
    processBackupQueue();
  } else {
    stopTimer(_backupTimer);
  }
}

// The photos are still queued in memory, and the next write holds all of them.
void Backup::queueNotWritten(const QString& message) {
  if (_stopped) return;
  if (!std::exchange(_queueWriteFailed, true)) {
    _statusLine.setStatus(QStringLiteral("The backup queue cannot be saved: ") + message, StatusKind::Error);
  }
  stopTimer(_saveTimer);
  _saveTimer = _clock.callAfter(kRetryPeriod, this, [this] { _backupQueue.saveBackupQueue(); });
  processBackupQueue();
}

}  // namespace ambrel
