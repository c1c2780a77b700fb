// SPDX-License-Identifier: Apache-2.0
#include "core/list/ListStore.h"

#include <QFile>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/list/GridFile.h"

namespace ambrel {
namespace {

constexpr int kMaxNamesAside = 1000;

}  // namespace

ListStore::ListStore(Files& files, const Locations& locations)
    : _files(files), _locations(locations), _flusher([this, path = gridStorePath()] {
        // A list that cannot be flushed stays in memory and is flushed with the next change.
        (void)_files.flush(path);
      }) {}

QString ListStore::gridStorePath() const {
  return _locations.dataFile(QStringLiteral("ambrel_grid.csv"));
}

bool ListStore::exists() const {
  return QFile::exists(gridStorePath());
}

bool ListStore::save(const NameGrid& grid) {
  _readAhead.forget();
  if (_unread && !keepUnreadFileAside()) return false;
  _text.update(grid);
  const Result<void> written = _files.replaceWholeUnflushed(gridStorePath(), _text.bytes());
  if (written) _flusher.request();
  return written.ok();
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
  (void)_files.remove(gridStorePath());
}

}  // namespace ambrel
