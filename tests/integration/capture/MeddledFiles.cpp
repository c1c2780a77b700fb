// SPDX-License-Identifier: Apache-2.0
#include "integration/capture/MeddledFiles.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include "core/base/PathText.h"
#include "integration/capture/PlainDisk.h"

namespace ambrel {

std::vector<std::string> listingOf(const std::string& folder) {
  std::error_code noMatter;
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder, noMatter))
    names.push_back(lastName(entry.path().string()));
  return names;
}

Files::MoveResult MeddledFiles::moveWithoutOverwriting(const QString& from, const QString& to) {
  const std::string path = ns_to_path(from);
  const std::string folder = plainPath(parentPath(path));
  if (folder == _downloads) {
    outrun(ns_to_path(to));
  } else {
    const std::lock_guard lock(_mutex);
    if (std::exchange(_lastFolder, folder) != folder) _listings.push_back({folder, listingOf(folder)});
  }
  if (_isHeld(path)) return {MoveOutcome::Failed, QStringLiteral("Operation not permitted")};
  return UnflushedFiles::moveWithoutOverwriting(from, to);
}

void MeddledFiles::takeNextNumber(const std::string& bytes) {
  const std::lock_guard lock(_mutex);
  _rival = bytes;
}

void MeddledFiles::outrun(const std::string& place) {
  const std::lock_guard lock(_mutex);
  const std::string bytes = std::exchange(_rival, {});
  if (!bytes.empty()) std::ofstream(place, std::ios::binary) << bytes;
}

VolumeSpace MeddledFiles::volumeSpace(const QString&) {
  constexpr std::uint64_t kTotal = std::uint64_t{1} << 40;
  return {storageIsLow ? 1 : kTotal, kTotal};
}

std::deque<MeddledFiles::Listing> MeddledFiles::takeListings() {
  const std::lock_guard lock(_mutex);
  _lastFolder.clear();
  return std::exchange(_listings, {});
}

}  // namespace ambrel
