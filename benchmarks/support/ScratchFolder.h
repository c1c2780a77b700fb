// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <sys/types.h>

namespace ambrel::bench {

// A folder for the files of a benchmark. It goes with the process, however that ends: a process of its own
// waits for that. To be made before there are threads.
class ScratchFolder {
 public:
  enum class Place {
    Disk,   // beside the program: a folder for temporary files may be memory, where a flush costs nothing
    Memory  // as long as memoryHasRoom
  };
  explicit ScratchFolder(Place place = Place::Disk);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  // Absolute.
  const QString& path() const { return _path; }

  // Whether a folder in memory can hold so many names of small files.
  static bool memoryHasRoom(qint64 names);

 private:
  QString _path;
  pid_t _guard = -1;
  int _lifeLine = -1;  // open for as long as this process lives
};

}  // namespace ambrel::bench
