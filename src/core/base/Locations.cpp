// SPDX-License-Identifier: Apache-2.0
#include "core/base/Locations.h"

#include <QDir>
#include <QStandardPaths>

namespace ambrel {

Locations Locations::forThisUser() {
  const QString home = qEnvironmentVariable("AMBREL_HOME");
  if (!home.isEmpty()) return below(QDir(home).absolutePath());
  return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
          QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QStringLiteral("/Ambrel Tether/preferences.ini"),
          QDir::tempPath(), QStandardPaths::writableLocation(QStandardPaths::DesktopLocation)};
}

Locations Locations::below(const QString& home) {
  const QDir root(home);
  for (const char* folder : {"data", "tmp"})
    root.mkpath(QString::fromLatin1(folder));
  return {root.filePath(QStringLiteral("data")), root.filePath(QStringLiteral("preferences.ini")),
          root.filePath(QStringLiteral("tmp")), home};
}

QString Locations::dataFile(const QString& name) const {
  const QDir folder(applicationSupport + QStringLiteral("/Ambrel Tether"));
  folder.mkpath(QStringLiteral("."));
  return folder.filePath(name);
}

}  // namespace ambrel
