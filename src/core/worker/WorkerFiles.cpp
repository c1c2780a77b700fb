// SPDX-License-Identifier: Apache-2.0
#include "core/worker/WorkerFiles.h"

#include <QDir>
#include <QFileInfo>

namespace ambrel {
namespace {

// The worker starts beside the SDK library, so that it finds what comes with it; without that folder, beside
// itself.
QString workingDirectory(const QString& sdkPath, const QString& workerPath) {
  const QString sdkFolder = QDir::cleanPath(QFileInfo(sdkPath).path());
  return QFileInfo(sdkFolder).isDir() ? sdkFolder : QFileInfo(workerPath).path();
}

}  // namespace

QString WorkerFiles::workerPath() const {
  return bundle.bundleMacOSPath(workerName());
}

QString WorkerFiles::sdkFrameworkRoot() const {
  return bundle.root() + QStringLiteral("/Contents/Frameworks/EDSDK/Framework");
}

QString WorkerFiles::sdkPath() const {
  return sdkFrameworkRoot() + QStringLiteral("/EDSDK.framework/Versions/A/EDSDK");
}

QString WorkerFiles::unsetDownloadFolder() const {
  return QDir(temporaryFolder).filePath(QStringLiteral("AmbrelTether-unset"));
}

WorkerLaunch WorkerFiles::launch(const QString& downloadFolder, const QString& saveModeWord) const {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  // Each platform's loader reads its own of the two and knows nothing of the other.
  environment.insert(QStringLiteral("DYLD_FRAMEWORK_PATH"), sdkFrameworkRoot());
  environment.insert(QStringLiteral("LD_LIBRARY_PATH"), sdkFrameworkRoot());
  environment.insert(QStringLiteral("AMBREL_VERBOSE_LOGS"), QStringLiteral("0"));
  environment.insert(QStringLiteral("AMBREL_DIAG"), QStringLiteral("0"));
  environment.insert(QStringLiteral("AMBREL_CPP_DETECT_STRATEGY"), QStringLiteral("matrix"));
  environment.insert(QStringLiteral("AMBREL_CPP_REGISTER_STATE_HANDLER"), QStringLiteral("1"));
  return {workerPath(),
          {downloadFolder, sdkPath(), saveModeWord},
          workingDirectory(sdkPath(), workerPath()),
          environment};
}

}  // namespace ambrel
