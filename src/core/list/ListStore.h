// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <mutex>
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
// killed application leaves the list before or after the change; the flush to the disk runs behind. A disk
// that others keep busy holds up even a rename, for which no caller waits long.
class ListStore {
 public:
  static constexpr std::chrono::milliseconds kLongestWait{4};  // a quarter of a frame

  ListStore(Files& files, const Locations& locations, std::chrono::milliseconds longestWait = kLongestWait);

  // The folder is created whenever the path is asked for.
  QString gridStorePath() const;
  bool exists() const;
  // Writes the list as it stands; always the same grid. A file that could not be read is kept aside first,
  // under the name "<file>.unread", followed by a number when that is taken. False when the list could not be
  // written. Within the longest wait it usually is; else the writing goes on behind, and isUnsaved() tells.
  bool save(const NameGrid& grid);
  // The last list that was to be written could not be.
  bool isUnsaved() const;
  // Begins to read the file, on a thread of its own.
  void loadAhead() { _readAhead.start(gridStorePath()); }
  // The list that is being read ahead, if it is the one in the file; else `load` has to read it.
  std::optional<GridReadAhead::List> takeReadAhead() { return _readAhead.take(gridStorePath()); }
  // None when there is no store file; an unreadable one gives no rows.
  std::optional<std::vector<Row>> load();
  void remove();
  // Returns when the file holds the list that was saved last.
  void finishWriting() { _writer.finish(); }
  // The same, but for no longer than this; whether it does, or could not be written.
  bool finishWritingWithin(std::chrono::milliseconds longest) { return _writer.finishWithin(longest); }
  // Returns when everything that was saved is on the disk.
  void finishFlush();

 private:
  enum class Task { None, Write, Remove };

  bool keepUnreadFileAside();
  void begin(Task task, const QByteArray& bytes);
  void carryOut();

  Files& _files;
  const Locations _locations;
  StoreText _text;
  bool _unread = false;  // the file may hold a list that nobody has seen
  GridReadAhead _readAhead;
  const std::chrono::milliseconds _longestWait;
  mutable std::mutex _mutex;  // guards the next three
  Task _task = Task::None;
  QByteArray _toWrite;
  bool _failed = false;
  WriteBehind _flusher;
  WriteBehind _writer;  // last: it uses everything above
};

}  // namespace ambrel
