// SPDX-License-Identifier: Apache-2.0
#include "core/backup/BackupQueue.h"

#include <QFileInfo>

#include "core/backup/QueueFile.h"

namespace ambrel {
namespace {

constexpr int kMaxNamesAside = 1000;

}  // namespace

BackupQueue::BackupQueue(Files& files, const Locations& locations)
    : _files(files),
      _locations(locations),
      _doorbell([this] { settleOne(); }),
      _writer([this] { write(); }) {}

QString BackupQueue::backupQueuePath() const {
  return _locations.dataFile(QStringLiteral("backup_queue.plist"));
}

void BackupQueue::saveBackupQueue() {
  {
    const std::lock_guard lock(_mutex);
    _toWrite = {_paths, ++_lastSave};
  }
  _writer.request();
}

// On the writing thread.
void BackupQueue::write() {
  Snapshot snapshot;
  {
    const std::lock_guard lock(_mutex);
    snapshot = _toWrite;
  }
  const Result<void> result = _files.replaceWhole(backupQueuePath(), encodeQueue(snapshot.paths));
  const std::lock_guard lock(_mutex);
  _outcomes.push_back({snapshot.number, result});
  _doorbell.ring();
}

// A queue that cannot be written is no reason to leave photos without their backup: they go all the same.
void BackupQueue::settleOne() {
  const Outcome outcome = [this] {
    const std::lock_guard lock(_mutex);
    Outcome first = std::move(_outcomes.front());
    _outcomes.pop_front();
    return first;
  }();
  _lastSettled = outcome.number;
  if (outcome.result) {
    Q_EMIT written();
  } else {
    Q_EMIT notWritten(outcome.result.error());
  }
}

void BackupQueue::loadBackupQueue() {
  const QString path = backupQueuePath();
  const QueueFile loaded = restoreQueueFile(_files, path);
  if (loaded.state == QueueFile::State::Broken) keepAside(path);
  _paths = loaded.paths;
  _savedWith.clear();
  for (const QString& queued : _paths)
    _savedWith.insert(queued, _lastSettled);
}

void BackupQueue::keepAside(const QString& path) {
  const QString aside = path + QStringLiteral(".broken");
  for (int number = 1; number <= kMaxNamesAside; ++number) {
    const QString name = number == 1 ? aside : QStringLiteral("%1-%2").arg(aside).arg(number);
    if (_files.moveWithoutOverwriting(path, name).outcome != Files::MoveOutcome::Taken) return;
  }
}

bool BackupQueue::append(const QString& path) {
  if (_savedWith.contains(path)) return false;
  _paths.append(path);
  _savedWith.insert(path, _lastSave + 1);
  return true;
}

void BackupQueue::remove(const QString& path) {
  if (_savedWith.remove(path) > 0) _paths.removeOne(path);
}

void BackupQueue::clear() {
  _paths.clear();
  _savedWith.clear();
}

bool BackupQueue::firstMayGo() const {
  return !_paths.isEmpty() && _savedWith.value(_paths.first()) <= _lastSettled;
}

}  // namespace ambrel
