// SPDX-License-Identifier: Apache-2.0
#include "support/DriveMode.h"

#include <QFile>
#include <cstdio>
#include <utility>

namespace ambrel {

DriveMode::DriveMode(QString file) : _file(std::move(file)) {}

// Replaced whole: it is read at any moment.
bool DriveMode::set(const QByteArray& word, const QString& folder) const {
  const QByteArray line = folder.isEmpty() ? word : word + ' ' + QFile::encodeName(folder);
  QFile next(_file + QStringLiteral(".next"));
  if (!next.open(QIODevice::WriteOnly) || next.write(line) != line.size()) return false;
  next.close();
  return std::rename(QFile::encodeName(next.fileName()).constData(), QFile::encodeName(_file).constData()) ==
         0;
}

QProcessEnvironment DriveMode::environmentFor(const QString& drive) const {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(AMBREL_FAULTY_DRIVE_LIBRARY));
  environment.insert(QStringLiteral("AMBREL_FAULTY_DRIVE"), drive);
  environment.insert(QStringLiteral("AMBREL_FAULTY_MODE"), _file);
  // The library stands before the sanitizer's own.
  environment.insert(QStringLiteral("ASAN_OPTIONS"),
                     QStringLiteral("verify_asan_link_order=0:detect_leaks=0"));
  return environment;
}

}  // namespace ambrel
