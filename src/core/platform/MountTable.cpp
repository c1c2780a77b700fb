// SPDX-License-Identifier: Apache-2.0
#include "core/platform/MountTable.h"

#include <QFile>
#include <QStringList>
#include <QUrl>

namespace ambrel {
namespace {

struct Mount {
  QByteArray point;
  QByteArray fileSystem;
  QByteArray source;
};

// Blanks, tabs, line breaks and backslashes stand as a backslash and three octal digits.
QByteArray unescaped(const QByteArray& field) {
  QByteArray bytes;
  for (qsizetype i = 0; i < field.size(); ++i) {
    bool octal = false;
    const int code = field[i] == '\\' ? field.mid(i + 1, 3).toInt(&octal, 8) : 0;
    bytes += octal ? static_cast<char>(code) : field[i];
    if (octal) i += 3;
  }
  return bytes;
}

// "36 35 98:0 /root /mount/point options optional... - type source options"
std::optional<Mount> mountIn(const QByteArray& line) {
  const QList<QByteArray> fields = line.split(' ');
  const qsizetype separator = fields.indexOf("-");
  if (separator < 6 || fields.size() < separator + 3) return std::nullopt;
  return Mount{unescaped(fields[4]), fields[separator + 1], unescaped(fields[separator + 2])};
}

bool holds(const QByteArray& point, const QByteArray& folder) {
  return point == "/" || folder == point || folder.startsWith(point + '/');
}

// The desktop's own network mounts all lie below one mount, each in a folder whose name tells the share:
// "smb-share:server=nas,share=photos,user=bob".
QString desktopShare(const QByteArray& belowMountPoint) {
  const QString entry = QFile::decodeName(belowMountPoint).section(QLatin1Char('/'), 1, 1);
  const QString prefix = QStringLiteral("smb-share:");
  if (!entry.startsWith(prefix)) return {};
  QString user;
  QString server;
  QString share;
  for (const QString& setting : entry.mid(prefix.size()).split(QLatin1Char(','))) {
    const QString value = QUrl::fromPercentEncoding(setting.section(QLatin1Char('='), 1).toUtf8());
    if (setting.startsWith(QLatin1String("user="))) user = value + QLatin1Char('@');
    if (setting.startsWith(QLatin1String("server="))) server = value;
    if (setting.startsWith(QLatin1String("share="))) share = value;
  }
  return QStringLiteral("//") + user + server + QLatin1Char('/') + share;
}

// Only one kind of network file system names its source "//server/share" by itself.
QString networkSource(const Mount& mount, const QByteArray& folder) {
  const QString source = QFile::decodeName(mount.source);
  if (mount.fileSystem == "fuse.gvfsd-fuse") return desktopShare(folder.mid(mount.point.size()));
  if (mount.fileSystem != "nfs" && mount.fileSystem != "nfs4") return source;
  const qsizetype colon = source.indexOf(QLatin1String(":/"));
  return colon < 0 ? source : QStringLiteral("//") + source.left(colon) + source.mid(colon + 1);
}

}  // namespace

std::optional<MountedVolume> volumeInMountTable(const QByteArray& table, const QString& folder) {
  const QByteArray wanted = QFile::encodeName(folder);
  std::optional<Mount> best;
  for (const QByteArray& line : table.split('\n')) {
    const std::optional<Mount> mount = mountIn(line);
    // Of two mounts in one place the later covers the earlier.
    if (mount && holds(mount->point, wanted) && (!best || mount->point.size() >= best->point.size())) {
      best = mount;
    }
  }
  if (!best) return std::nullopt;
  return MountedVolume{networkSource(*best, wanted), QString::fromLatin1(best->fileSystem)};
}

}  // namespace ambrel
