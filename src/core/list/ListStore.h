// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/base/WriteBehind.h"
#include "core/list/GridReadAhead.h"
#include "core/list/GridText.h"
#include "core/list/NameGrid.h"

namespace ambrel {

// The private file that mirrors the list between launches. Replaced whole at once on every change, so that a
// killed application leaves the list before or after the change; the flush to the disk runs behind.
class ListStore {
 public:
  ListStore(Files& files, const Locations& locations);

  // The folder is created whenever the path is asked for.
  QString gridStorePath() const;
  bool exists() const;
  // Writes the list as it stands; always the same grid. A file that could not be read is kept aside first,
  // under the name "<file>.unread", followed by a number when that is taken.
  bool save(const NameGrid& grid);
  // Begins to read the file, on a thread of its own.
  void loadAhead() { _readAhead.start(gridStorePath()); }
  // The list that is being read ahead, if it is the one in the file; else `load` has to read it.
  std::optional<GridReadAhead::List> takeReadAhead() { return _readAhead.take(gridStorePath()); }
  // None when there is no store file; an unreadable one gives no rows.
  std::optional<std::vector<Row>> load();
  void remove();
  // Returns when everything that was saved is on the disk.
  void finishFlush() { _flusher.finish(); }

 private:
  bool keepUnreadFileAside();

  Files& _files;
  const Locations _locations;
  StoreText _text;
  bool _unread = false;  // the file may hold a list that nobody has seen
  GridReadAhead _readAhead;
  WriteBehind _flusher;
};

}  // namespace ambrel
