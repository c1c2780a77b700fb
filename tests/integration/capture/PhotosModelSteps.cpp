// SPDX-License-Identifier: Apache-2.0
// What may happen to the photos at random: the operator's part, and that of other programs.
#include <filesystem>
#include <fstream>

#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "integration/capture/PhotosModelFixture.h"

namespace ambrel {

// ---- The operator and the camera

void PhotosModelFixture::filePhotos() {
  static const QStringList kExtensions = {"JPG", "JPG", "JPG", "CR3", "CR3", "cr2", "jpeg", "MOV", ""};
  photoFiles.storageIsLow = photos.storageIsLow = below(20) == 0;
  std::vector<std::string> downloads;
  for (std::size_t left = 1 + below(3); left > 0; --left)
    downloads.push_back(download(anyOf(kExtensions).toStdString(),
                                 below(10) == 0 ? std::string(PlainPhotos::kImmovable) + '_' : "IMG_"));
  if (below(4) == 0) filer.handleDownloadedPath(path_to_ns(downloads.front()));  // reported twice
  if (below(12) == 0) downloads.push_back(inDesk("Downloads/gone.JPG"));
  if (below(6) == 0) {
    fileBesideRival(downloads);
  } else {
    file(downloads);
  }
  photoFiles.storageIsLow = photos.storageIsLow = false;
}

void PhotosModelFixture::fileBesideRival(const std::vector<std::string>& downloads) {
  const std::string rival = "rival of " + downloads.front();
  photos.rival = rival;
  photoFiles.takeNextNumber(rival);
  file(downloads);
  photos.rival.clear();
  photoFiles.takeNextNumber({});
  for (const auto& [path, bytes] : photos.disk.entries()) {
    if (bytes == rival) _photosMade.insert(rival);
  }
}

void PhotosModelFixture::switchTag() {
  const auto index = static_cast<int>(below(tags.suffixes().size()));
  tags.suffixToggled(index, below(2) == 0);
  photos.enabledSuffix.clear();
  for (const Tag& tag : tags.suffixes()) {
    if (tag.on) photos.enabledSuffix += ns_to_std(tag.suffix);
  }
}

void PhotosModelFixture::typeCounter() {
  const bool tooMany = below(30) == 0;
  const QString text = tooMany ? "99999999999999999999" : anyOf({"", "0", "1", "1", "2", "5", "9999"});
  settings.setCounterText(text);
  photos.counterField = tooMany ? std::numeric_limits<qint64>::max() : text.toLongLong();
}

void PhotosModelFixture::chooseTarget() {
  setTarget(below(6) == 0 ? "" : inDesk(below(3) == 0 ? "Photos2" : "Photos"));
  rescan();
}

void PhotosModelFixture::switchBackup() {
  photos.backupOn = !photos.backupOn;
}

void PhotosModelFixture::renameAnyFolder() {
  const std::vector<std::string> present = foldersOnDesk();
  const bool gone = present.empty() || below(10) == 0;
  renameFolder(gone ? inDesk("Photos/gone") : present[below(present.size())], anyText());
}

// ---- Other programs

bool PhotosModelFixture::isFixture(const std::string& path) const {
  return path == root.path().toStdString() || path == desk ||
         (parentPath(path) == desk && (lastName(path).starts_with("Photos") || lastName(path) == "Backup" ||
                                       lastName(path) == "Downloads"));
}

std::vector<std::string> PhotosModelFixture::foldersOnDesk() const {
  std::vector<std::string> found;
  for (const auto& [path, bytes] : photos.disk.entries()) {
    // What lies beside the desk stays out: a name of two dots would lead from there into the wide world.
    if (!bytes && !isFixture(path) && path.starts_with(desk + '/')) found.push_back(path);
  }
  return found;
}

std::string PhotosModelFixture::anyEntry() {
  std::vector<std::string> found;
  for (const auto& [path, bytes] : photos.disk.entries()) {
    if (!isFixture(path)) found.push_back(path);
  }
  return found.empty() ? "" : found[below(found.size())];
}

void PhotosModelFixture::layOutSome(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (below(2) == 0) continue;
    std::filesystem::create_directories(parentPath(inDesk(name)));
    photos.disk.makeFolders(parentPath(inDesk(name)));
    photoMadeIn(inDesk(name));
  }
}

void PhotosModelFixture::makeFileOutside() {
  const std::vector<std::string> present = foldersOnDesk();
  if (present.empty()) return;
  const std::string folder = present[below(present.size())];
  const std::string own = lastName(folder) + '_';
  const std::vector<std::string> names = {own + "0001.JPG",
                                          own + "0002.CR3",
                                          own + "0003.JPG",
                                          own + "0007",
                                          own + "0012a.jpg",
                                          own + "00000000042.png",
                                          own + "locked.JPG",
                                          "locked.jpg",
                                          "Ann_0001.JPG",
                                          "Ann_FR_0002.JPG",
                                          "Bea_0001.JPG",
                                          "notes.xmp",
                                          "\xff\xfe.jpg",
                                          ".jpg",
                                          "film.MOV",
                                          own + own + "1.tif",
                                          own + "10000.JPG",
                                          own + "9223372036854775807.jpg",
                                          own + "99999999999999999999.jpg",
                                          "Annn_0001.JPG.jpg"};
  const std::string path = folder + '/' + names[below(names.size())];
  if (photos.disk.exists(path) || lastName(path).size() > 255) return;
  photoMadeIn(path);
}

void PhotosModelFixture::makeFolderOutside() {
  static const char* const kPlaces[] = {"Photos/", "Photos/", "Photos/", "Photos2/", "Backup/"};
  std::string name = safeName(ns_to_std(anyText()));
  if (below(3) == 0) name += anyOf({"_FR", "_SS", "FR", "_Lee", ".jpg"}).toStdString();
  if (below(10) == 0) name += "_\xff";
  const std::string path = inDesk(kPlaces[below(std::size(kPlaces))] + name);
  if (photos.disk.exists(path) || name.size() > 255) return;
  if (below(8) == 0) {
    photoMadeIn(path);
    return;
  }
  std::filesystem::create_directory(path);
  photos.disk.makeFolders(path);
}

void PhotosModelFixture::removeOutside() {
  const std::string path = anyEntry();
  if (path.empty()) return;
  for (const auto& [each, bytes] : photos.disk.entries()) {
    if (bytes && (each == path || each.starts_with(path + '/'))) _photosMade.erase(*bytes);
  }
  std::filesystem::remove_all(path);
  photos.disk.remove(path);
}

void PhotosModelFixture::moveOutside() {
  const std::string from = anyEntry();
  if (from.empty()) return;
  const std::string to = inDesk("Photos/" + safeName(ns_to_std(anyText())));
  if (photos.disk.move(from, to)) std::filesystem::rename(from, plainPath(to));
}

}  // namespace ambrel
