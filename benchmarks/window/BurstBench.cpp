// SPDX-License-Identifier: Apache-2.0
#include "window/BurstBench.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <algorithm>
#include <string>

#include "support/EventLoop.h"
#include "window/Application.h"
#include "window/PreviewBench.h"
#include "window/StartBench.h"

namespace ambrel::bench {
namespace {

constexpr double kLongestGapMs = 16;
constexpr std::chrono::minutes kPatience{3};

// A burst's photos, each a picture that can be shown and a file like no other.
class Burst {
 public:
  Burst(const QString& home, int count) : _root(home), _count(count) {
    _picture = contents(writePhoto(home, {1800, 1200}));
    for (const char* name : {"Photos", "Copies", "Downloads"})
      require(_root.mkpath(QLatin1String(name)), "no folders");
    for (int i = 0; i < count; ++i) {
      _downloads.append(folder("Downloads") + QStringLiteral("/IMG_%1.JPG").arg(i));
      QFile download(_downloads.back());
      require(download.open(QIODevice::WriteOnly) && download.write(bytesOf(i)) > _picture.size(),
              "no download");
    }
  }
  QString folder(const char* name) const { return _root.filePath(QLatin1String(name)); }
  const QStringList& downloads() const { return _downloads; }
  int count() const { return _count; }
  QStringList photosIn(const char* name) const {
    QStringList paths;
    for (const QFileInfo& photo : QDir(personIn(name)).entryInfoList(QDir::Files))
      paths.append(photo.absoluteFilePath());
    return paths;
  }
  bool removeFrom(const char* name) const { return QDir(personIn(name)).removeRecursively(); }
  // Whether the target folder holds each of them once and nothing else, byte for byte.
  bool areFiled() const {
    const QStringList photos = photosIn("Photos");
    QSet<int> found;
    for (const QString& photo : photos) {
      const QByteArray bytes = contents(photo);
      const int number = bytes.right(kNumberLength).toInt();
      if (bytes == bytesOf(number)) found.insert(number);
    }
    return photos.size() == _count && found.size() == _count;
  }
  // Whether the backup holds the same under the same names.
  bool areBackedUp() const {
    const QStringList photos = photosIn("Photos");
    const QStringList copies = photosIn("Copies");
    return std::equal(photos.begin(), photos.end(), copies.begin(), copies.end(),
                      [](const QString& photo, const QString& copy) {
                        return QFileInfo(photo).fileName() == QFileInfo(copy).fileName() &&
                               contents(photo) == contents(copy);
                      });
  }

 private:
  static constexpr int kNumberLength = 8;
  // What comes after its end belongs to no picture.
  QByteArray bytesOf(int number) const {
    return _picture + QByteArray::number(number).rightJustified(kNumberLength, '0');
  }
  QString personIn(const char* name) const { return folder(name) + QStringLiteral("/Person Number 0"); }

  const QDir _root;
  const int _count;
  QByteArray _picture;
  QStringList _downloads;
};

// As fast as they can be filed, with the window, the preview and the backup at work on them.
void fileAll(Goals& goals, Application& app, const Burst& burst) {
  // Which of them, all of one age, is the last in the list is left open.
  const QString all = QStringLiteral("/%1)").arg(burst.count());
  const auto allShown = [&] { return app.window.rightPane()->label().endsWith(all); };
  const Heartbeat heartbeat;
  for (const QString& path : burst.downloads())
    app.delegate.photoFiler().handleDownloadedPath(path);
  require(runEventsUntil([&] { return allShown() && app.delegate.backup().state().queued == 0; }, kPatience),
          "the burst did not end");
  const auto gap = static_cast<double>(heartbeat.longestGap().count());
  require(burst.areFiled() && burst.areBackedUp(), "photos are missing");
  require(app.delegate.list().grid().capturedForModelRow(0) == burst.count(), "photos were not counted");
  goals.atMost("longest gap, " + std::to_string(burst.count()) + " photos with preview and backup", gap,
               kLongestGapMs);
}

// The backup alone, of photos that are in their places.
void backUpAll(Goals& goals, Application& app, const Burst& burst) {
  require(burst.removeFrom("Copies"), "copies are still there");
  QStringList filed = burst.photosIn("Photos");
  const Heartbeat heartbeat;
  const auto allBackedUp = [&] {
    // One after the other, as they are filed.
    if (!filed.isEmpty()) app.delegate.backup().backupSavedFile(filed.takeFirst());
    return filed.isEmpty() && app.delegate.backup().state().queued == 0;
  };
  require(runEventsUntil(allBackedUp, kPatience), "the backup did not end");
  const auto gap = static_cast<double>(heartbeat.longestGap().count());
  require(burst.areBackedUp(), "copies are missing");
  goals.atMost("longest gap, " + std::to_string(burst.count()) + " photos backed up", gap, kLongestGapMs);
}

void measureBurst(Goals& goals, const QString& home, int count) {
  storePeople(home);
  const Burst burst(home, count);
  {
    Preferences preferences(Locations::below(home).preferencesFile);
    preferences.setLastTargetDir(burst.folder("Photos"));
    preferences.setBackupDir(burst.folder("Copies"));
    preferences.setBackupEnabled(true);
  }
  // What the disk still has to do for the downloads is not part of the burst.
  require(QProcess::execute(QStringLiteral("sync"), {QStringLiteral("-f"), home}) == 0, "not on the disk");
  ClockAfterSplash clock;
  Application app(home, clock);
  require(runEventsUntil([&] { return app.window.isBuilt() && app.delegate.backup().isEnabled(); }),
          "no window");
  require(app.delegate.list().grid().rowCount() == kNamesInWindow, "the list is not there");
  fileAll(goals, app, burst);
  backUpAll(goals, app, burst);
}

}  // namespace

void measureBursts(Goals& goals, const QString& folder) {
  for (const int photos : {300, 1'000}) {
    const QString home = QStringLiteral("%1/burst-%2").arg(folder).arg(photos);
    measureBurst(goals, home, photos);
    QDir(home).removeRecursively();
  }
}

}  // namespace ambrel::bench
