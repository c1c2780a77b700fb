// SPDX-License-Identifier: Apache-2.0
#include "demo/SampleShoot.h"

#include <QDir>
#include <QFile>
#include <QVariantMap>

#include "core/base/Preferences.h"

namespace ambrel {
namespace {

Result<void> writeNames(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return Failure{file.errorString()};
  const QByteArray bytes = "Name\n" + sampleNames().join(QLatin1Char('\n')).toUtf8() + '\n';
  if (file.write(bytes) != bytes.size() || !file.flush()) return Failure{file.errorString()};
  return {};
}

}  // namespace

QStringList sampleNames() {
  return {QStringLiteral("Anna Bergström"), QStringLiteral("José Álvarez"), QStringLiteral("田中 さくら"),
          QStringLiteral("Олена Коваль"),   QStringLiteral("ليلى حداد"),    QStringLiteral("Priya Sharma"),
          QStringLiteral("Jane Doe"),       QStringLiteral("Jane Doe"),     QStringLiteral("Zoë O'Neil"),
          QStringLiteral("Team 4/5: A\\B"), QStringLiteral("Łukasz Nowak"), QStringLiteral("Θάλεια Παππά")};
}

Result<SampleShoot> prepareSampleShoot(const QString& home) {
  SampleShoot shoot{Locations::below(home), home + QStringLiteral("/sample names.csv"),
                    home + QStringLiteral("/Photos")};
  if (!QDir().mkpath(shoot.targetDir)) return Failure{QStringLiteral("Cannot create ") + shoot.targetDir};
  if (const Result<void> written = writeNames(shoot.listFile); !written) return Failure{written.error()};
  Preferences preferences(shoot.locations.preferencesFile);
  preferences.setLastCSVPath(shoot.listFile);
  preferences.setLastTargetDir(shoot.targetDir);
  preferences.setSuffixes({QVariantMap{{QStringLiteral("label"), QStringLiteral("FR")},
                                       {QStringLiteral("suffix"), QStringLiteral("_FR")},
                                       {QStringLiteral("on"), false}}});
  preferences.synchronize();
  return shoot;
}

}  // namespace ambrel
