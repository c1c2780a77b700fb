// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "core/backup/BackupCopy.h"
#include "core/backup/BackupQueue.h"
#include "core/backup/BackupView.h"
#include "core/backup/DriveRecovery.h"
#include "core/backup/RightOfWay.h"
#include "core/base/BackgroundJobs.h"
#include "core/base/Clock.h"
#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"

namespace ambrel {

// What the backup asks of the rest of the application; the second on any thread.
struct BackupSurroundings {
  std::function<QString()> targetDir;
  std::function<bool(const QString& name)> isImageFileName;
};

// Copies every filed photo to a second folder, which may lie on a network drive: one at a time, in the
// background, from a queue that survives restarts. A copy that fails stays first in the queue and is tried
// again for as long as the application runs.
//
// `files` is used by the copying thread. One that is stuck on a drive that is gone outlives this object, so
// `files` has to last until the process ends.
class Backup : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::seconds kSlowAfter{4};
  static constexpr std::chrono::seconds kRetryPeriod{20};
  static constexpr std::chrono::seconds kStartDelay{2};

  Backup(Clock& clock, Operator& operatorSeam, Files& files, StatusLine& statusLine, Preferences& preferences,
         const Locations& locations, BackupSurroundings surroundings, DriveMeans driveMeans);

  // Intents of the operator.
  void chooseBackupFolder();
  void toggleBackupEnabled();
  void retryBackupNow();
  void wakeAndReconnectBackup();
  void backupMissingNow();
  void clearBackupQueue();

  // What the window shows. All of it may be different after changed().
  BackupState state() const;
  BackupButtonLook button() const { return backupButtonLook(state()); }
  BackupMenuLook menu() const { return backupMenuLook(state()); }
  BackupPopUp popUp() const { return backupPopUp(state()); }
  BackupCardLook card() const { return backupCardLook(state()); }
  QString backupStateText() const { return ambrel::backupStateText(state()); }
  QString backupDir() const { return _backupDir; }
  bool isEnabled() const { return _backupEnabled; }
  qint64 backupDoneCount() const { return _backupDoneCount; }

  // Settings and queue of the last run; what waits is copied from kStartDelay later on.
  void restore();
  // What other threads are to tell of photos that are about to be filed, so that none is forgotten if the
  // application dies before backupSavedFile; they may hold on to it. None while backup is off.
  std::shared_ptr<PendingPhotos> pendingPhotos() const {
    return isSetUp() ? _backupQueue.pending() : nullptr;
  }
  // What comes from the camera goes before the copies.
  RightOfWay& rightOfWay() { return _rightOfWay; }
  // A photo has been filed under this absolute path.
  void backupSavedFile(const QString& path);
  // Starts the next copy where that is possible; safe to call at any time.
  void processBackupQueue();
  // Photos are about to get other paths: no copy is begun until backupFollowed(), which comes once for each
  // call, or for kRetryPeriod at most.
  void photosWillMove();
  // The queue goes with them. `announced` was added to pendingPhotos() beforehand.
  void photosMoved(const std::vector<MovedPaths>& moves, const QStringList& announced);
  void backupFollowed();
  // Calls back once no copy is under way, or when nothing is held back any more.
  void whenAtRest(std::function<void()> act);
  // The path that mirrors one in the target folder.
  QString backupDestForSource(const QString& source) const;
  const BackupQueue& queue() const { return _backupQueue; }
  // For quitting: nothing is started any more. A copy under way is left to itself, and starts anew next time.
  void stop();

 Q_SIGNALS:
  void changed();

 private:
  bool isSetUp() const { return _backupEnabled && !_backupDir.isEmpty(); }
  void startCopy(const QString& source);
  void startWindUp();
  void copyEnded(const QString& source, const BackupOutcome& outcome);
  void copyFailed(const QString& message);
  void copySucceeded(const QString& source, const BackupOutcome& outcome);
  void settleNames(BackupOutcome::Names names);
  void scheduleBackupRetry();
  void backupRetryTick();
  void stopTimer(Clock::TimerId& timer);
  void queueNotWritten(const QString& message);
  void useBackupFolder(const QString& path);
  bool refuseFolder(const QString& path);
  void storeEnabled();
  void queueMissing(const QStringList& missing);
  void emptyQueue();
  bool isHeld() const { return _moves > 0 && !_heldTooLong; }
  void goOn();
  void tellRest();
  void queueUncopied(const QStringList& photos);
  void forgetAnnounced(const QStringList& announced);

  Clock& _clock;
  Operator& _operator;
  Files& _files;
  StatusLine& _statusLine;
  Preferences& _preferences;
  BackupSurroundings _surroundings;
  DriveRecovery _recovery;
  RightOfWay _rightOfWay;
  BackupQueue _backupQueue;

  QString _backupDir;
  bool _backupEnabled = false;
  bool _backupWarnedThisSession = false;
  bool _backupBusy = false;
  bool _backupOffline = false;
  bool _backupSlow = false;
  bool _windingUp = false;
  bool _lookingForMissing = false;
  bool _queueWriteFailed = false;
  bool _stopped = false;
  int _moves = 0;  // that the backup has not followed yet
  bool _heldTooLong = false;
  bool _copyMoved = false;       // the photo of the copy under way
  QStringList _movedWithOthers;  // beside photos that waited; to be looked at when the backup has followed
  QStringList _announced;        // paths that are pending until then
  std::vector<std::function<void()>> _whenAtRest;
  QString _copying;
  qint64 _backupDoneCount = 0;
  qint64 _backupBatchDone = 0;
  qint64 _backupBatchTotal = 0;
  Clock::TimerId _backupTimer = Clock::kNoTimer;
  Clock::TimerId _slowTimer = Clock::kNoTimer;
  Clock::TimerId _saveTimer = Clock::kNoTimer;
  Clock::TimerId _holdTimer = Clock::kNoTimer;
  std::shared_ptr<CopiesAhead> _copiesAhead;  // used by one job at a time
  BackgroundJobs _jobs;
};

}  // namespace ambrel
