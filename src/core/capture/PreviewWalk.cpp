// SPDX-License-Identifier: Apache-2.0
#include "core/capture/PreviewWalk.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "core/base/FileTimes.h"
#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/capture/FileNames.h"

namespace ambrel {
namespace {

struct DatedPhoto {
  std::int64_t nanoseconds = std::numeric_limits<std::int64_t>::min();  // of the last change of its content
  std::string path;
};

std::int64_t contentDate(const struct stat& status) {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  const timespec time = contentTime(status);
  return time.tv_sec * kNanoseconds + time.tv_nsec;
}

// A pipe would hold whoever opens it, so only a file, or a link to one, is a photo. One that vanishes between
// the listing and the look at its date has none.
std::optional<DatedPhoto> photoAt(const FolderReader& folder, const dirent& entry, const std::string& path) {
  if (!is_previewable_image_path(entry.d_name)) return std::nullopt;
  const std::optional<struct stat> status = folder.status(entry.d_name);
  if (!status) return entry.d_type == DT_REG ? std::optional(DatedPhoto{.path = path}) : std::nullopt;
  if (!S_ISREG(status->st_mode)) return std::nullopt;
  return DatedPhoto{contentDate(*status), path};
}

bool isFolderItself(const FolderReader& folder, const dirent& entry) {
  return entry.d_type != DT_LNK && folder.isFolder(entry);
}

}  // namespace

QStringList previewablePhotosBelow(const std::string& root, const std::function<bool()>& stop) {
  std::vector<DatedPhoto> photos;
  std::vector<std::string> folders = {root};
  while (!folders.empty()) {
    if (stop()) return {};
    const std::string path = std::exchange(folders.back(), {});
    folders.pop_back();
    FolderReader folder(path);
    while (const dirent* entry = folder.next()) {
      std::string entryPath = path + '/' + entry->d_name;
      if (isFolderItself(folder, *entry)) {
        folders.push_back(std::move(entryPath));
      } else if (std::optional<DatedPhoto> photo = photoAt(folder, *entry, entryPath)) {
        photos.push_back(std::move(*photo));
      }
    }
  }
  std::stable_sort(photos.begin(), photos.end(),
                   [](const DatedPhoto& a, const DatedPhoto& b) { return a.nanoseconds < b.nanoseconds; });
  QStringList paths;
  paths.reserve(static_cast<qsizetype>(photos.size()));
  for (const DatedPhoto& photo : photos)
    paths.append(path_to_ns(photo.path));
  return paths;
}

}  // namespace ambrel
