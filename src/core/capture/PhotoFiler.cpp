// SPDX-License-Identifier: Apache-2.0
#include "core/capture/PhotoFiler.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <exception>
#include <limits>
#include <mutex>
#include <sys/stat.h>
#include <utility>

#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/NumberedFolder.h"

namespace ambrel {
namespace {

using MoveOutcome = Files::MoveOutcome;

// A volume that calls every free name taken must not keep the thread for ever.
constexpr int kMaxNumbersLost = 10'000;

Failure writeFailure(const QString& description = {}) {
  return Failure{description.isEmpty() ? QStringLiteral("Unable to write file.") : description};
}

// The tilde expanded, and without ".", ".." and doubled separators.
QString standardisedPath(const QString& path) {
  const bool atHome = path == QLatin1String("~") || path.startsWith(QLatin1String("~/"));
  return QDir::cleanPath(atHome ? QDir::homePath() + path.mid(1) : path);
}

// Tells the witness what becomes of one name.
class Announcement {
 public:
  Announcement(const FilingWitness& witness, const QString& path) : _witness(witness), _path(path) {
    if (_witness.willFile) _witness.willFile(_path);
  }
  ~Announcement() {
    if (!_filed && _witness.didNotFile) _witness.didNotFile(_path);
  }
  Announcement(const Announcement&) = delete;
  Announcement& operator=(const Announcement&) = delete;

  void cameTrue() { _filed = true; }

 private:
  const FilingWitness& _witness;
  const QString _path;
  bool _filed = false;
};

}  // namespace

// The downloads that are waiting or being filed.
class PhotoFiler::QueuedPaths {
 public:
  bool add(const QString& path) {
    const std::lock_guard lock(_mutex);
    const qsizetype before = _paths.size();
    _paths.insert(path);
    return _paths.size() > before;
  }
  void remove(const QString& path) {
    const std::lock_guard lock(_mutex);
    _paths.remove(path);
  }
  bool isEmpty() {
    const std::lock_guard lock(_mutex);
    return _paths.isEmpty();
  }

 private:
  std::mutex _mutex;
  QSet<QString> _paths;
};

// One download on its way, on the filing thread. `desk` belongs to the main thread and is read only there.
class PhotoFiler::Filing {
 public:
  struct Photo {
    QString path;
    qint64 row = -1;
  };

  Filing(Files& files, const FilingDesk& desk, SerialThread::Line& mainThread, QString source)
      : _files(files), _desk(desk), _mainThread(mainThread), _source(std::move(source)) {}

  Result<Photo> file();

 private:
  Result<Photo> renameDownloadedFile();
  Result<void> checkDownload();
  Result<void> checkHeadRoom() const;
  Result<void> chooseFolder();
  Result<Photo> takeNextFreeNumber();
  Files::MoveResult moveOrCopy(const QString& destination);
  Result<void> checkResult(const QString& path);

  Files& _files;
  const FilingDesk& _desk;
  SerialThread::Line& _mainThread;
  const QString _source;
  std::uint64_t _size = 0;
  QString _targetDir;
  QString _folderName;
};

Result<PhotoFiler::Filing::Photo> PhotoFiler::Filing::file() {
  try {
    return renameDownloadedFile();
  } catch (const std::exception& exception) {
    return Failure{QString::fromLocal8Bit(exception.what())};
  } catch (...) {
    return writeFailure();
  }
}

// An abandoned filing fails without a message: nobody is there to read one.
Result<PhotoFiler::Filing::Photo> PhotoFiler::Filing::renameDownloadedFile() {
  if (const auto checked = checkDownload(); !checked) return Failure{checked.error()};
  if (const auto chosen = chooseFolder(); !chosen) return Failure{chosen.error()};
  return takeNextFreeNumber();
}

Result<void> PhotoFiler::Filing::checkDownload() {
  if (!fileExists(_source)) {
    return Failure{QStringLiteral("Source file disappeared before it could be written.")};
  }
  // Nothing but a regular file has a size that means anything.
  _size = fileSize(_source).value_or(0);
  if (_size == 0) {
    return Failure{QStringLiteral(
        "Source file is 0KB. Laptop storage may be full, or the camera file did not finish writing.")};
  }
  return {};
}

Result<void> PhotoFiler::Filing::chooseFolder() {
  std::optional<std::string> name;
  QString suffix;
  const bool answered = _mainThread.ask([&] {
    _targetDir = _desk.targetDir();
    name = _desk.selectedQueueItemName();
    suffix = _desk.enabledSuffixString();
  });
  if (!answered) return Failure{};
  if (_targetDir.isEmpty()) return Failure{QStringLiteral("No target folder is selected.")};
  if (const auto checked = checkHeadRoom(); !checked) return checked;

  // A name that is not valid text comes back empty and would file into the target folder itself.
  const QString safeName = name ? std_to_ns(sanitize_filename(*name)) : QString();
  _folderName = (safeName.isEmpty() ? std_to_ns(sanitize_filename({})) : safeName) + suffix;
  return {};
}

Result<void> PhotoFiler::Filing::checkHeadRoom() const {
  const std::uint64_t free = _files.volumeSpace(_targetDir).free;
  const bool known = free != 0;
  if (known && free < _size + kHeadRoom) {
    return Failure{QStringLiteral("Laptop storage is full or almost full. Free up space before continuing.")};
  }
  return {};
}

Result<PhotoFiler::Filing::Photo> PhotoFiler::Filing::takeNextFreeNumber() {
  qint64 number = 0;
  Photo photo;
  FilingWitness witness;
  const bool answered = _mainThread.ask([&] {
    number = _desk.counter();
    photo.row = _desk.captureRow();
    witness = _desk.witness();
  });
  if (!answered) return Failure{};

  const QString sourceExtension = pathExtension(_source);
  const QString extension = sourceExtension.isEmpty() ? QStringLiteral("JPG") : sourceExtension;
  const NumberedFolder folder(_targetDir, _folderName, extension);
  folder.create();

  for (int lost = 0; lost < kMaxNumbersLost; ++lost) {
    const std::optional<qint64> free = folder.firstFreeFrom(number);
    if (!free) break;
    number = *free;
    if (!_mainThread.ask([&] { _desk.advanceCounterPast(number); })) return Failure{};
    photo.path = folder.pathOfNumber(number);
    Announcement announcement(witness, photo.path);
    const Files::MoveResult moved = moveOrCopy(photo.path);
    if (moved.outcome == MoveOutcome::Failed) return Failure{moved.message};
    if (moved.outcome == MoveOutcome::Moved) {
      if (const auto checked = checkResult(photo.path); !checked) return Failure{checked.error()};
      announcement.cameTrue();
      return photo;
    }
    ++number;  // another program took it since the test
  }
  return writeFailure();
}

Files::MoveResult PhotoFiler::Filing::moveOrCopy(const QString& destination) {
  Files::MoveResult moved = _files.moveWithoutOverwriting(_source, destination);
  if (moved.outcome != MoveOutcome::Failed) return moved;
  // Perhaps it hung until now: an application that has quit no longer has `files`.
  if (_mainThread.isAbandoned()) return {MoveOutcome::Failed};
  Files::MoveResult copied = _files.copyWhole(_source, destination);
  if (copied.outcome == MoveOutcome::Failed) copied.message = writeFailure(copied.message).message;
  if (copied.outcome == MoveOutcome::Moved && !_mainThread.isAbandoned()) {
    static_cast<void>(_files.remove(_source));  // one photo too many is no reason to call it not filed
  }
  return copied;
}

Result<void> PhotoFiler::Filing::checkResult(const QString& path) {
  const std::optional<std::uint64_t> size = fileSize(path);
  if (size && *size > 0) return {};
  if (_mainThread.isAbandoned()) return Failure{};
  // An empty file holds no photo. One whose size cannot be read may: it goes back where it came from.
  if (size) {
    static_cast<void>(_files.remove(path));
  } else {
    static_cast<void>(_files.moveWithoutOverwriting(path, _source));
  }
  return Failure{QStringLiteral("Final file was written as 0KB. Check laptop storage.")};
}

PhotoFiler::PhotoFiler(Files& files, FilingDesk desk)
    : _files(files), _desk(std::move(desk)), _renameQueuedPaths(std::make_shared<QueuedPaths>()) {}

PhotoFiler::~PhotoFiler() = default;

void PhotoFiler::handleDownloadedPath(const QString& path) {
  const QString trimmed = NSTrim(path);
  if (trimmed.isEmpty()) return;
  const QString source = standardisedPath(trimmed);
  if (!_renameQueuedPaths->add(source)) return;

  _thread.add([this, &files = _files, &desk = _desk, queued = _renameQueuedPaths,
               source](SerialThread::Line& mainThread) {
    const Result<Filing::Photo> photo = Filing(files, desk, mainThread, source).file();
    queued->remove(source);
    mainThread.tell([this, photo] {
      if (photo) {
        Q_EMIT filed(photo.value().path, photo.value().row);
      } else {
        Q_EMIT failed(photo.error());
      }
    });
  });
}

bool PhotoFiler::hasQueued() const {
  return !_renameQueuedPaths->isEmpty();
}

bool PhotoFiler::finishQueued(std::chrono::milliseconds limit) {
  return _thread.finish(limit);
}

}  // namespace ambrel
