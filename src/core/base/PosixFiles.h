// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayList>
#include <mutex>

#include "core/base/FileSystemCalls.h"
#include "core/base/Files.h"

namespace ambrel {

// Files on the system's own calls. Any number of threads may use one.
class PosixFiles : public Files {
 public:
  // Ends the name of every file that is still being written; such names begin with a dot.
  static constexpr const char* kTemporarySuffix = ".ambrel-part";

  PosixFiles() : _calls(_systemCalls) {}
  // For tests: `calls` decides what the system answers.
  explicit PosixFiles(FileSystemCalls& calls) : _calls(calls) {}
  PosixFiles(const PosixFiles&) = delete;
  PosixFiles& operator=(const PosixFiles&) = delete;

  Result<void> replaceWhole(const QString& path, const QByteArray& bytes) override;
  Result<void> replaceWholeUnflushed(const QString& path, const QByteArray& bytes) override;
  Result<void> flush(const QString& path) override;
  MoveResult moveWithoutOverwriting(const QString& from, const QString& to) override;
  MoveResult copyWhole(const QString& from, const QString& to) override;
  Result<FlushOfCopy> copyToNew(const QString& from, const QString& to) override;
  Result<void> moveReplacing(const QString& from, const QString& to) override;
  Result<void> flushFolder(const QString& folder) override;
  Result<void> remove(const QString& path) override;
  VolumeSpace volumeSpace(const QString& path) override;

 private:
  // Temporary files that a failing disk would not let go. Whoever next gets a file written in the same folder
  // takes them away: elsewhere the disk may still hang.
  class Leftovers {
   public:
    void add(const QByteArray& path);
    void removeBeside(FileSystemCalls& calls, const QByteArray& path);

   private:
    std::mutex _mutex;
    QByteArrayList _paths;
  };
  class Temporary;
  enum class Durability { Unflushed, Flushed };
  Result<void> replace(const QString& path, const QByteArray& bytes, Durability durability);

  FileSystemCalls _systemCalls;
  FileSystemCalls& _calls;
  Leftovers _leftovers;
};

}  // namespace ambrel
