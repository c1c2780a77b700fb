// SPDX-License-Identifier: Apache-2.0
// What the backup does while photos get other paths: it lets go, follows, and looks after their copies.
#include <utility>

#include "core/backup/Backup.h"

namespace ambrel {
namespace {

QStringList withoutCopy(const QStringList& photos, const QString& targetDir, const QString& backupDir) {
  QStringList uncopied;
  for (const QString& photo : photos) {
    const auto size = backupCopySize(photo);
    const QString copy = backupDestForSource(photo, targetDir, backupDir);
    if (size && backupCopySize(copy) != size) uncopied.append(photo);
  }
  return uncopied;
}

}  // namespace

void Backup::photosWillMove() {
  if (_stopped || ++_moves > 1) return;
  _heldTooLong = false;
  _holdTimer = _clock.callAfter(kRetryPeriod, this, [this] {
    _holdTimer = Clock::kNoTimer;
    _heldTooLong = true;
    goOn();
  });
}

// The copies of a merged folder get numbers in their own order: where some are missing, others may come to
// lie where theirs belong.
void Backup::photosMoved(const std::vector<MovedPaths>& moves, const QStringList& announced) {
  const bool copyMoved = _backupBusy && pathAfter(moves, _copying) != _copying;
  _copyMoved = _copyMoved || copyMoved;
  const bool waited = _backupQueue.follow(moves) > 0 || copyMoved;
  if (waited) {
    for (auto moved = moves.begin(); moved != moves.end(); ++moved) {
      const std::vector<MovedPaths> later(moved + 1, moves.end());
      for (const QString& file : moved->files)
        _movedWithOthers.append(pathAfter(later, file));
    }
    _announced += announced;  // a launch after this moment looks at all of them
    _backupQueue.saveBackupQueue();
  } else {
    forgetAnnounced(announced);
  }
  Q_EMIT changed();
}

void Backup::backupFollowed() {
  if (_moves == 0 || --_moves > 0) return;
  stopTimer(_holdTimer);
  goOn();
  const QStringList photos = std::exchange(_movedWithOthers, {});
  const QStringList announced = std::exchange(_announced, {});
  if (photos.isEmpty() || !isSetUp()) {
    forgetAnnounced(announced);
    return;
  }
  _jobs.start([this, photos, announced, targetDir = _surroundings.targetDir(),
               dir = _backupDir]() -> BackgroundJobs::Reply {
    return [this, announced, dir, uncopied = withoutCopy(photos, targetDir, dir)] {
      if (isSetUp() && _backupDir == dir) queueUncopied(uncopied);
      forgetAnnounced(announced);
    };
  });
}

void Backup::forgetAnnounced(const QStringList& announced) {
  if (announced.isEmpty()) return;
  _backupQueue.forgetPending(announced);
  _backupQueue.saveBackupQueue();
}

void Backup::queueUncopied(const QStringList& photos) {
  for (const QString& photo : photos) {
    if (_backupQueue.append(photo)) ++_backupBatchTotal;
  }
  if (photos.isEmpty()) return;
  _backupQueue.saveBackupQueue();
  Q_EMIT changed();
  processBackupQueue();
}

void Backup::goOn() {
  processBackupQueue();
  tellRest();
}

void Backup::whenAtRest(std::function<void()> act) {
  _whenAtRest.push_back(std::move(act));
  tellRest();
}

void Backup::tellRest() {
  if (isHeld() && (_backupBusy || _windingUp)) return;
  for (const auto& act : std::exchange(_whenAtRest, {}))
    act();
}

}  // namespace ambrel
