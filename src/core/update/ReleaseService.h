// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>

#include "core/base/Clock.h"
#include "core/base/Result.h"
#include "core/update/Release.h"

class QNetworkAccessManager;

namespace ambrel {

// Asks the release service, over https, for the latest release. Plain http serves for a loopback address
// only.
class ReleaseService : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::seconds kTimeLimit{15};  // for the whole answer, however slowly it drips
  static constexpr qint64 kLargestBody = 1024 * 1024;    // bytes
  static constexpr int kMostRedirects = 5;               // each to an https address
  static constexpr const char* kLatestReleasePath =
      "/repos/ambrel-inc/ambrel-photo-tether-releases/releases/latest";

  // `host` is the service's API host, with scheme and perhaps a port; an empty one is never asked.
  ReleaseService(Clock& clock, const QUrl& host);
  ~ReleaseService() override;

  // The API host of this installation: AMBREL_RELEASE_API from the environment, where it is set, else the one
  // that the program was built with.
  static QUrl configuredHost();

  bool hasHost() const { return !_host.isEmpty(); }
  // `answered` is called once, later, on the main thread, unless this object ends before.
  void fetchLatest(std::function<void(const Result<Release>&)> answered);

 private:
  Clock& _clock;
  const QUrl _host;
  // Absent until the service is asked: the window is shown sooner without it.
  std::unique_ptr<QNetworkAccessManager> _network;
};

}  // namespace ambrel
