// SPDX-License-Identifier: Apache-2.0
#include "faults/FaultWorld.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <algorithm>

#include "core/backup/QueueFile.h"
#include "core/list/GridFile.h"
#include "faults/Photos.h"

namespace ambrel::faults {
namespace {

constexpr auto kStore = "data/Ambrel Tether/ambrel_grid.csv";
constexpr auto kQueue = "data/Ambrel Tether/backup_queue.plist";

// The list before the first photo.
const std::vector<Row>& firstList() {
  static const std::vector<Row> rows = {{"Anna", "with \"quotes\", and commas", "2", "1"},
                                        {"Ben \xc3\x96mer", "", "0", ""},
                                        {"Cara", "", "0", ""}};
  return rows;
}

// And after the first `count` of the photos with these numbers.
std::vector<Row> listAfter(const std::vector<int>& photos, std::size_t count, Task task) {
  std::vector<Row> rows = firstList();
  for (std::size_t i = 0; i < count; ++i) {
    std::string& captured = rows[task == Task::Burst ? 0 : static_cast<std::size_t>((photos[i] - 1) % 3)][2];
    captured = std::to_string(std::stoi(captured) + 1);
  }
  return rows;
}

QByteArray sha256(const QByteArray& bytes) {
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

bool isTemporary(const QString& path) {
  return path.contains(QLatin1String("/.ambrel-")) || path.endsWith(QLatin1String(".ambrel-part")) ||
         path.endsWith(QLatin1String(".ambrel_tmp"));
}

bool isOneOfOurs(const QString& path) {
  if (path.startsWith(QLatin1String("Photos/")) || path.startsWith(QLatin1String("Copies/"))) return true;
  if (path.startsWith(QLatin1String("tmp/"))) return true;
  if (path.startsWith(QLatin1String("preferences.ini"))) return !path.contains(QLatin1String(".broken"));
  const QString data = QStringLiteral("data/Ambrel Tether/");
  const bool besidePreferences = !path.contains(QLatin1Char('/'));
  if (!path.startsWith(data) && !besidePreferences) return false;
  const QString name = besidePreferences ? path : path.mid(data.size());
  return name.startsWith(QLatin1String("ambrel_grid.csv")) || name == QLatin1String("backup_queue.plist") ||
         name == QLatin1String("backup_queue.plist.unread") ||
         name.startsWith(QLatin1String("backup_pending/")) ||
         (name.startsWith(QLatin1Char('.')) && isTemporary(name));
}

QString copyOf(const QString& photo) {
  return QStringLiteral("Copies/") + photo.mid(QStringLiteral("Photos/").size());
}

}  // namespace

World::World(const QString& folder) : _folder(folder), _home(folder + QStringLiteral("/home")) {}

void World::put(const QString& path, const QByteArray& bytes) {
  const QString whole = _home + QLatin1Char('/') + path;
  QDir().mkpath(whole.left(whole.lastIndexOf(QLatin1Char('/'))));
  QFile file(whole);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) std::abort();
  _earlier.insert(path, bytes);
}

void World::prepare() {
  clear();
  _taken.clear();
  _earlier.clear();
  QDir().mkpath(_home + QStringLiteral("/tmp"));
  const QByteArray home = _home.toUtf8();
  put(QStringLiteral("names.csv"), "Name\nSomebody Else\n");
  put(QStringLiteral("Photos/Anna/Anna_0001.JPG"), "of last year");
  put(QStringLiteral("Photos/Anna/Anna_0003.JPG"), "waits for its backup");
  put(QStringLiteral("Photos/notes.txt"), "not ours");
  put(QStringLiteral("Copies/Anna/Anna_0001.JPG"), "of last year");
  put(QStringLiteral("Copies/keep.txt"), "not ours either");
  QByteArray list = "File Name,Notes,Captured,Marker";
  list += "\nAnna,\"with \"\"quotes\"\", and commas\",2,1\nBen \xc3\x96mer,,0,\nCara,,0,";
  put(QString::fromLatin1(kStore), list);
  put(QString::fromLatin1(kQueue), encodeQueue({_home + QStringLiteral("/Photos/Anna/Anna_0003.JPG")}));
  put(QStringLiteral("preferences.ini"), "[General]\nAmbrelAutoConnectV2=false\nAmbrelBackupDir=" + home +
                                             "/Copies\nAmbrelBackupEnabled=true\nAmbrelLastCSVPath=" + home +
                                             "/names.csv\nAmbrelLastTargetDir=" + home + "/Photos\n");
  for (const char* changing : {kStore, kQueue, "preferences.ini"})
    _earlier.remove(QString::fromLatin1(changing));
}

void World::clear() const {
  QDir(_folder).removeRecursively();
}

World::Contents World::contents() const {
  Contents found;
  QDirIterator walk(_home, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
  while (walk.hasNext()) {
    QFile file(walk.next());
    const QString path = file.fileName().mid(_home.size() + 1);
    found.insert(path, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)"));
  }
  return found;
}

QMap<int, World::Photo> World::photos() const {
  if (!_taken.isEmpty()) return _taken;
  QMap<int, Photo> delivered;
  QFile file(deliveries());
  if (!file.open(QIODevice::ReadOnly)) return delivered;
  for (const QByteArray& line : file.readAll().split('\n'))
    if (const int number = line.toInt(); number > 0) {
      delivered.insert(number, {sha256(QByteArray::fromStdString(photoBytes(number)))});
    }
  return delivered;
}

// Where the bytes of each photo lie under a name of their own.
QMap<int, QStringList> World::placesOfPhotos(const Contents& now) const {
  QMap<QByteArray, QStringList> byContent;
  for (auto file = now.begin(); file != now.end(); ++file) {
    const bool isPhoto = file.key().startsWith(QLatin1String("Photos/")) && !isTemporary(file.key());
    if (isPhoto && !_earlier.contains(file.key())) byContent[sha256(file.value())].append(file.key());
  }
  QMap<int, QStringList> places;
  const QMap<int, Photo> expected = photos();
  for (auto photo = expected.begin(); photo != expected.end(); ++photo)
    places.insert(photo.key(), byContent.value(photo->sha256));
  return places;
}

std::vector<int> World::filed(const Contents& now, const Aftermath& after) const {
  std::vector<int> numbers;
  const QMap<int, QStringList> places = placesOfPhotos(now);
  for (auto photo = places.begin(); photo != places.end(); ++photo) {
    const auto inAFolder = [](const QString& path) { return path.count(QLatin1Char('/')) > 1; };
    const auto saidToBeFiled = [&](const QString& path) {
      return after.saidFirst.contains(QStringLiteral("filed ") + _home + QLatin1Char('/') + path);
    };
    const QStringList& found = photo.value();
    // One that has its first name as well may be filed, or have failed half way.
    const bool isMoved = !found.isEmpty() && std::all_of(found.begin(), found.end(), inAFolder);
    if (isMoved || std::any_of(found.begin(), found.end(), saidToBeFiled)) numbers.push_back(photo.key());
  }
  return numbers;
}

// I1: every photo that was reported exists exactly once.
void World::checkPhotos(const Contents& now, const Aftermath& after, QStringList& wrong) const {
  const QMap<int, QStringList> places = placesOfPhotos(now);
  const QMap<int, Photo> expected = photos();
  for (auto photo = places.begin(); photo != places.end(); ++photo) {
    const QStringList& found = photo.value();
    if (found.isEmpty() && !expected.value(photo.key()).onCard) {
      wrong.append(QStringLiteral("I1: photo %1 is lost").arg(photo.key()));
    }
    const bool atSource = std::any_of(found.begin(), found.end(),
                                      [](const QString& path) { return path.count(QLatin1Char('/')) == 1; });
    const bool midMove = after.separateMoves && found.size() == 2 && atSource;
    if (found.size() > 1 && !midMove) {
      wrong.append(QStringLiteral("I1: photo %1 is there %2 times: %3")
                       .arg(photo.key())
                       .arg(found.size())
                       .arg(found.join(QLatin1Char(' '))));
    }
  }
}

// I2: nothing that was there before is changed or gone.
void World::checkEarlierFiles(const Contents& now, QStringList& wrong) const {
  for (auto file = _earlier.begin(); file != _earlier.end(); ++file) {
    if (!now.contains(file.key())) {
      wrong.append(QStringLiteral("I2: %1 is gone").arg(file.key()));
    } else if (now.value(file.key()) != file.value()) {
      wrong.append(QStringLiteral("I2: %1 is changed").arg(file.key()));
    }
  }
}

// I4: the list store is the list as it is, or as it was before the last change. One that could not be read is
// kept aside.
void World::checkStore(const Contents& now, const Aftermath& after, QStringList& wrong) const {
  const QString store = QString::fromLatin1(kStore);
  const std::vector<int> photos = filed(now, after);
  for (const QString& path : now.keys().filter(store)) {
    const auto rows = readGrid(_home + QLatin1Char('/') + path);
    for (std::size_t count = 0; count <= photos.size(); ++count) {
      const bool inTime = after.faultStays || path != store || count + 1 >= photos.size();
      if (inTime && rows == listAfter(photos, count, after.task)) return;
    }
  }
  wrong.append(QStringLiteral("I4: %1 filed, and the list store holds: %2")
                   .arg(photos.size())
                   .arg(QString::fromUtf8(now.value(store, "nothing")).replace('\n', ';')));
}

// I5: what bears a name in the backup folder is whole. I3, I9: and what was filed gets there.
void World::checkBackup(const Contents& now, const Aftermath& after, QStringList& wrong) const {
  for (auto file = now.begin(); file != now.end(); ++file) {
    const QString& path = file.key();
    if (isTemporary(path) || _earlier.contains(path)) continue;
    if (path.startsWith(QLatin1String("Copies/"))) {
      const QString source = QStringLiteral("Photos/") + path.mid(QStringLiteral("Copies/").size());
      if (now.value(source) != file.value())
        wrong.append(QStringLiteral("I5: %1 is not its photo").arg(path));
    }
  }
  const Result<QStringList> queue = readQueueFile(_home + QLatin1Char('/') + QString::fromLatin1(kQueue));
  if (!queue) wrong.append(QStringLiteral("I3: the queue file is broken"));
  if (after.killed || after.ended || after.faultStays) {
    if (!after.recovered) return;
  }
  for (auto file = now.begin(); file != now.end(); ++file) {
    const QString& path = file.key();
    const bool isPhoto = path.startsWith(QLatin1String("Photos/")) && path.count(QLatin1Char('/')) > 1;
    if (!isPhoto || isTemporary(path)) continue;
    if (now.value(copyOf(path)) == file.value()) continue;
    const bool queued = queue && queue.value().contains(_home + QLatin1Char('/') + path);
    const bool forgotten = after.recovered && !queued;
    wrong.append(QStringLiteral("%1: %2 has no backup").arg(forgotten ? "I3" : "I9", path));
  }
}

// I8: nothing is written where it does not belong.
void World::checkPlaces(const Contents& now, QStringList& wrong) const {
  for (auto file = now.begin(); file != now.end(); ++file) {
    if (!isOneOfOurs(file.key()) && !_earlier.contains(file.key())) {
      wrong.append(QStringLiteral("I8: %1 was made").arg(file.key()));
    }
  }
}

// I7: the operator is told of what a fault cost or delayed. I6: quitting is quick.
void World::checkSaid(const Contents& now, const Aftermath& after, QStringList& wrong) const {
  const auto saidWith = [&after](const QString& start) {
    return std::count_if(after.said.begin(), after.said.end(),
                         [&start](const QString& line) { return line.startsWith(start); });
  };
  if (saidWith(QStringLiteral("end")) != 1)
    wrong.append(QStringLiteral("I6: the session did not end by itself"));
  for (const QString& line : after.said) {
    if (line.startsWith(QLatin1String("quit ")) && line.mid(5).toInt() > 2500) {
      wrong.append(QStringLiteral("I6: quitting took %1 ms").arg(line.mid(5)));
    }
  }
  if (after.recovered || after.ended) return;
  const QMap<int, QStringList> places = placesOfPhotos(now);
  const auto arrived =
      std::count_if(places.begin(), places.end(), [](const QStringList& found) { return !found.isEmpty(); });
  const auto notFiled = arrived - static_cast<qsizetype>(filed(now, after).size());
  if (saidWith(QStringLiteral("alert Write Error")) < notFiled) {
    wrong.append(QStringLiteral("I7: %1 photos not filed, and nothing said").arg(notFiled));
  }
  // A camera is not even connected where the target folder cannot be seen.
  const auto notStarted = after.faultStays ? 0 : saidWith(QStringLiteral("not "));
  if (saidWith(QStringLiteral("unanswered")) + notStarted > 0) {
    wrong.append(QStringLiteral("I9: the session did not get through its photos"));
  }
}

QStringList World::violations(const Aftermath& after) const {
  QStringList wrong;
  const Contents now = contents();
  checkPhotos(now, after, wrong);
  checkEarlierFiles(now, wrong);
  checkStore(now, after, wrong);
  checkBackup(now, after, wrong);
  checkPlaces(now, wrong);
  if (!after.killed || after.recovered) checkSaid(now, after, wrong);
  return wrong;
}

}  // namespace ambrel::faults
