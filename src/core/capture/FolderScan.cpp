// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderScan.h"

#include <atomic>
#include <functional>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "core/base/FileTimes.h"
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

// The change time tells of a program that sets the content time back.
bool isUnchanged(const struct stat& before, const struct stat& now) {
  return before.st_dev == now.st_dev && before.st_ino == now.st_ino &&
         isSameTime(contentTime(before), contentTime(now)) && isSameTime(changeTime(before), changeTime(now));
}

bool isSettled(const struct stat& status, system_clock::time_point now) {
  const auto changed = system_clock::from_time_t(changeTime(status).tv_sec) + std::chrono::seconds(1);
  return changed + FolderScan::kClockGrain <= now;
}

// Below this, a thread costs more than it saves.
constexpr std::size_t kWorthAThread = 256;

// Does `work` for every index, each once, in no order. The system answers for one folder at a time, so a
// second thread asks for the next one meanwhile.
void onTwoThreads(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next = 0;
  const auto takeTurns = [&] {
    for (std::size_t i = next++; i < count; i = next++)
      work(i);
  };
  std::jthread second;
  if (count >= kWorthAThread) {
    try {
      second = std::jthread(takeTurns);
    } catch (const std::system_error&) {
      // No thread to be had: this one does it all.
    }
  }
  takeTurns();
}

}  // namespace

std::int64_t imageCountInFolder(const std::string& folder) {
  FolderReader reader(folder);
  return countPhotos(reader).value_or(0);
}

FolderScan::Visit FolderScan::visit(const FolderReader& target, const std::string& name,
                                    const KnownFolders& before, system_clock::time_point now) {
  const auto known = before.find(name);
  if (known != before.end() && known->second.settled) {
    const std::optional<struct stat> status = target.status(name.c_str());
    if (status && isUnchanged(known->second.status, *status)) return {known->second, true, false};
  }
  FolderReader reader(target, name.c_str());
  // Before the folder is read: a change while it is read shows the next time.
  const std::optional<struct stat> status = reader.status();
  const std::optional<std::int64_t> photos = countPhotos(reader);
  if (!photos || !status) return {{photos.value_or(0)}, false, true};
  return {{*photos, *status, isSettled(*status, now)}, true, true};
}

PhotoCounts FolderScan::scan(const std::string& targetDir, system_clock::time_point now) {
  const KnownFolders before = targetDir == _targetDir ? std::exchange(_known, {}) : KnownFolders();
  _targetDir = targetDir;
  _known.clear();
  _foldersRead = 0;

  const FolderReader target(targetDir);
  const std::vector<std::string> names = foldersIn(targetDir);
  std::vector<Visit> visits(names.size());
  onTwoThreads(names.size(), [&](std::size_t i) { visits[i] = visit(target, names[i], before, now); });

  std::vector<PhotoCounts::Folder> folders;
  folders.reserve(names.size());
  _known.reserve(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    folders.push_back({names[i], visits[i].folder.photos});
    if (visits[i].isKnown) _known.emplace(names[i], visits[i].folder);
    if (visits[i].wasRead) ++_foldersRead;
  }
  return PhotoCounts(std::move(folders));
}

}  // namespace ambrel
