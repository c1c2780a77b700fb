// SPDX-License-Identifier: Apache-2.0
#include "core/backup/ShareAddress.h"

#include <QUrl>

namespace ambrel {

bool isNetworkShare(const MountedVolume& volume) {
  return volume.source.startsWith(QLatin1String("//"));
}

QString shareUrl(const MountedVolume& volume) {
  const bool appleShare = volume.fileSystem == QLatin1String("afpfs");
  return (appleShare ? QStringLiteral("afp:") : QStringLiteral("smb:")) + volume.source;
}

QString shareHost(const QString& mountSource) {
  const QString authority = mountSource.mid(2).section(QLatin1Char('/'), 0, 0);
  const QString server = authority.mid(authority.lastIndexOf(QLatin1Char('@')) + 1);
  return server.section(QLatin1Char(':'), 0, 0);
}

QString percentEncodedShare(const QString& url) {
  return QString::fromLatin1(QUrl::toPercentEncoding(url, ":/@"));
}

}  // namespace ambrel
