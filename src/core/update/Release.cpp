// SPDX-License-Identifier: Apache-2.0
#include "core/update/Release.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace ambrel {
namespace {

QUrl diskImageAmong(const QJsonArray& assets) {
  for (const QJsonValue asset : assets) {
    const QString name = asset[QLatin1String("name")].toString();
    if (name.toLower().endsWith(QLatin1String(".dmg")))
      return QUrl(asset[QLatin1String("browser_download_url")].toString());
  }
  return {};
}

bool mayBeOpened(const QUrl& address) {
  return address.isValid() && address.scheme() == QLatin1String("https") && !address.host().isEmpty();
}

}  // namespace

Result<Release> parseRelease(const QByteArray& body) {
  const QJsonDocument document = QJsonDocument::fromJson(body);
  const QString tag = document[QLatin1String("tag_name")].toString();
  if (!document.isObject() || tag.isEmpty())
    return Failure{QStringLiteral("Could not read the latest version information.")};
  return Release{.tag = tag,
                 .diskImage = diskImageAmong(document[QLatin1String("assets")].toArray()),
                 .page = QUrl(document[QLatin1String("html_url")].toString())};
}

QUrl downloadAddress(const Release& release) {
  if (mayBeOpened(release.diskImage)) return release.diskImage;
  return mayBeOpened(release.page) ? release.page : QUrl();
}

}  // namespace ambrel
