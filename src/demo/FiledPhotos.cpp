// SPDX-License-Identifier: Apache-2.0
#include "demo/FiledPhotos.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <algorithm>

namespace ambrel {
namespace {

QString hashOf(const QString& path) {
  QFile file(path);
  QCryptographicHash hash(QCryptographicHash::Sha256);
  if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) return {};
  return QString::fromLatin1(hash.result().toHex());
}

void addTree(const QString& folder, const QString& indent, QStringList& lines) {
  const QFileInfoList entries =
      QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
  for (const QFileInfo& entry : entries) {
    const bool isFolder = entry.isDir();
    lines.append(indent + entry.fileName() +
                 (isFolder ? QStringLiteral("/") : QStringLiteral("  (%1 bytes)").arg(entry.size())));
    if (isFolder) addTree(entry.filePath(), indent + QStringLiteral("  "), lines);
  }
}

}  // namespace

QStringList fileHashesBelow(const QString& folder) {
  QStringList hashes;
  QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
  while (files.hasNext())
    hashes.append(hashOf(files.next()));
  return hashes;
}

qsizetype filedExactlyOnce(const QStringList& takenHashes, const QStringList& filedHashes) {
  return std::count_if(takenHashes.begin(), takenHashes.end(), [&](const QString& taken) {
    return !taken.isEmpty() && filedHashes.count(taken) == 1;
  });
}

QStringList fileTree(const QString& folder) {
  QStringList lines{QFileInfo(folder).fileName() + QLatin1Char('/')};
  addTree(folder, QStringLiteral("  "), lines);
  return lines;
}

}  // namespace ambrel
