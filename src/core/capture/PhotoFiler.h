// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/base/Files.h"
#include "core/base/SerialThread.h"

namespace ambrel {

// Told on the filing thread of the name that a photo is about to take, and of one that did not come to hold
// it after all. May be told by a thread that the application has left behind.
struct FilingWitness {
  std::function<void(const QString& path)> willFile = {};
  std::function<void(const QString& path)> didNotFile = {};
};

// What filing asks of the rest of the application, always on the main thread and at the moment of need.
struct FilingDesk {
  std::function<QString()> targetDir;
  std::function<std::optional<std::string>()> selectedQueueItemName;  // as it stands in the list, or none
  std::function<QString()> enabledSuffixString;
  std::function<qint64()> captureRow;  // model row that the photo is counted on, -1 for none
  std::function<qint64()> counter;
  std::function<void(qint64 used)> advanceCounterPast;
  std::function<FilingWitness()> witness = [] { return FilingWitness(); };
};

// Files downloaded photos, one at a time and in the order of their arrival, on a thread of its own: checks
// the download, takes the next free number and moves the photo into the folder of the selected name. A photo
// that cannot be filed stays where it was downloaded.
//
// `files` is used by that thread. One that is stuck on a drive that is gone outlives this object, so `files`
// has to last until the process ends.
class PhotoFiler : public QObject {
  Q_OBJECT
 public:
  // What stays free on the target folder's volume beyond a photo, in bytes.
  static constexpr std::uint64_t kHeadRoom = 536'870'912;

  PhotoFiler(Files& files, FilingDesk desk);
  ~PhotoFiler() override;

  // Queues a download for filing. A path that is queued already is ignored.
  void handleDownloadedPath(const QString& path);
  // Whether a download is waiting, or being filed.
  bool hasQueued() const;
  // Files what is queued, for at most `limit`; whether nothing was left. For use when quitting: the main
  // thread goes on serving the filing thread meanwhile.
  bool finishQueued(std::chrono::milliseconds limit);
  // Where photos are filed. Work on the folders of photos is done there too, so that neither meets the other
  // half done.
  SerialThread& thread() { return _thread; }
  // Stays false: filing does not hold the status line's readiness text back.
  bool isRenaming() const { return _renaming; }

 Q_SIGNALS:
  // On the main thread. `row` is the model row that the photo belongs to, or -1.
  void filed(const QString& path, qint64 row);
  void failed(const QString& message);

 private:
  class QueuedPaths;
  class Filing;
  Files& _files;
  FilingDesk _desk;
  std::shared_ptr<QueuedPaths> _renameQueuedPaths;
  std::atomic<bool> _renaming{false};
  SerialThread _thread;
};

}  // namespace ambrel
