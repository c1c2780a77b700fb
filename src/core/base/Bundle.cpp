// SPDX-License-Identifier: Apache-2.0
#include "core/base/Bundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace ambrel {
namespace {

QString propertyListString(const QString& path, QStringView key) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  QXmlStreamReader reader(&file);
  bool keyFound = false;
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    if (reader.name() == QLatin1String("key")) {
      keyFound = reader.readElementText() == key;
    } else if (reader.name() == QLatin1String("string") && keyFound) {
      return reader.readElementText();
    }
  }
  return {};
}

}  // namespace

Bundle Bundle::aroundProgram(const QString& programFolder) {
  return Bundle(QDir::cleanPath(programFolder + QStringLiteral("/../..")));
}

QString Bundle::bundleMacOSPath(const QString& fileName) const {
  return _root + QStringLiteral("/Contents/MacOS/") + fileName;
}

QString Bundle::resourcePath(const QString& fileName) const {
  const QString path = _root + QStringLiteral("/Contents/Resources/") + fileName;
  return QFileInfo::exists(path) ? path : QString();
}

QString Bundle::displayVersion() const {
  const QString version =
      propertyListString(_root + QStringLiteral("/Contents/Info.plist"), u"CFBundleShortVersionString");
  return version.isEmpty() ? QStringLiteral("7.04") : version;
}

}  // namespace ambrel
