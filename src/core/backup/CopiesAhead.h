// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdint>
#include <memory>
#include <sys/stat.h>
#include <vector>

#include "core/base/Files.h"
#include "core/base/Gate.h"

namespace ambrel {

// A photo and the place of its copy somewhere below the backup folder.
struct CopyPlace {
  static constexpr const char* kTemporarySuffix = ".ambrel_tmp";

  QString source;
  QString destination;
  QString backupDir;

  QString temporary() const { return destination + QLatin1String(kTemporarySuffix); }
  bool operator==(const CopyPlace&) const = default;
};

// Makes copies under their temporary names: one at a time and in their order, on a thread of its own. Whoever
// waits until a drive has flushed one copy leaves it idle, so the photos that come next are copied meanwhile,
// and the flushes, each on a thread of its own too, share what the drive does. Only as far ahead as the
// limits below, and only on a drive that was quick with the copy before.
//
// Begins nothing while the gate is shut: a copy that is asked for waits until it opens.
//
// Also remembers the folders in which copies have come to their names, for one flush of many.
//
// For one thread at a time. Threads that hang on a drive that is gone use `files` for as long as they hang.
class CopiesAhead {
 public:
  static constexpr std::size_t kMaxCopies = 16;
  static constexpr std::uint64_t kMaxBytes = std::uint64_t{64} << 20;
  static constexpr std::chrono::milliseconds kQuick{200};
  static constexpr std::chrono::milliseconds kMaxAgeOfNames{300};

  CopiesAhead(Files& files, std::shared_ptr<const Gate> gate, std::chrono::milliseconds quick = kQuick);

  // Whether a drive is quick enough to go ahead on, by a copy that took so long while so many, itself
  // included, were on their way: they share the drive, and so the time.
  static bool isQuick(std::chrono::nanoseconds taken, std::size_t abreast, std::chrono::milliseconds quick) {
    return taken < quick * abreast;
  }

  // Copies a photo, or takes up the copy that was made ahead of the very same file, and returns once the copy
  // is flushed. Meanwhile photos of `next` are copied; what fails there shows when their turn comes.
  Result<void> copy(const CopyPlace& place, const struct stat& source, const std::vector<CopyPlace>& next);
  // Removes the copies that are not for any of these.
  void keepOnly(const std::vector<CopyPlace>& wanted);
  bool isEmpty() const;

  // A copy has its name, since now or since an earlier run.
  void hasName(const QString& destination);
  // Whether every copy that has its name keeps it, whatever happens.
  bool isSettled() const { return _folders.isEmpty(); }
  // Whether the names should no longer wait for others to be flushed with them.
  bool isFlushDue() const;
  // Afterwards nothing is remembered, whether or not every folder could be flushed: a second flush that
  // succeeds says nothing about what the first one lost.
  Result<void> flushFolders();

 private:
  class Line;
  std::shared_ptr<Line> _line;
  Files& _files;
  QStringList _folders;
  std::chrono::steady_clock::time_point _firstName;
};

}  // namespace ambrel
