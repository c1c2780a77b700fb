// SPDX-License-Identifier: Apache-2.0
#include "core/backup/BackupQueue.h"

#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <utility>

#include "core/backup/BackupCopy.h"
#include "core/backup/QueueFile.h"

namespace ambrel {
namespace {

constexpr int kMaxNamesAside = 1000;

}  // namespace

QString MovedPaths::now(const QString& path) const {
  QString now = path;
  for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
    if (now.startsWith(folder.key() + QLatin1Char('/'))) {
      now = folder.value() + now.mid(folder.key().size());
      break;
    }
  }
  return files.value(now, now);
}

QString pathAfter(const std::vector<MovedPaths>& moves, const QString& path) {
  QString now = path;
  for (const MovedPaths& moved : moves)
    now = moved.now(now);
  return now;
}

BackupQueue::BackupQueue(Files& files, const Locations& locations)
    : _files(files),
      _locations(locations),
      _pending(std::make_shared<PendingPhotos>(locations.dataFile(QStringLiteral("backup_pending")))),
      _doorbell([this] { settleOne(); }),
      _writer([this] { write(); }) {}

QString BackupQueue::backupQueuePath() const {
  return _locations.dataFile(QStringLiteral("backup_queue.plist"));
}

void BackupQueue::saveBackupQueue() {
  {
    const std::lock_guard lock(_mutex);
    _toWrite.paths = _finished + _paths;
    _toWrite.number = ++_lastSave;
    _toWrite.arrived += std::exchange(_arrived, {});
    _toWrite.gone += std::exchange(_gone, {});
  }
  _writer.request();
}

// On the writing thread.
void BackupQueue::write() {
  Snapshot snapshot;
  {
    const std::lock_guard lock(_mutex);
    snapshot = _toWrite;
    _toWrite.arrived.clear();
    _toWrite.gone.clear();
  }
  settlePending(snapshot.gone);
  const Result<void> result = _files.replaceWhole(backupQueuePath(), encodeQueue(snapshot.paths));
  if (result) settlePending(snapshot.arrived);
  const std::lock_guard lock(_mutex);
  if (!result) _toWrite.arrived = snapshot.arrived + _toWrite.arrived;
  _outcomes.push_back({snapshot.number, result});
  _doorbell.ring();
}

void BackupQueue::settlePending(const QStringList& paths) {
  for (const QString& path : paths)
    _pending->settle(path);
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
  takeUpPending();
}

// An empty file there is no photo. Filing was about to take it away.
void BackupQueue::takeUpPending() {
  const QStringList pending = _pending->paths();
  for (const QString& path : pending) {
    const bool filed = backupCopySize(path).value_or(0) > 0;
    (filed ? _arrived : _gone).append(path);
    if (filed) append(path);
  }
  if (!pending.isEmpty()) saveBackupQueue();
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
  _arrived.append(path);
  _savedWith.insert(path, _lastSave + 1);
  return true;
}

void BackupQueue::remove(const QString& path) {
  finish(path);
  if (_finished.removeOne(path)) _gone.append(path);
}

void BackupQueue::finish(const QString& path) {
  if (_savedWith.remove(path) == 0) return;
  _paths.removeOne(path);
  _finished.append(path);
}

bool BackupQueue::settleFinished() {
  const QStringList finished = std::exchange(_finished, {});
  _gone += finished;
  return !finished.isEmpty();
}

qint64 BackupQueue::putFinishedBack() {
  QStringList back = std::exchange(_finished, {});
  back.erase(std::remove_if(back.begin(), back.end(),
                            [this](const QString& path) { return _savedWith.contains(path); }),
             back.end());
  for (const QString& path : back)
    _savedWith.insert(path, _lastSettled);  // they are in the file
  _paths = back + _paths;
  return back.size();
}

void BackupQueue::clear() {
  _gone += std::exchange(_paths, {});
  _savedWith.clear();
}

qint64 BackupQueue::follow(const std::vector<MovedPaths>& moves) {
  qint64 followed = 0;
  QSet<QString> followers;
  QHash<QString, quint64> savedWith;
  const auto follow = [&](const QString& path) {
    const QString now = pathAfter(moves, path);
    if (now == path) return path;
    ++followed;
    followers.insert(now);
    _gone.append(path);
    return now;
  };
  QStringList waiting;
  for (const QString& path : std::as_const(_paths)) {
    const QString now = follow(path);
    if (savedWith.contains(now)) continue;
    savedWith.insert(now, now == path ? _savedWith.value(path) : _lastSave + 1);
    waiting.append(now);
  }
  _paths = waiting;
  _savedWith = savedWith;
  for (QString& path : _finished)
    path = follow(path);
  _arrived.append(followers.values());
  return followed;
}

void BackupQueue::forgetPending(const QStringList& paths) {
  for (const QString& path : paths) {
    if (!_savedWith.contains(path) && !_finished.contains(path)) _gone.append(path);
  }
}

bool BackupQueue::firstMayGo() const {
  return !_paths.isEmpty() && mayGo(_paths.first());
}

QStringList BackupQueue::next(qsizetype count) const {
  QStringList next = _paths.mid(1, count);
  while (!next.isEmpty() && !mayGo(next.last()))
    next.removeLast();
  return next;
}

}  // namespace ambrel
