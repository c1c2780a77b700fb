// SPDX-License-Identifier: Apache-2.0
#include "soak/Account.h"

#include <QDir>
#include <QFile>
#include <algorithm>

#include "core/capture/FileNames.h"

namespace ambrel::soak {
namespace {

namespace fs = std::filesystem;

bool isTemporary(const std::string& path) {
  return path.find("/.ambrel-") != std::string::npos || path.ends_with(".ambrel-part") ||
         path.ends_with(".ambrel_tmp");
}

bool isInFolder(const std::string& path) {
  return path.find('/', 1) != std::string::npos;
}

std::string folderOf(const std::string& path) {
  return path.substr(1, path.find('/', 1) - 1);
}

// What the application and its worker may have beside photos and copies, below the root.
bool isAllowed(const std::string& path) {
  static const std::vector<std::string> kFolders = {"/Photos/", "/Copies/", "/Exports/", "/home/tmp/",
                                                    "/worker/data/"};
  static const std::vector<std::string> kFiles = {"/mode",
                                                  "/names.csv",
                                                  "/diary",
                                                  "/home/preferences.ini",
                                                  "/home/data/Ambrel Tether/ambrel_grid.csv",
                                                  "/home/data/Ambrel Tether/backup_queue.plist"};
  // A store or a queue that could not be read for a while is kept aside.
  return std::any_of(kFolders.begin(), kFolders.end(),
                     [&](const auto& folder) { return path.starts_with(folder); }) ||
         std::find(kFiles.begin(), kFiles.end(), path) != kFiles.end() ||
         path.starts_with("/home/data/Ambrel Tether/ambrel_grid.csv.unread") ||
         path.starts_with("/home/data/Ambrel Tether/backup_queue.plist.unread");
}

bool beginsLikeOneOf(const std::set<std::string>& names, const std::string& folder) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& name) { return folder.starts_with(name); });
}

void plantOne(const QString& folder, const std::string& path, const std::string& bytes,
              std::map<std::string, std::string>& planted) {
  const QString file = folder + QString::fromStdString(path);
  QDir().mkpath(file.left(file.lastIndexOf(QLatin1Char('/'))));
  QFile out(file);
  if (!out.open(QIODevice::WriteOnly) || out.write(bytes.data(), static_cast<qint64>(bytes.size())) < 0)
    std::abort();
  out.close();
  planted[sha256OfFile(file.toStdString())] = path;
}

}  // namespace

Places::Places(const QString& theRoot)
    : root(theRoot),
      home(theRoot + QStringLiteral("/home")),
      target(theRoot + QStringLiteral("/Photos")),
      copies(theRoot + QStringLiteral("/Copies")),
      exports(theRoot + QStringLiteral("/Exports")) {
  for (const QString& folder : {home, target, copies, exports, theRoot + QStringLiteral("/worker")})
    QDir().mkpath(folder);
}

// Of sizes that no photo of the day has.
void EarlierFiles::plant(const Places& places, const QStringList& names) {
  std::size_t size = 1000;
  for (const QString& name : names) {
    const std::string folder = "/" + name.toStdString() + "/";
    const std::string text = " of last year, in " + folder;
    plantOne(places.target, folder + name.toStdString() + "_0001.JPG",
             "a photo" + text + std::string(++size, 'p'), _inTarget);
    plantOne(places.target, folder + "wishes.txt", "a text" + text, _inTarget);
    plantOne(places.copies, folder + "read me.txt", "another text" + text, _inCopies);
  }
}

Account::Account(const Places& places, const EarlierFiles& earlier,
                 std::map<std::string, Shutter::Record> records)
    : _places(places), _earlier(earlier), _records(std::move(records)) {}

std::vector<Account::File> Account::filesBelow(const QString& folder) {
  const std::string root = folder.toStdString();
  std::vector<File> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_directory())
      files.push_back({entry.path().string().substr(root.size()), sha256OfFile(entry.path())});
  }
  return files;
}

std::map<std::string, std::string> Account::byPath(const std::vector<File>& files) {
  std::map<std::string, std::string> map;
  for (const File& file : files)
    map[file.path] = file.sha256;
  return map;
}

void Account::checkPhotos(std::size_t filingsFailed) {
  std::map<std::string, std::vector<std::string>> pathsOf;
  for (const File& file : filesBelow(_places.target)) {
    pathsOf[file.sha256].push_back(file.path);
    if (isTemporary(file.path)) continue;  // counted with the places
    if (!_records.contains(file.sha256) && !_earlier.contains(file.sha256))
      complain(file.path + " in the target folder is nothing that the camera made.");
  }
  for (const auto& [sha256, name] : _earlier.inTarget()) {
    if (pathsOf[sha256].size() != 1)
      complain(name + ", which was there before, is there " + std::to_string(pathsOf[sha256].size()) +
               " times.");
  }
  for (const auto& [sha256, record] : _records) {
    const std::vector<std::string>& paths = pathsOf[sha256];
    const std::string& name = record.photo.name;
    const bool onCard = record.photo.place == "card" && !record.photo.deleted;
    ++_totals.taken;
    if (record.timesReported > 1)
      complain(name + " was reported " + std::to_string(record.timesReported) + " times.");
    if (record.timesReported > 0 && paths.empty()) complain(name + " was reported and is lost.");
    if (record.timesReported == 0 && record.mustArrive)
      complain(name + " was taken while nothing was wrong with the camera, and never reported.");
    if (paths.size() > 1) complain(name + " is there more than once: " + paths[0] + " and " + paths[1] + ".");
    _totals.reported += record.timesReported > 0 ? 1 : 0;
    if (paths.empty()) {
      ++(onCard ? _totals.onCardOnly : _totals.lostInCamera);
    } else if (isInFolder(paths.front())) {
      ++_totals.filed;
    } else {
      ++(record.timesReported > 0 ? _totals.atSource : _totals.unreported);
    }
  }
  if (_totals.atSource > filingsFailed) {
    complain(std::to_string(_totals.atSource) + " photos were not filed, of which the operator heard " +
             std::to_string(filingsFailed) + " times only.");
  }
}

// Whatever bears the name of a copy is a whole photo.
void Account::checkCopies(const std::vector<File>& copies) {
  std::map<std::string, int> found;
  for (const File& copy : copies) {
    ++found[copy.sha256];
    if (!isTemporary(copy.path) && !_records.contains(copy.sha256) && !_earlier.contains(copy.sha256))
      complain(copy.path + " in the backup folder is no photo.");
  }
  for (const auto& [sha256, name] : _earlier.inCopies()) {
    if (found[sha256] != 1)
      complain(name + " in the backup folder was there before, and is gone or changed.");
  }
}

void Account::checkBackup(const std::set<std::string>& moved) {
  const std::vector<File> files = filesBelow(_places.copies);
  checkCopies(files);
  const std::map<std::string, std::string> copies = byPath(files);
  for (const File& photo : filesBelow(_places.target)) {
    if (!isInFolder(photo.path) || !_records.contains(photo.sha256)) continue;
    const auto copy = copies.find(photo.path);
    if (copy != copies.end() && copy->second == photo.sha256) continue;
    const bool wasMoved = beginsLikeOneOf(moved, folderOf(photo.path));
    if (wasMoved) {
      ++_totals.backupsAsked;
    } else {
      complain(photo.path + (copy == copies.end() ? " has no backup." : " is not what its backup holds."));
    }
  }
}

void Account::checkWholeBackup() {
  const std::vector<File> files = filesBelow(_places.copies);
  checkCopies(files);
  const std::map<std::string, std::string> copies = byPath(files);
  for (const File& photo : filesBelow(_places.target)) {
    if (!is_image_file_name(photo.path)) continue;
    const auto copy = copies.find(photo.path);
    if (copy == copies.end() || copy->second != photo.sha256) {
      complain(photo.path + " has no backup although the operator asked for what is missing.");
    } else if (_records.contains(photo.sha256)) {
      ++_totals.backedUp;
    }
  }
}

void Account::checkPlaces(const std::set<std::string>& moved) {
  const std::string root = _places.root.toStdString();
  const std::string copies = "/Copies";
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string path = entry.path().string().substr(root.size());
    const bool isCopy = path.starts_with(copies + "/") && path.ends_with(".ambrel_tmp");
    if (isCopy && beginsLikeOneOf(moved, folderOf(path.substr(copies.size())))) {
      ++_totals.stuckCopies;
    } else if (isTemporary(path)) {
      complain(path + " is a temporary file that stayed.");
    }
    if (!entry.is_directory() && !isAllowed(path)) complain(path + " lies where nothing is to be made.");
    if (path.starts_with("/home/tmp/ambrel-worker-")) complain(path + " was left behind by a worker.");
  }
}

}  // namespace ambrel::soak
