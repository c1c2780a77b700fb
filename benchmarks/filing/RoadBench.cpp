// SPDX-License-Identifier: Apache-2.0
// The road of a photo with 100,000 names in the list: from the shutter to the file in its folder and the row
// counted, beside gphoto2 with a hook script that makes the folder and moves the file; and the main thread
// during a burst.
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <optional>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/EventLoopGaps.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "support/AbsentOperator.h"
#include "support/Benchmark.h"
#include "support/RecordingScreen.h"
#include "support/SimulatedCamera.h"
#include "support/TetheredGphoto2.h"

namespace ambrel::bench {
namespace {

constexpr int kNames = 100'000;
constexpr int kSingles = 25;
constexpr int kBurst = 300;
constexpr int kPhotoBytes = 1'000'000;
constexpr int kPatienceMs = 30'000;
constexpr double kMostAfterDownloadMs = 15;
constexpr double kLongestGapMs = 16;

template <typename Done>
void serveUntil(Done&& done, const char* what) {
  QElapsedTimer elapsed;
  elapsed.start();
  while (!done()) {
    require(elapsed.elapsed() < kPatienceMs, what);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
  }
}

void pause(int milliseconds) {
  QElapsedTimer elapsed;
  elapsed.start();
  serveUntil([&] { return elapsed.elapsed() >= milliseconds; }, "pause");
}

// Both programs look for photos in turns; photos at ever other points of a turn show them as they are.
int pauseBefore(int shot) {
  return 250 + 37 * (shot % 11);
}

void shoot(SimulatedCamera& camera, int count = 1) {
  camera.command("shoot n=" + std::to_string(count) + " size=" + std::to_string(kPhotoBytes));
}

class Session {
 public:
  Session(const SimulatedCamera& camera, const QString& folder) : _home(folder + "/ours") {
    qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(camera.gphotoPort()));
    layOut();
    _app.emplace(_clock, _operator, _files, _link,
                 Surroundings{_locations, Bundle(QStringLiteral(AMBREL_BUNDLE)), [](qint64) {}});
    QObject::connect(&_app->photoFiler(), &PhotoFiler::filed, &*_app,
                     [this](const QString& path, qint64 row) {
                       require(row == _app->list().selectedRow(), "the photo was counted on another row");
                       filed.append(path);
                     });
    QObject::connect(&_link, &WorkerLink::blockArrived, &*_app, [this](const QByteArray& block) {
      if (block.startsWith("DOWNLOADED|")) _sinceDownloaded.start();
    });
    bool watched = false;
    QObject::connect(&*_app, &AmbrelAppDelegate::watchingConfirmed, &*_app, [&watched] { watched = true; });
    _app->applicationDidFinishLaunching(_screen);
    serveUntil([this] { return _screen.isBuilt(); }, "the application does not start");
    require(_app->list().grid().rowCount() == kNames, "the list is not whole");
    _app->connectCameraManual();
    serveUntil([&] { return watched; }, "the camera is not watched");
    watched = false;
    QObject::disconnect(&*_app, &AmbrelAppDelegate::watchingConfirmed, nullptr, nullptr);
  }
  ~Session() { _app->applicationWillTerminate(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Milliseconds from the worker's report until the row is counted.
  double waitForOne() {
    const qsizetype wanted = filed.size() + 1;
    serveUntil([&] { return filed.size() >= wanted; }, "no photo was filed");
    return static_cast<double>(_sinceDownloaded.nsecsElapsed()) / 1e6;
  }

  QStringList filed;

 private:
  void layOut() {
    _home.mkpath("Photos");
    QFile names(_home.filePath("names.csv"));
    require(names.open(QIODevice::WriteOnly), "the list cannot be written");
    names.write("Name\n");
    for (int i = 0; i < kNames; ++i)
      names.write("Person Number " + QByteArray::number(i) + '\n');
    Preferences preferences(_locations.preferencesFile);
    preferences.setLastCSVPath(names.fileName());
    preferences.setLastTargetDir(_home.filePath("Photos"));
  }

  const QDir _home;
  Locations _locations = Locations::below(_home.filePath("home"));
  SystemClock _clock;
  AbsentOperator _operator;
  PosixFiles _files;
  ProcessLink _link;
  RecordingScreen _screen;
  QElapsedTimer _sinceDownloaded;
  std::optional<AmbrelAppDelegate> _app;
};

// gphoto2 with a script that files each photo as we do.
class Peer {
 public:
  Peer(const SimulatedCamera& camera, const QString& folder)
      : _folder(folder), _gphoto2(camera.gphotoPort(), folder, {"--hook-script", writeHook(folder)}) {}

  int filedPhotos() const {
    return static_cast<int>(QDir(_folder.filePath("Person")).entryList(QDir::Files).size());
  }

 private:
  static QString writeHook(const QString& folder) {
    QFile hook(folder + ".sh");
    require(hook.open(QIODevice::WriteOnly), "the hook cannot be written");
    hook.write(
        "#!/bin/sh\n[ \"$ACTION\" = download ] || exit 0\nmkdir -p \"Person\" && "
        "mv -n \"$ARGUMENT\" \"Person/Person_$(basename \"$ARGUMENT\")\"\n");
    hook.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    return hook.fileName();
  }

  const QDir _folder;
  const TetheredGphoto2 _gphoto2;
};

std::vector<double> peerTimes(const QString& folder) {
  SimulatedCamera camera;
  const Peer peer(camera, folder + "/peer");
  for (int attempt = 0; attempt < 10 && peer.filedPhotos() == 0; ++attempt) {
    shoot(camera);
    pause(1000);
  }
  require(peer.filedPhotos() > 0, "gphoto2 files nothing");
  std::vector<double> times;
  for (int shot = 0; shot < kSingles; ++shot) {
    pause(pauseBefore(shot));
    const int wanted = peer.filedPhotos() + 1;
    shoot(camera);
    times.push_back(millisecondsOf(
        [&] { serveUntil([&] { return peer.filedPhotos() >= wanted; }, "gphoto2 filed no photo"); }));
  }
  return times;
}

void measureSingles(Session& session, SimulatedCamera& camera, const QString& folder, Goals& goals) {
  std::vector<double> afterDownload;
  std::vector<double> wholeRoad;
  for (int shot = 0; shot < kSingles; ++shot) {
    pause(pauseBefore(shot));
    shoot(camera);
    wholeRoad.push_back(millisecondsOf([&] { afterDownload.push_back(session.waitForOne()); }));
  }
  goals.atMost("worker's report to row counted", afterDownload, kMostAfterDownloadMs);
  goals.atMostTimes("shutter to filed and counted", wholeRoad, "gphoto2 + hook", peerTimes(folder), 1.0);
}

void measureBurst(Session& session, SimulatedCamera& camera, Goals& goals) {
  const qsizetype before = session.filed.size();
  shoot(camera, kBurst);
  const EventLoopGaps gaps;
  serveUntil([&] { return session.filed.size() >= before + kBurst; }, "the burst was not filed");
  const double longest = gaps.longestGapMs();
  for (qsizetype i = 0; i < session.filed.size(); ++i) {
    const QString number = QStringLiteral("_%1.JPG").arg(i + 1, 4, 10, QLatin1Char('0'));
    require(session.filed[i].endsWith(number), "the numbers are not consecutive");
    require(QFile::exists(session.filed[i]), "a filed photo is missing");
  }
  goals.atMost("longest gap of the main thread, 300 photos", longest, kLongestGapMs);
}

void measure(Goals& goals, const QString& folder) {
  SimulatedCamera camera;
  Session session(camera, folder);
  measureSingles(session, camera, folder, goals);
  measureBurst(session, camera, goals);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
