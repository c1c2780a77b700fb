// SPDX-License-Identifier: Apache-2.0
#include "core/backup/BackupQueue.h"

#include <QFileInfo>

#include "core/backup/QueueFile.h"

namespace ambrel {
namespace {

constexpr int kMaxNamesAside = 1000;

}  // namespace

BackupQueue::BackupQueue(Files& files, const Locations& locations)
    : _files(files), _locations(locations), _writer([this] { write(); }) {}

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
  QMetaObject::invokeMethod(
      this, [this, number = snapshot.number, result] { settle(number, result); }, Qt::QueuedConnection);
}

// A queue that cannot be written is no reason to leave photos without their backup: they go all the same.
void BackupQueue::settle(quint64 number, const Result<void>& result) {
  _lastSettled = number;
  if (result) {
    Q_EMIT written();
  } else {
    Q_EMIT notWritten(result.error());
  }
}

void BackupQueue::loadBackupQueue() {
  const QString path = backupQueuePath();
  const Result<QStringList> loaded = readQueueFile(path);
  if (!loaded) keepAside(path);
  _paths = loaded ? loaded.value() : QStringList();
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
