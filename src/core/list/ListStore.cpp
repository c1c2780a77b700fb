// SPDX-License-Identifier: Apache-2.0
#include "core/list/ListStore.h"

#include <QFile>
#include <utility>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/list/GridFile.h"

namespace ambrel {
namespace {

constexpr int kMaxNamesAside = 1000;

}  // namespace

ListStore::ListStore(Files& files, const Locations& locations, std::chrono::milliseconds longestWait)
    : _files(files),
      _locations(locations),
      _longestWait(longestWait),
      _flusher([this, path = gridStorePath()] {
        // A list that cannot be flushed stays in memory and is flushed with the next change.
        (void)_files.flush(path);
      }),
      _writer([this] { carryOut(); }) {}

QString ListStore::gridStorePath() const {
  return _locations.dataFile(QStringLiteral("ambrel_grid.csv"));
}

bool ListStore::exists() const {
  return QFile::exists(gridStorePath());
}

bool ListStore::save(const NameGrid& grid) {
  _readAhead.forget();
  if (_unread && !keepUnreadFileAside()) {
    const std::lock_guard lock(_mutex);
    _failed = true;
    return false;
  }
  _text.update(grid);
  begin(Task::Write, _text.bytes());
  return !isUnsaved();
}

bool ListStore::isUnsaved() const {
  const std::lock_guard lock(_mutex);
  return _failed;
}

void ListStore::begin(Task task, const QByteArray& bytes) {
  {
    const std::lock_guard lock(_mutex);
    _task = task;
    _toWrite = bytes;
    _failed = false;
  }
  _writer.request();
  (void)_writer.finishWithin(_longestWait);
}

// On the writer's thread.
void ListStore::carryOut() {
  const QString path = gridStorePath();
  Task task = Task::None;
  QByteArray bytes;
  {
    const std::lock_guard lock(_mutex);
    task = std::exchange(_task, Task::None);
    bytes = std::exchange(_toWrite, QByteArray());
  }
  if (task == Task::Remove) (void)_files.remove(path);
  if (task != Task::Write) return;
  const bool written = _files.replaceWholeUnflushed(path, bytes).ok();
  if (written) _flusher.request();
  const std::lock_guard lock(_mutex);
  // What came meanwhile is judged by its own turn.
  if (_task == Task::None) _failed = !written;
}

void ListStore::finishFlush() {
  _writer.finish();
  _flusher.finish();
}

std::optional<std::vector<Row>> ListStore::load() {
  const QString path = gridStorePath();
  _unread = false;
  if (pathIsMissing(ns_to_path(path))) return std::nullopt;
  std::optional<std::vector<Row>> rows = readGrid(path);
  // A network home may answer the first call after a pause with an error, and the next one properly.
  if (!rows) rows = readGrid(path);
  _unread = !rows;
  if (_unread) rows.emplace();
  return rows;
}

bool ListStore::keepUnreadFileAside() {
  const QString path = gridStorePath();
  Files::MoveOutcome outcome = Files::MoveOutcome::Taken;
  for (int number = 1; number <= kMaxNamesAside && outcome == Files::MoveOutcome::Taken; ++number) {
    const QString aside = path + QStringLiteral(".unread");
    const QString name = number == 1 ? aside : QStringLiteral("%1-%2").arg(aside).arg(number);
    outcome = _files.moveWithoutOverwriting(path, name).outcome;
  }
  _unread = outcome != Files::MoveOutcome::Moved && !pathIsMissing(ns_to_path(path));
  return !_unread;
}

void ListStore::remove() {
  begin(Task::Remove, {});
}

}  // namespace ambrel
