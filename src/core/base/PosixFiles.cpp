// SPDX-License-Identifier: Apache-2.0
#include "core/base/PosixFiles.h"

#include <QRandomGenerator>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits.h>
#include <memory>
#include <system_error>
#include <utility>

#include "core/base/PathText.h"

namespace ambrel {
namespace {

using MoveOutcome = Files::MoveOutcome;
using MoveResult = Files::MoveResult;

// A signal may interrupt a call; one that never stops being interrupted is reported.
constexpr int kMaxInterruptions = 100;
constexpr int kMaxNameAttempts = 16;
constexpr std::size_t kCopyPiece = std::size_t{64} << 20;

QString sentence(int error) {
  return QString::fromStdString(std::generic_category().message(error));
}

Failure lastFailure() {
  return Failure{sentence(errno)};
}

MoveResult failedMove(const QString& message) {
  return {MoveOutcome::Failed, message};
}

MoveResult lastFailedMove() {
  return {errno == EEXIST ? MoveOutcome::Taken : MoveOutcome::Failed, sentence(errno)};
}

template <typename Call>
auto uninterrupted(Call call) {
  auto answer = call();
  for (int i = 0; answer == -1 && errno == EINTR && i < kMaxInterruptions; ++i)
    answer = call();
  return answer;
}

// The bytes of a path; a NUL would silently cut it short.
Result<QByteArray> systemPath(const QString& path) {
  if (path.isEmpty()) return Failure{sentence(ENOENT)};
  if (path.contains(QChar::Null)) return Failure{sentence(EINVAL)};
  return QByteArray::fromStdString(ns_to_path(path));
}

QByteArray folderOf(const QByteArray& path) {
  const qsizetype slash = path.lastIndexOf('/');
  if (slash < 0) return ".";
  return slash == 0 ? QByteArray("/") : path.left(slash);
}

class Descriptor {
 public:
  Descriptor(FileSystemCalls& calls, const QByteArray& path, int flags, mode_t mode = 0)
      : _calls(calls),
        _number(uninterrupted([&] { return calls.open(path.constData(), flags | O_CLOEXEC, mode); })) {}
  ~Descriptor() {
    if (_number >= 0) _calls.close(_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool isOpen() const { return _number >= 0; }
  int number() const { return _number; }

  Result<void> flush() {
    if (uninterrupted([this] { return _calls.flush(_number); }) != 0) return lastFailure();
    return {};
  }
  // Network volumes report a failed write only here.
  Result<void> close() {
    if (_calls.close(std::exchange(_number, -1)) != 0 && errno != EINTR) return lastFailure();
    return {};
  }

 private:
  FileSystemCalls& _calls;
  int _number;
};

// Some network volumes cannot flush a folder at all; then there is nothing more to be done.
Result<void> flushOpenFolder(FileSystemCalls& calls, Descriptor& folder) {
  const bool flushed = uninterrupted([&] { return calls.flush(folder.number()); }) == 0;
  if (!flushed && errno != EINVAL && errno != ENOTSUP) return lastFailure();
  return {};
}

Result<void> writeAll(FileSystemCalls& calls, Descriptor& file, const QByteArray& bytes) {
  for (qsizetype done = 0; done < bytes.size();) {
    const auto left = static_cast<std::size_t>(bytes.size() - done);
    const ssize_t written =
        uninterrupted([&] { return calls.write(file.number(), bytes.constData() + done, left); });
    if (written < 0) return lastFailure();
    if (written == 0) return Failure{sentence(ENOSPC)};
    done += written;
  }
  return {};
}

// `size` bytes from one file to the other; a file that ends early is a failed copy.
Result<void> copyAll(FileSystemCalls& calls, Descriptor& from, Descriptor& to, off_t size) {
  for (off_t done = 0; done < size;) {
    const std::size_t piece = std::min(kCopyPiece, static_cast<std::size_t>(size - done));
    const ssize_t copied = uninterrupted([&] { return calls.copyBytes(from.number(), to.number(), piece); });
    if (copied < 0) return lastFailure();
    if (copied == 0) return Failure{QStringLiteral("The file became shorter while it was copied")};
    done += copied;
  }
  struct stat source = {};
  struct stat copy = {};
  if (calls.statusOf(from.number(), &source) != 0 || calls.statusOf(to.number(), &copy) != 0) {
    return lastFailure();
  }
  if (source.st_size != size) return Failure{QStringLiteral("The file changed while it was copied")};
  if (copy.st_size != size) return Failure{QStringLiteral("The copy is incomplete")};
  return {};
}

// Whatever the file holds when its end is reached.
Result<void> copyToEnd(FileSystemCalls& calls, Descriptor& from, Descriptor& to) {
  for (;;) {
    const ssize_t copied =
        uninterrupted([&] { return calls.copyBytes(from.number(), to.number(), kCopyPiece); });
    if (copied < 0) return lastFailure();
    if (copied == 0) return {};
  }
}

// The file to replace: what a link names rather than the link, and the permissions to keep.
struct Destination {
  QByteArray path;
  mode_t mode = 0666;
};

Result<Destination> destinationAt(FileSystemCalls& calls, const QByteArray& path) {
  struct stat status = {};
  if (calls.statusOf(path.constData(), &status) != 0) {
    if (errno == ENOENT) return Destination{path};
    return lastFailure();
  }
  if (!S_ISLNK(status.st_mode)) return Destination{path, status.st_mode & 0777};
  std::array<char, PATH_MAX> resolved{};
  if (calls.resolve(path.constData(), resolved.data()) == nullptr) return lastFailure();
  return destinationAt(calls, resolved.data());
}

// What a file system answers that has no exclusive rename, or no second names for a file.
bool isUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EPERM || error == EMLINK ||
         error == ENOTTY;
}

// Takes the name with an empty file or folder that nothing can have made before, then renames onto that.
MoveResult moveOntoReservation(FileSystemCalls& calls, const QByteArray& from, const QByteArray& to,
                               bool isFolder) {
  if (isFolder) {
    if (calls.makeFolder(to.constData()) != 0) return lastFailedMove();
  } else {
    Descriptor reservation(calls, to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!reservation.isOpen()) return lastFailedMove();
    if (const auto closed = reservation.close(); !closed) {
      calls.unlink(to.constData());
      return failedMove(closed.error());
    }
  }
  if (calls.rename(from.constData(), to.constData()) == 0) return {MoveOutcome::Moved};
  const int error = errno;
  // Another program may have put something here meanwhile: only what is still empty is taken away.
  struct stat status = {};
  if (isFolder) {
    calls.removeFolder(to.constData());
  } else if (calls.statusOf(to.constData(), &status) == 0 && status.st_size == 0) {
    calls.unlink(to.constData());
  }
  return {error == ENOTEMPTY || error == EEXIST ? MoveOutcome::Taken : MoveOutcome::Failed, sentence(error)};
}

MoveResult moveByLink(FileSystemCalls& calls, const QByteArray& from, const QByteArray& to) {
  if (calls.link(from.constData(), to.constData()) != 0) {
    return isUnsupported(errno) ? moveOntoReservation(calls, from, to, false) : lastFailedMove();
  }
  if (calls.unlink(from.constData()) == 0) return {MoveOutcome::Moved};
  const int error = errno;
  // With both names stuck the file stands complete under its new one.
  if (calls.unlink(to.constData()) != 0) return {MoveOutcome::Moved};
  return failedMove(sentence(error));
}

MoveResult moveExclusively(FileSystemCalls& calls, const QByteArray& from, const QByteArray& to) {
  const int moved = uninterrupted([&] { return calls.renameNoReplace(from.constData(), to.constData()); });
  if (moved == 0) return {MoveOutcome::Moved};
  if (!isUnsupported(errno)) return lastFailedMove();
  struct stat status = {};
  if (calls.statusOf(from.constData(), &status) != 0) return failedMove(sentence(errno));
  if (S_ISDIR(status.st_mode)) return moveOntoReservation(calls, from, to, true);
  return moveByLink(calls, from, to);
}

}  // namespace

void PosixFiles::Leftovers::add(const QByteArray& path) {
  const std::lock_guard lock(_mutex);
  _paths.append(path);
}

void PosixFiles::Leftovers::removeBeside(FileSystemCalls& calls, const QByteArray& path) {
  const QByteArray folder = folderOf(path);
  QByteArrayList beside;
  {
    const std::lock_guard lock(_mutex);
    for (const QByteArray& leftover : _paths)
      if (folderOf(leftover) == folder) beside.append(leftover);
    for (const QByteArray& leftover : beside)
      _paths.removeOne(leftover);
  }
  for (const QByteArray& leftover : beside)
    if (calls.unlink(leftover.constData()) != 0 && errno != ENOENT) add(leftover);
}

// A new file beside its future place, gone again unless it gets there.
class PosixFiles::Temporary {
 public:
  Temporary(FileSystemCalls& calls, Leftovers& leftovers, const QByteArray& folder, mode_t mode)
      : _calls(calls), _leftovers(leftovers), _path(unusedName(folder)) {
    for (int attempt = 1; !open(mode) && errno == EEXIST && attempt < kMaxNameAttempts; ++attempt) {
      _path = unusedName(folder);
    }
  }
  ~Temporary() {
    if (_exists && _calls.unlink(_path.constData()) != 0) _leftovers.add(_path);
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;

  bool exists() const { return _exists; }
  const QByteArray& path() const { return _path; }
  Descriptor& file() { return *_file; }
  void hasMoved() {
    _exists = false;
    _leftovers.removeBeside(_calls, _path);
  }

 private:
  // Short and independent of the final name, which may be as long as the file system allows.
  static QByteArray unusedName(const QByteArray& folder) {
    const quint64 random = QRandomGenerator::system()->generate64();
    return folder + "/." + QByteArray::number(random, 16) + PosixFiles::kTemporarySuffix;
  }

  bool open(mode_t mode) {
    _file.emplace(_calls, _path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    _exists = _file->isOpen();
    return _exists;
  }

  FileSystemCalls& _calls;
  Leftovers& _leftovers;
  QByteArray _path;
  std::optional<Descriptor> _file;
  bool _exists = false;
};

Result<void> PosixFiles::replaceWhole(const QString& path, const QByteArray& bytes) {
  return replace(path, bytes, Durability::Flushed);
}

Result<void> PosixFiles::replaceWholeUnflushed(const QString& path, const QByteArray& bytes) {
  return replace(path, bytes, Durability::Unflushed);
}

Result<void> PosixFiles::replace(const QString& path, const QByteArray& bytes, Durability durability) {
  const bool flushed = durability == Durability::Flushed;
  const Result<QByteArray> name = systemPath(path);
  if (!name) return Failure{name.error()};
  const Result<Destination> destination = destinationAt(_calls, name.value());
  if (!destination) return Failure{destination.error()};
  const QByteArray& place = destination.value().path;

  // Opened before anything changes: from the rename on, only the flush itself can fail.
  std::optional<Descriptor> folder;
  if (flushed) {
    folder.emplace(_calls, folderOf(place), O_RDONLY | O_DIRECTORY);
    if (!folder->isOpen()) return lastFailure();
  }
  Temporary temporary(_calls, _leftovers, folderOf(place), destination.value().mode);
  if (!temporary.exists()) return lastFailure();
  if (const auto written = writeAll(_calls, temporary.file(), bytes); !written) return written;
  if (flushed) {
    if (const auto done = temporary.file().flush(); !done) return done;
  }
  if (const auto closed = temporary.file().close(); !closed) return closed;
  if (_calls.rename(temporary.path().constData(), place.constData()) != 0) return lastFailure();
  temporary.hasMoved();
  return flushed ? flushOpenFolder(_calls, *folder) : Result<void>();
}

Result<void> PosixFiles::flush(const QString& path) {
  const Result<QByteArray> name = systemPath(path);
  if (!name) return Failure{name.error()};
  Descriptor file(_calls, name.value(), O_RDONLY);
  if (!file.isOpen()) return lastFailure();
  if (const auto flushed = file.flush(); !flushed) return flushed;
  Descriptor folder(_calls, folderOf(name.value()), O_RDONLY | O_DIRECTORY);
  if (!folder.isOpen()) return lastFailure();
  return flushOpenFolder(_calls, folder);
}

MoveResult PosixFiles::moveWithoutOverwriting(const QString& from, const QString& to) {
  const Result<QByteArray> source = systemPath(from);
  const Result<QByteArray> place = systemPath(to);
  if (!source || !place) return failedMove(source ? place.error() : source.error());
  return moveExclusively(_calls, source.value(), place.value());
}

MoveResult PosixFiles::copyWhole(const QString& from, const QString& to) {
  const Result<QByteArray> source = systemPath(from);
  const Result<QByteArray> place = systemPath(to);
  if (!source || !place) return failedMove(source ? place.error() : source.error());

  // Without O_NONBLOCK a FIFO would hold the thread until somebody writes to it.
  Descriptor original(_calls, source.value(), O_RDONLY | O_NONBLOCK);
  struct stat status = {};
  if (!original.isOpen() || _calls.statusOf(original.number(), &status) != 0) {
    return failedMove(sentence(errno));
  }
  if (!S_ISREG(status.st_mode)) return failedMove(QStringLiteral("Not a regular file"));
  Descriptor folder(_calls, folderOf(place.value()), O_RDONLY | O_DIRECTORY);
  if (!folder.isOpen()) return failedMove(sentence(errno));
  Temporary temporary(_calls, _leftovers, folderOf(place.value()), status.st_mode & 0777);
  if (!temporary.exists()) return failedMove(sentence(errno));
  Descriptor& copy = temporary.file();
  if (const auto done = copyAll(_calls, original, copy, status.st_size); !done)
    return failedMove(done.error());
  if (const auto done = copy.flush(); !done) return failedMove(done.error());
  if (const auto done = copy.close(); !done) return failedMove(done.error());

  const MoveResult moved = moveExclusively(_calls, temporary.path(), place.value());
  if (!moved.ok()) return moved;
  temporary.hasMoved();
  if (const auto done = flushOpenFolder(_calls, folder); !done) {
    _calls.unlink(place.value().constData());
    return failedMove(done.error());
  }
  return moved;
}

Result<Files::FlushOfCopy> PosixFiles::copyToNew(const QString& from, const QString& to) {
  const Result<QByteArray> source = systemPath(from);
  const Result<QByteArray> place = systemPath(to);
  if (!source || !place) return Failure{source ? place.error() : source.error()};

  Descriptor original(_calls, source.value(), O_RDONLY | O_NONBLOCK);
  struct stat status = {};
  if (!original.isOpen() || _calls.statusOf(original.number(), &status) != 0) return lastFailure();
  if (!S_ISREG(status.st_mode)) return Failure{QStringLiteral("Not a regular file")};
  // It stays open until it is flushed: nobody else is told of a write that fails meanwhile.
  const auto copy = std::make_shared<Descriptor>(
      _calls, place.value(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, status.st_mode & 0777);
  if (!copy->isOpen()) return lastFailure();

  if (const auto done = copyToEnd(_calls, original, *copy); !done) {
    _calls.unlink(place.value().constData());
    return Failure{done.error()};
  }
  // Not every volume keeps times, and a photo is worth a backup without them.
  (void)_calls.setTimes(copy->number(), status);
  return FlushOfCopy([&calls = _calls, copy, path = place.value()] {
    Result<void> done = copy->flush();
    if (done) done = copy->close();
    if (!done) calls.unlink(path.constData());
    return done;
  });
}

Result<void> PosixFiles::moveReplacing(const QString& from, const QString& to) {
  const Result<QByteArray> source = systemPath(from);
  const Result<QByteArray> place = systemPath(to);
  if (!source || !place) return Failure{source ? place.error() : source.error()};
  if (_calls.rename(source.value().constData(), place.value().constData()) != 0) return lastFailure();
  return {};
}

Result<void> PosixFiles::flushFolder(const QString& folder) {
  const Result<QByteArray> name = systemPath(folder);
  if (!name) return Failure{name.error()};
  Descriptor descriptor(_calls, name.value(), O_RDONLY | O_DIRECTORY);
  if (!descriptor.isOpen()) return lastFailure();
  return flushOpenFolder(_calls, descriptor);
}

Result<void> PosixFiles::remove(const QString& path) {
  const Result<QByteArray> name = systemPath(path);
  if (!name) return Failure{name.error()};
  if (_calls.unlink(name.value().constData()) != 0) return lastFailure();
  return {};
}

VolumeSpace PosixFiles::volumeSpace(const QString& path) {
  const Result<QByteArray> name = systemPath(path);
  struct statvfs status = {};
  if (!name || uninterrupted([&] { return _calls.volumeStatus(name.value().constData(), &status); }) != 0) {
    return {};
  }
  const std::uint64_t unit = status.f_frsize;
  return {status.f_bavail * unit, status.f_blocks * unit};
}

}  // namespace ambrel
