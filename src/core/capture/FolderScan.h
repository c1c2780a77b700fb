// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <unordered_map>

#include "core/base/FolderReader.h"
#include "core/capture/PhotoCounts.h"

namespace ambrel {

// Direct entries whose names are those of photos, folders among them included; 0 for a folder that cannot be
// read to its end.
std::int64_t imageCountInFolder(const std::string& folder);

// Counts the photos in the folders of a target folder, in one pass. A folder that has not changed since the
// last time is not read again.
class FolderScan {
 public:
  // A file system's clock may stand still for this long. A folder that changed more recently than that may
  // change once more without showing it.
  static constexpr std::chrono::seconds kClockGrain{2};

  // A target folder that cannot be read to its end has no folders. `now` is the time of day.
  PhotoCounts scan(const std::string& targetDir, std::chrono::system_clock::time_point now);
  // How many folders had to be read for the last one.
  std::size_t foldersRead() const { return _foldersRead; }

 private:
  struct Known {
    std::int64_t photos = 0;
    struct stat status = {};
    bool settled = false;
  };
  using KnownFolders = std::unordered_map<std::string, Known>;
  struct Visit {
    Known folder;
    bool isKnown = false;
    bool wasRead = false;
  };

  static Visit visit(const FolderReader& target, const std::string& name, const KnownFolders& before,
                     std::chrono::system_clock::time_point now);

  std::string _targetDir;
  KnownFolders _known;
  std::size_t _foldersRead = 0;
};

}  // namespace ambrel
