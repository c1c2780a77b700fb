// SPDX-License-Identifier: Apache-2.0
#include "core/list/ListStore.h"

#include <QFile>

#include "core/list/GridFile.h"

namespace ambrel {

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
  _text.update(grid);
  const Result<void> written = _files.replaceWholeUnflushed(gridStorePath(), _text.bytes());
  if (written) _flusher.request();
  return written.ok();
}

std::optional<std::vector<Row>> ListStore::load() const {
  const QString path = gridStorePath();
  if (!QFile::exists(path)) return std::nullopt;
  return readGrid(path).value_or(std::vector<Row>());
}

void ListStore::remove() {
  (void)_files.remove(gridStorePath());
}

}  // namespace ambrel
