// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "core/backup/PendingPhotos.h"
#include "core/base/Doorbell.h"
#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/base/WriteBehind.h"

namespace ambrel {

// What a rename made of paths: first those below the folders change, then those of files.
struct MovedPaths {
  QHash<QString, QString> folders = {};
  QHash<QString, QString> files = {};
  QString now(const QString& path) const;
};
QString pathAfter(const std::vector<MovedPaths>& moves, const QString& path);

// The photos that still wait for their backup, oldest first, each once. Mirrored in a file after every
// change: replaced whole and flushed, on a thread of its own. Photos that come while that thread waits for
// the disk share the next write, so a burst costs neither the main thread nor the disk one write each.
//
// A photo counts as queued once a write that holds it has come to an end; until then it must not be copied.
// Whoever adds its path to pending() before the photo comes to lie there can die at any moment: the next
// launch queues what is there and not in the file.
class BackupQueue : public QObject {
  Q_OBJECT
 public:
  // `files` is used by the writing thread.
  BackupQueue(Files& files, const Locations& locations);

  // The folder is created whenever the path is asked for.
  QString backupQueuePath() const;
  void saveBackupQueue();
  // Replaces the queue by what the file holds. A file that cannot be read as a queue leaves it empty, and is
  // kept aside under the name "<file>.broken", followed by a number when that is taken.
  // Then adds the pending photos that are where they were to be filed.
  void loadBackupQueue();

  // False when the path is queued already.
  bool append(const QString& path);
  void remove(const QString& path);
  // Leaves the queue, but stays in its file until settleFinished: a copy is there and may yet be undone by a
  // crash.
  void finish(const QString& path);
  // Whether there was one.
  bool settleFinished();
  // Their copies are in doubt: they wait again, before all others. Returns how many.
  qint64 putFinishedBack();
  void clear();
  // Photos have other paths now; those that wait or are finished keep their places. How many there were.
  qint64 follow(const std::vector<MovedPaths>& moves);
  // Of these paths, only photos that wait or are finished need be pending.
  void forgetPending(const QStringList& paths);

  qint64 size() const { return _paths.size(); }
  bool isEmpty() const { return _paths.isEmpty(); }
  const QStringList& paths() const { return _paths; }
  // Whether there is a first photo and it counts as queued.
  bool firstMayGo() const;
  // Up to `count` photos after the first that count as queued.
  QStringList next(qsizetype count) const;
  // For other threads too, which may hold on to it.
  const std::shared_ptr<PendingPhotos>& pending() const { return _pending; }
  // Returns when everything that was saved is on the disk, or has failed to get there.
  void finishWriting() { _writer.finish(); }

 Q_SIGNALS:
  // What was saved is in the file; or, with a message, could not be written. Later than the call that saved.
  void written();
  void notWritten(const QString& message);

 private:
  struct Snapshot {
    QStringList paths;
    quint64 number = 0;
    QStringList arrived = {};  // pending no more once the paths are in the file
    QStringList gone = {};     // pending no more, whatever becomes of the write
  };
  struct Outcome {
    quint64 number;
    Result<void> result;
  };
  void write();
  void settleOne();
  bool mayGo(const QString& path) const { return _savedWith.value(path) <= _lastSettled; }
  void settlePending(const QStringList& paths);
  void keepAside(const QString& path);
  void takeUpPending();

  Files& _files;
  const Locations _locations;
  QStringList _paths;
  QStringList _finished;
  QHash<QString, quint64> _savedWith;  // the number of the save that each path waits for
  quint64 _lastSave = 0;
  quint64 _lastSettled = 0;
  QStringList _arrived;  // since the last save
  QStringList _gone;
  const std::shared_ptr<PendingPhotos> _pending;
  std::mutex _mutex;  // guards the next two
  Snapshot _toWrite;
  std::deque<Outcome> _outcomes;
  Doorbell _doorbell;
  WriteBehind _writer;
};

}  // namespace ambrel
