// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderScan.h"

#include <optional>
#include <utility>
#include <vector>

#include "core/base/FolderReader.h"
#include "core/capture/FileNames.h"

namespace ambrel {
namespace {

using std::chrono::system_clock;

// None where the folder cannot be read to its end.
std::optional<std::int64_t> countPhotos(FolderReader& folder) {
  std::int64_t photos = 0;
  while (const dirent* entry = folder.next()) {
    if (is_image_file_name(entry->d_name)) ++photos;
  }
  return folder.failed() ? std::nullopt : std::optional(photos);
}

#ifdef __APPLE__
const timespec& contentTime(const struct stat& status) {
  return status.st_mtimespec;
}
const timespec& changeTime(const struct stat& status) {
  return status.st_ctimespec;
}
#else
const timespec& contentTime(const struct stat& status) {
  return status.st_mtim;
}
const timespec& changeTime(const struct stat& status) {
  return status.st_ctim;
}
#endif

bool isSame(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// The change time tells of a program that sets the content time back.
bool isUnchanged(const struct stat& before, const struct stat& now) {
  return before.st_dev == now.st_dev && before.st_ino == now.st_ino &&
         isSame(contentTime(before), contentTime(now)) && isSame(changeTime(before), changeTime(now));
}

bool isSettled(const struct stat& status, system_clock::time_point now) {
  const auto changed = system_clock::from_time_t(changeTime(status).tv_sec) + std::chrono::seconds(1);
  return changed + FolderScan::kClockGrain <= now;
}

}  // namespace

std::int64_t imageCountInFolder(const std::string& folder) {
  FolderReader reader(folder);
  return countPhotos(reader).value_or(0);
}

PhotoCounts FolderScan::scan(const std::string& targetDir, system_clock::time_point now) {
  const KnownFolders before = targetDir == _targetDir ? std::exchange(_known, {}) : KnownFolders();
  _targetDir = targetDir;
  _known.clear();
  _foldersRead = 0;

  FolderReader target(targetDir);
  std::vector<PhotoCounts::Folder> folders;
  while (const dirent* entry = target.next()) {
    if (!target.isFolder(*entry)) continue;
    PhotoCounts::Folder& folder = folders.emplace_back(PhotoCounts::Folder{entry->d_name});
    const auto known = before.find(folder.name);
    if (known != before.end() && known->second.settled) {
      const std::optional<struct stat> status = target.status(entry->d_name);
      if (status && isUnchanged(known->second.status, *status)) {
        folder.photos = known->second.photos;
        _known.insert(*known);
        continue;
      }
    }
    ++_foldersRead;
    FolderReader reader(target, entry->d_name);
    // Before the folder is read: a change while it is read shows the next time.
    const std::optional<struct stat> status = reader.status();
    const std::optional<std::int64_t> photos = countPhotos(reader);
    folder.photos = photos.value_or(0);
    if (photos && status) _known[folder.name] = {*photos, *status, isSettled(*status, now)};
  }
  return target.failed() ? PhotoCounts() : PhotoCounts(std::move(folders));
}

}  // namespace ambrel
