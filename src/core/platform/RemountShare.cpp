// SPDX-License-Identifier: Apache-2.0
#include "core/platform/RemountShare.h"

#include <QDir>
#include <QStringList>

namespace ambrel {
namespace {

// Blanks stand as a backslash and three octal digits.
QString unescaped(QString field) {
  return field.replace(QLatin1String("\\040"), QLatin1String(" "))
      .replace(QLatin1String("\\011"), QLatin1String("\t"))
      .replace(QLatin1String("\\134"), QLatin1String("\\"));
}

bool mayMount(const QString& options, bool isRoot) {
  const QStringList words = options.split(QLatin1Char(','));
  return isRoot || words.contains(QLatin1String("user")) || words.contains(QLatin1String("users"));
}

}  // namespace

QString mountPointInTable(const QByteArray& table, const QString& folder, bool isRoot) {
  const QString wanted = QDir::cleanPath(folder);
  QString best;
  for (const QString& line : QString::fromUtf8(table).split(QLatin1Char('\n'))) {
    const QStringList fields = line.simplified().split(QLatin1Char(' '));
    if (fields.size() < 4 || fields[0].startsWith(QLatin1Char('#'))) continue;
    const QString point = QDir::cleanPath(unescaped(fields[1]));
    // The root is always there, and no network share.
    const bool holds = wanted == point || (point.size() > 1 && wanted.startsWith(point + QLatin1Char('/')));
    if (holds && point.size() > best.size() && mayMount(fields[3], isRoot)) best = point;
  }
  return best;
}

}  // namespace ambrel
