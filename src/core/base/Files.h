// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <functional>

#include "core/base/Result.h"

namespace ambrel {

// Free and total bytes of a volume; both 0 when they cannot be read.
struct VolumeSpace {
  std::uint64_t free = 0;
  std::uint64_t total = 0;
};

// The few operations that must survive a full disk, a pulled drive or a crash. This is the only place that
// replaces, moves or copies a file which the operator cares about. Paths are absolute and stand for the
// bytes that ns_to_path gives; one that holds a NUL is refused. Every failing step, flush and folder
// flush included, is a failure, and a failure leaves what was there before; only where the flush of the
// folder comes last does a replaced file hold its new content, whole, although a crash may still undo that.
// Safe to call from any thread; no call may run on the main thread where it flushes.
class Files {
 public:
  virtual ~Files() = default;

  // Replaces `path` with `bytes`: temporary file in the same folder, flushed, renamed over, folder flushed. A
  // link keeps its place: the file that it names is replaced.
  virtual Result<void> replaceWhole(const QString& path, const QByteArray& bytes) = 0;
  // The same without either flush: a killed process leaves the old file or the new one, whole. The caller has
  // `flush` called afterwards, away from the main thread.
  virtual Result<void> replaceWholeUnflushed(const QString& path, const QByteArray& bytes) = 0;
  // Flushes a file and the folder that names it.
  virtual Result<void> flush(const QString& path) = 0;

  // Gives a file or folder a new name on its own volume. Never overwrites, on any file system: an existing
  // `to` is Taken, and the source stays. Across volumes it is Failed; the caller decides whether to copy.
  enum class MoveOutcome { Moved, Taken, Failed };
  struct [[nodiscard]] MoveResult {
    MoveOutcome outcome;
    QString message = {};  // the system's own description unless Moved

    bool ok() const { return outcome == MoveOutcome::Moved; }
    QString error() const { return message; }
  };
  virtual MoveResult moveWithoutOverwriting(const QString& from, const QString& to) = 0;

  // Copies every byte to a temporary name beside `to`, flushes, compares sizes, then moves without
  // overwriting: Moved means that `to` is on the disk, complete. The source stays in any case.
  virtual MoveResult copyWhole(const QString& from, const QString& to) = 0;
  // Copies every byte of a regular file to the name given, which must be free, with the times of its last
  // use and change. What comes back flushes the copy; it is called once, on any thread, and until it has
  // succeeded a crash may undo the copy. Judging its size is the caller's; a failed copy is removed.
  using FlushOfCopy = std::function<Result<void>()>;
  virtual Result<FlushOfCopy> copyToNew(const QString& from, const QString& to) = 0;
  // Renames within one volume. A file at `to` is replaced, and so is a link, not what it names; a folder is
  // not. Until flushFolder a crash may undo it.
  virtual Result<void> moveReplacing(const QString& from, const QString& to) = 0;
  virtual Result<void> flushFolder(const QString& folder) = 0;
  virtual Result<void> remove(const QString& path) = 0;

  virtual VolumeSpace volumeSpace(const QString& path) = 0;
};

}  // namespace ambrel
