// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/Clock.h"
#include "demo/DemoCamera.h"
#include "demo/SampleShoot.h"

namespace ambrel {

// Shows the main job with the camera on loopback: by hand, with a picture every few seconds, or all by itself
// with a verdict at the end.
class Demo : public QObject {
  Q_OBJECT
 public:
  enum class Mode { ByHand, Automatic, Unattended };
  static constexpr int kPhotos = 8;
  static constexpr std::chrono::seconds kAutomaticPeriod{4};
  static constexpr std::chrono::seconds kLimit{90};

  Demo(Mode mode, Clock& clock, const SampleShoot& shoot, DemoCamera& camera);

  // Takes over an application that has been launched. `saveScreenshot` writes a picture of the window to a
  // file.
  void run(AmbrelAppDelegate& application, std::function<bool(const QString& file)> saveScreenshot);

 Q_SIGNALS:
  // Unattended only: 0 when every photo was filed with its bytes, else 1.
  void finished(int exitCode);

 private:
  bool isWatched();
  void takeNextPhoto();
  void selectPersonFor(int photo);
  void judge(const QStringList& takenHashes);
  void stopWith(const QString& reason);

  Mode _mode;
  Clock& _clock;
  SampleShoot _shoot;
  DemoCamera& _camera;
  AmbrelAppDelegate* _application = nullptr;
  std::function<bool(const QString&)> _saveScreenshot;
  int _taken = 0;
  bool _photoOnItsWay = false;
  bool _cameraWatched = false;
  bool _over = false;
};

}  // namespace ambrel
