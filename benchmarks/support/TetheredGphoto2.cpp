// SPDX-License-Identifier: Apache-2.0
#include "support/TetheredGphoto2.h"

#include <QDir>
#include <signal.h>

#include "support/EndWithParent.h"
#include "support/Goals.h"

namespace ambrel::bench {

TetheredGphoto2::TetheredGphoto2(const std::string& port, const QString& folder, const QStringList& options) {
  require(QDir().mkpath(folder), "no folder");
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("HOME", folder);
  environment.insert("LC_ALL", "C");
  endWithParent(_process);
  _process.setProcessEnvironment(environment);
  _process.setWorkingDirectory(folder);
  _process.setStandardOutputFile(QProcess::nullDevice());
  _process.setStandardErrorFile(QProcess::nullDevice());
  const QStringList arguments = {
      "--quiet",      "--camera",        "PTP/IP Camera", "--port", QString::fromStdString(port),
      "--set-config", "capturetarget=1", "--keep"};
  _process.start("gphoto2", arguments + options + QStringList{"--capture-tethered"});
  require(_process.waitForStarted(), "gphoto2 cannot be started");
}

TetheredGphoto2::~TetheredGphoto2() {
  ::kill(pid(), SIGINT);
  _process.waitForFinished(3000);
}

}  // namespace ambrel::bench
