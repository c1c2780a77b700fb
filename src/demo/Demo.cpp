// SPDX-License-Identifier: Apache-2.0
#include "demo/Demo.h"

#include <QDir>
#include <array>
#include <cstdio>

#include "demo/FiledPhotos.h"

namespace ambrel {
namespace {

// Model rows of the sample list that the unattended demo photographs, two pictures each.
constexpr std::array<qint64, 4> kPeople{0, 2, 6, 9};
constexpr std::chrono::milliseconds kLookInterval{100};
constexpr std::chrono::milliseconds kPauseBetweenPhotos{300};

void print(const QString& line) {
  std::puts(line.toUtf8().constData());
  std::fflush(stdout);
}

}  // namespace

Demo::Demo(Mode mode, Clock& clock, const SampleShoot& shoot, DemoCamera& camera)
    : _mode(mode), _clock(clock), _shoot(shoot), _camera(camera) {}

void Demo::run(AmbrelAppDelegate& application, std::function<bool(const QString&)> saveScreenshot) {
  _application = &application;
  _saveScreenshot = std::move(saveScreenshot);
  connect(&application, &AmbrelAppDelegate::watchingConfirmed, this, [this] { _cameraWatched = true; });
  switch (_mode) {
    case Mode::ByHand:
      print(QStringLiteral("Type \"shoot\" and press Return to take a picture, \"help\" for more."));
      return;
    case Mode::Automatic:
      _clock.callEvery(kAutomaticPeriod, this, [this] {
        if (isWatched()) _camera.command("shoot");
      });
      return;
    case Mode::Unattended:
      break;
  }
  connect(&application.photoFiler(), &PhotoFiler::filed, this, [this](const QString& path) {
    print(QStringLiteral("Filed ") + path.mid(_shoot.targetDir.size() + 1));
    _clock.callAfter(kPauseBetweenPhotos, this, [this] { _photoOnItsWay = false; });
  });
  connect(&application.photoFiler(), &PhotoFiler::failed, this, &Demo::stopWith);
  connect(&_camera, &DemoCamera::failed, this, &Demo::stopWith);
  _clock.callEvery(kLookInterval, this, [this] {
    if (!_over && !_photoOnItsWay && isWatched()) takeNextPhoto();
  });
  _clock.callAfter(kLimit, this, [this] { stopWith(QStringLiteral("The demo took too long.")); });
}

// A photo taken before the worker has said that it watches would not be fetched.
bool Demo::isWatched() {
  _cameraWatched = _cameraWatched && _application->isWatching();
  return _cameraWatched;
}

void Demo::takeNextPhoto() {
  _photoOnItsWay = true;
  if (_taken == kPhotos) {
    _camera.command("photos", [this](const QStringList& answer) { judge(hashesInAnswer(answer)); });
    return;
  }
  selectPersonFor(_taken++);
  _camera.command("shoot");
}

// The second picture of each person belongs to the round that the tag marks.
void Demo::selectPersonFor(int photo) {
  const qint64 row = kPeople.at(static_cast<std::size_t>(photo / 2));
  _application->tags().suffixToggled(0, photo % 2 == 1);
  _application->list().setSelectedRow(row);
  _application->list().selectModelRowIfVisible(row, true);
}

void Demo::judge(const QStringList& takenHashes) {
  if (_over) return;
  const QString screenshot = _shoot.targetDir + QStringLiteral("/../screenshot.png");
  const bool pictured = _saveScreenshot(screenshot);
  const qsizetype filed = filedExactlyOnce(takenHashes, fileHashesBelow(_shoot.targetDir));
  print(fileTree(_shoot.targetDir).join(QLatin1Char('\n')));
  print(pictured ? QStringLiteral("Screenshot: ") + QDir::cleanPath(screenshot)
                 : QStringLiteral("The screenshot could not be saved."));
  const bool allIdentical = takenHashes.size() == kPhotos && filed == kPhotos;
  print(QStringLiteral("%1 of %2 photos filed, bytes %3")
            .arg(filed)
            .arg(kPhotos)
            .arg(allIdentical ? QStringLiteral("identical") : QStringLiteral("missing or different")));
  _over = true;
  Q_EMIT finished(allIdentical ? 0 : 1);
}

void Demo::stopWith(const QString& reason) {
  if (_over) return;
  print(reason);
  judge({});
}

}  // namespace ambrel
