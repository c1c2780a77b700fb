// SPDX-License-Identifier: Apache-2.0
#include "core/capture/PhotoFolders.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"

namespace ambrel {
namespace {

// A number of more digits leaves no room to count on.
constexpr std::size_t kMostDigits = 18;

qint64 numberIn(std::string_view tail) {
  const bool digits =
      !tail.empty() && std::all_of(tail.begin(), tail.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) return 0;
  tail.remove_prefix(std::min(tail.find_first_not_of('0'), tail.size()));
  if (tail.size() > kMostDigits) return 0;
  qint64 number = 0;
  std::from_chars(tail.data(), tail.data() + tail.size(), number);
  return number;
}

}  // namespace

qint64 maxNumberedIndex(const std::vector<std::string>& entries, std::string_view prefix) {
  const std::string start = std::string(prefix) + '_';
  qint64 highest = 0;
  for (const std::string& entry : entries) {
    if (!entry.starts_with(start)) continue;
    const std::size_t dot = entry.rfind('.');
    const std::size_t end = dot == std::string::npos || dot == 0 ? entry.size() : dot;
    if (end < start.size()) continue;  // the prefix holds the last dot
    highest = std::max(highest, numberIn(std::string_view(entry).substr(start.size(), end - start.size())));
  }
  return highest;
}

qint64 maxNumberedIndexInFolder(const std::string& folder, std::string_view prefix) {
  return maxNumberedIndex(entriesOf(folder), prefix);
}

std::vector<std::string> foldersForRowName(const std::string& targetDir, std::string_view sanitisedName) {
  std::vector<std::string> paths;
  if (targetDir.empty() || sanitisedName.empty()) return paths;
  const std::string variant = std::string(sanitisedName) + '_';
  for (const std::string& name : foldersIn(targetDir)) {
    const bool isPlain = name == sanitisedName;
    if (!isPlain && !name.starts_with(variant)) continue;
    std::string path = targetDir;
    path.append("/").append(name);
    paths.insert(isPlain ? paths.begin() : paths.end(), std::move(path));
  }
  return paths;
}

PhotoFolders::PhotoFolders(SerialThread& thread, NameList& list, std::function<QString()> targetDir)
    : _thread(thread), _list(list), _targetDir(std::move(targetDir)), _scan(std::make_shared<FolderScan>()) {}

std::vector<std::string> PhotoFolders::foldersForRowName(std::string_view sanitisedName) const {
  return ambrel::foldersForRowName(targetDir(), sanitisedName);
}

std::string PhotoFolders::targetDir() const {
  return ns_to_path(_targetDir());
}

void PhotoFolders::rescanOutputFolders(const Done& done) {
  _foldersWithImages.clear();
  if (_targetDir().isEmpty()) {
    Q_EMIT pathLabelsStale();
    if (done) done();
    return;
  }
  look(Aim::FoldersAndCounts, done);
}

void PhotoFolders::syncCapturedCountsFromDisk(const Done& done) {
  if (!_targetDir().isEmpty() && !_list.grid().isEmpty()) {
    look(Aim::CountsAlone, done);
  } else if (done) {
    done();
  }
}

void PhotoFolders::look(Aim aim, const Done& done) {
  const std::string target = targetDir();
  const bool hasRows = !_list.grid().isEmpty();
  _thread.add([=, this, scan = _scan](SerialThread::Line& mainThread) {
    const PhotoCounts counts = scan->scan(target, std::chrono::system_clock::now());
    mainThread.tell([=, this] {
      const bool stillTarget = target == targetDir();
      if (stillTarget && aim == Aim::FoldersAndCounts) setFolders(target, counts);
      if (stillTarget && hasRows) setCapturedCounts(counts);
      if (aim == Aim::FoldersAndCounts) Q_EMIT pathLabelsStale();
      if (done) done();
    });
  });
}

void PhotoFolders::setFolders(const std::string& target, const PhotoCounts& counts) {
  _foldersWithImages.clear();
  for (const PhotoCounts::Folder& folder : counts.folders()) {
    if (folder.photos > 0) _foldersWithImages.insert(target + '/' + folder.name);
  }
}

void PhotoFolders::setCapturedCounts(const PhotoCounts& counts) {
  NameGrid& grid = _list.editableGrid();
  bool changed = false;
  for (std::int64_t row = 0; row < grid.rowCount(); ++row) {
    if (grid.rows()[static_cast<std::size_t>(row)].empty()) continue;
    const std::string folder = sanitize_filename(grid.bytes(row, Cell::Name));
    // A name that is not valid text has no folders.
    const std::int64_t photos = std_to_ns(folder).isEmpty() ? 0 : counts.ofName(folder);
    if (photos == grid.capturedForModelRow(row)) continue;
    grid.setCaptured(photos, row);
    changed = true;
  }
  if (!changed) return;
  _list.saveGridToDisk();
  Q_EMIT _list.reloaded();
}

void PhotoFolders::noteFolderWithImage(const QString& photo) {
  const std::string path = ns_to_path(photo);
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || slash == 0) return;
  if (_foldersWithImages.insert(path.substr(0, slash)).second) Q_EMIT pathLabelsStale();
}

void PhotoFolders::forgetFolders() {
  _foldersWithImages.clear();
}

}  // namespace ambrel
