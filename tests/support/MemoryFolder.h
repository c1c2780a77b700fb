// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace ambrel {

// For the QTemporaryDir of a test that makes and removes files by the ten thousand: in memory where the
// system has a place for that, so that the disk of a busy machine does not hold it up.
inline QString memoryFolderTemplate() {
  const QFileInfo shared(QStringLiteral("/dev/shm"));
  const QString place = shared.isDir() && shared.isWritable() ? shared.filePath() : QDir::tempPath();
  return place + QLatin1Char('/') + QCoreApplication::applicationName() + QStringLiteral("-XXXXXX");
}

}  // namespace ambrel
