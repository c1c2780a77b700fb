// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "core/base/Bundle.h"
#include "core/worker/WorkerLink.h"

namespace ambrel {

// Where the worker and the camera maker's SDK lie in the bundle, and what the worker is started with.
struct WorkerFiles {
  Bundle bundle;
  QString temporaryFolder;

  static QString workerName() { return QStringLiteral("ambrel_cpp_worker"); }
  QString workerPath() const;
  QString sdkFrameworkRoot() const;
  QString sdkPath() const;
  // The download folder while no target folder is chosen.
  QString unsetDownloadFolder() const;
  WorkerLaunch launch(const QString& downloadFolder, const QString& saveModeWord) const;
};

}  // namespace ambrel
