// SPDX-License-Identifier: Apache-2.0
#include "integration/capture/PlainPhotos.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "core/base/PathText.h"
#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr qint64 kMostPhotos = std::numeric_limits<qint64>::max();

constexpr qint64 kTooHighToGoOn = 1'000'000'000'000'000'000;

std::string extensionOf(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? "" : name.substr(dot + 1);
}

std::string numbered(const std::string& base, qint64 number, const std::string& extension) {
  char digits[32];
  std::snprintf(digits, sizeof digits, "%04lld", static_cast<long long>(number));
  return base + '_' + digits + '.' + extension;
}

std::string folderNameOf(const QString& name) {
  return safeName(ns_to_std(name));
}

QString photoCount(qint64 photos) {
  return QString::number(photos) + (photos == 1 ? " photo" : " photos");
}

}  // namespace

std::string safeName(const std::string& name) {
  const std::string reserved = "\"*/:<>?\\|";
  std::string safe;
  for (const char c : name)
    safe += static_cast<unsigned char>(c) < 0x20 || reserved.find(c) != std::string::npos ? '-' : c;
  while (safe.starts_with(' '))
    safe.erase(0, 1);
  while (safe.ends_with(' '))
    safe.pop_back();
  return safe.empty() ? "untitled" : safe;
}

bool isPhotoName(const std::string& name) {
  static const QStringList kExtensions = {"jpg", "jpeg", "png", "tif", "tiff", "heic", "heif",
                                          "cr2", "cr3",  "crw", "raw", "dng",  "nef",  "arw"};
  return kExtensions.contains(QString::fromStdString(extensionOf(name)).toLower());
}

std::optional<std::string> PlainPhotos::backupOf(const std::string& path) const {
  if (!backupOn || target.empty()) return std::nullopt;
  std::string relative = path.starts_with(target) ? path.substr(target.size()) : lastName(path);
  while (relative.starts_with('/'))
    relative.erase(0, 1);
  // Nothing leads out of the backup folder.
  const std::string framed = '/' + relative + '/';
  if (framed.find("/../") != std::string::npos) relative = lastName(path);
  if (relative == "..") return std::nullopt;
  return backup + '/' + relative;
}

// ---- Filing

std::string PlainPhotos::nameToFileUnder() const {
  const qint64 row = list.captureRow();
  const std::string name = list.contains(row) ? cellOf(list.row(row), 0) : "";
  const bool isText = !std_to_ns(safeName(name)).isEmpty();
  return isText ? safeName(name) : "untitled";
}

void PlainPhotos::file(const std::string& download) {
  if (!disk.exists(download)) {
    failures.emplace_back("Source file disappeared before it could be written.");
  } else if (disk.bytesOf(download).empty()) {
    failures.emplace_back(
        "Source file is 0KB. Laptop storage may be full, or the camera file did not finish writing.");
  } else if (target.empty()) {
    failures.emplace_back("No target folder is selected.");
  } else if (storageIsLow) {
    failures.emplace_back("Laptop storage is full or almost full. Free up space before continuing.");
  } else {
    take(download, nameToFileUnder() + enabledSuffix);
  }
}

// The first free one from the counter on; the largest of all where there is none.
qint64 PlainPhotos::takeNumber(const std::function<std::string(qint64)>& pathOf) {
  qint64 number = std::max<qint64>(1, counterField);
  for (; number < kMostPhotos; ++number) {
    if (disk.exists(pathOf(number))) continue;
    const bool outrun = !rival.empty() && disk.makeFile(pathOf(number), rival);
    rival.clear();
    if (!outrun) break;
  }
  if (number < kMostPhotos) counterField = std::max(counterField, number + 1);
  return number;
}

void PlainPhotos::take(const std::string& download, const std::string& folderName) {
  const qint64 row = list.captureRow();
  const std::string own = extensionOf(lastName(download));
  const std::string extension = own.empty() ? "JPG" : own;
  const auto pathOf = [&](qint64 number) {
    return target + '/' + folderName + '/' + numbered(folderName, number, extension);
  };
  disk.makeFolders(parentPath(pathOf(1)));
  const qint64 number = takeNumber(pathOf);
  if (number == kMostPhotos) {
    failures.emplace_back("Unable to write file.");
    return;
  }
  if (!disk.move(download, pathOf(number))) {
    failures.emplace_back(kSystemsWords);
    return;
  }
  filed.push_back({pathOf(number), row});
  list.photographed(row);
  foldersWithImages.insert(parentPath(pathOf(number)));
}

// ---- Counting

qint64 PlainPhotos::photosIn(const std::string& folder) const {
  const Names names = disk.namesIn(folder);
  return std::count_if(names.begin(), names.end(), isPhotoName);
}

void PlainPhotos::rescan() {
  foldersWithImages.clear();
  if (target.empty()) return;
  for (const std::string& name : disk.namesIn(target)) {
    const std::string folder = target + '/' + name;
    if (disk.isFolder(folder) && photosIn(folder) > 0) foldersWithImages.insert(folder);
  }
  syncCounts();
}

void PlainPhotos::syncCounts() {
  if (target.empty()) return;
  const Names names = disk.namesIn(target);
  for (qint64 row = 0; row < list.count(); ++row) {
    const std::string own = safeName(cellOf(list.row(row), 0));
    qint64 photos = 0;
    for (const std::string& name : names) {
      const bool isOwn = name == own || name.starts_with(own + '_');
      if (isOwn && disk.isFolder(target + '/' + name)) photos += photosIn(target + '/' + name);
    }
    if (std_to_ns(own).isEmpty()) photos = 0;  // no text, no folders
    if (photos == list.captured(row)) continue;
    list.setCell(row, 2, std::to_string(photos));
    list.stored = true;
  }
}

qint64 PlainPhotos::highestNumber(const std::string& folder, const std::string& prefix) const {
  qint64 highest = 0;
  for (const std::string& name : disk.namesIn(folder)) {
    const std::string extension = extensionOf(name);
    const bool hasDot = !extension.empty() || (name.size() > 1 && name.ends_with('.'));
    const std::string base = hasDot ? name.substr(0, name.size() - extension.size() - 1) : name;
    if (!base.starts_with(prefix + '_')) continue;
    const std::string tail = base.substr(prefix.size() + 1);
    if (tail.empty() || tail.find_first_not_of("0123456789") != std::string::npos) continue;
    const qint64 number = std::atoll(tail.c_str());
    if (number < kTooHighToGoOn) highest = std::max(highest, number);
  }
  return highest;
}

// ---- Renaming on disk

bool PlainPhotos::moveIfMovable(const std::string& from, const std::string& to) {
  const bool held = lastName(from).find(kImmovable) != std::string::npos && !from.starts_with(backup + '/');
  return !held && disk.move(from, to);
}

// Photos of a folder in the order of its listing, which is only there to be had if any of them `isRenamed`.
PlainPhotos::Names PlainPhotos::photosToRename(const std::string& folder,
                                               const std::function<bool(const std::string&)>& isRenamed) {
  const auto staysAsItIs = [&](const std::string& name) { return !isPhotoName(name) || !isRenamed(name); };
  Names names = disk.namesIn(folder);
  std::erase_if(names, staysAsItIs);
  if (names.empty()) return names;
  Names listing = listingOf(plainPath(folder));
  std::erase_if(listing, staysAsItIs);
  return listing;
}

PlainPhotos::Renamed PlainPhotos::merge(const std::string& folder, const std::string& destination) {
  const std::string newName = lastName(destination);
  qint64 number = highestNumber(destination, newName);
  const Names photos = photosToRename(folder, [](const std::string&) { return true; });
  for (const std::string& name : photos)
    moveIfMovable(folder + '/' + name, destination + '/' + numbered(newName, ++number, extensionOf(name)));
  const bool hasOwnName = lastName(folder) != "." && lastName(folder) != "..";
  if (hasOwnName && disk.isFolder(folder) && disk.namesIn(folder).empty()) disk.remove(folder);
  return {static_cast<qint64>(photos.size())};
}

PlainPhotos::Renamed PlainPhotos::rename(const std::string& folder, const std::string& destination) {
  const std::string oldName = lastName(folder);
  const std::string newName = lastName(destination);
  if (!moveIfMovable(folder, destination)) return {0, kSystemsWords};
  const qint64 photos = photosIn(destination);
  const auto newFile = [&](const std::string& name) { return newName + name.substr(oldName.size()); };
  const auto isRenamed = [&](const std::string& name) {
    return name.starts_with(oldName) && newFile(name) != name;
  };
  for (const std::string& name : photosToRename(destination, isRenamed))
    moveIfMovable(destination + '/' + name, destination + '/' + newFile(name));
  return {photos};
}

PlainPhotos::Renamed PlainPhotos::renameOnDisk(const std::string& folder, const std::string& newName) {
  const std::string destination = parentPath(folder) + '/' + newName;
  return disk.exists(destination) ? merge(folder, destination) : rename(folder, destination);
}

Result<std::string> PlainPhotos::newNameOf(const Pair& pair) const {
  if (!pair.newName.isValidUtf16()) return Failure{QStringLiteral("Please enter a valid name.")};
  const std::string name = folderNameOf(pair.newName.trimmed());
  if (name == lastName(pair.folder)) return Failure{QStringLiteral("That is already the folder's name.")};
  return name;
}

// The copies in the backup follow whatever came of the folders themselves, but stay below the backup folder.
PlainPhotos::Renamed PlainPhotos::renamePairs(const std::vector<Pair>& pairs, bool& tried) {
  Renamed all;
  std::vector<std::pair<std::string, std::string>> copies;
  for (const Pair& pair : pairs) {
    Renamed one;
    if (const auto name = newNameOf(pair); name) {
      tried = true;
      one = renameOnDisk(pair.folder, name.value());
      const auto copy = pair.folder.starts_with(target) ? backupOf(pair.folder) : std::nullopt;
      if (copy && name.value() != "..") copies.emplace_back(*copy, name.value());
    } else {
      one.message = name.error();
    }
    all.photos += one.photos;
    if (!all.message) all.message = one.message;
  }
  for (const auto& [copy, name] : copies) {
    if (disk.exists(copy)) renameOnDisk(copy, name);
  }
  return all;
}

void PlainPhotos::renameFolder(const std::string& folder, const QString& typed) {
  bool tried = false;
  const Renamed renamed = renamePairs({{folder, typed}}, tried);
  if (tried) rescan();
  if (renamed.message) {
    alerts.push_back({QStringLiteral("Rename Failed"), *renamed.message});
    return;
  }
  status = QStringLiteral("Renamed folder to \"") + std_to_ns(folderNameOf(typed.trimmed())) + "\" (" +
           photoCount(renamed.photos) + " updated).";
}

// ---- Moving the photos of a row

std::vector<PlainPhotos::SuffixBox> PlainPhotos::suffixBoxes(qint64 row, const Names& listing) const {
  const std::string own = folderNameOf(std_to_ns(cellOf(list.row(row), 0)));
  QStringList suffixes = tagSuffixes;
  for (const std::string& name : target.empty() ? Names() : listing) {
    if (name.starts_with(own + '_') && disk.isFolder(target + '/' + name))
      suffixes.append(path_to_ns(name.substr(own.size())));
  }
  suffixes.removeAll(QString());
  suffixes.removeDuplicates();
  std::vector<SuffixBox> boxes;
  for (const QString& suffix : suffixes) {
    const std::string folder = target + '/' + own + ns_to_path(suffix);
    const bool exists = !target.empty() && disk.isFolder(folder);
    const QString photos = exists ? photoCount(photosIn(folder)) : QStringLiteral("no photos");
    boxes.push_back({suffix, suffix + "   (" + photos + ")", exists});
  }
  return boxes;
}

std::vector<PlainPhotos::Pair> PlainPhotos::pairsOfMove(const std::string& folderName,
                                                        const std::string& newFolderName,
                                                        const QStringList& suffixes) const {
  std::vector<Pair> pairs;
  for (const QString& suffix : QStringList{QString()} + suffixes) {
    const std::string folder = target + '/' + folderName + ns_to_path(suffix);
    if (disk.isFolder(folder)) pairs.push_back({folder, path_to_ns(newFolderName) + suffix});
  }
  return pairs;
}

qint64 PlainPhotos::destinationRow(qint64 source, const QString& name) const {
  for (qint64 row = 0; row < list.count(); ++row) {
    const QString other = std_to_ns(cellOf(list.row(row), 0));
    if (row != source && other.compare(name, Qt::CaseInsensitive) == 0) return row;
  }
  return -1;
}

// Whether a row had to be added for it.
bool PlainPhotos::enterDestination(qint64 source, const QString& name) {
  const qint64 existing = destinationRow(source, name);
  if (existing < 0) list.rows.insert(list.rows.begin() + source + 1, {ns_to_std(name), "", "0", ""});
  list.stored = true;
  list.select(existing < 0 ? source + 1 : existing);
  return existing < 0;
}

void PlainPhotos::move(qint64 row, const QString& typed, const QStringList& suffixes,
                       const Arrivals& arrivals) {
  const QString name = typed.trimmed();
  const QString oldName = std_to_ns(cellOf(list.row(row), 0));
  if (name.isEmpty() || name.compare(oldName, Qt::CaseInsensitive) == 0) {
    arrivals.early();
    return;
  }
  bool tried = false;
  Renamed moved;
  if (!target.empty())
    moved = renamePairs(pairsOfMove(folderNameOf(oldName), folderNameOf(name), suffixes), tried);
  if (tried) {
    arrivals.early();
    rescan();
  }
  const bool rowAdded = enterDestination(row, name);
  tried ? arrivals.late() : arrivals.early();
  syncCounts();
  list.refilter();
  if (moved.message) {
    alerts.push_back({QStringLiteral("Move Problem"), *moved.message});
    return;
  }
  status =
      "Moved " + photoCount(moved.photos) + " to \"" + name + '"' + (rowAdded ? " (new row added)." : ".");
}

}  // namespace ambrel
