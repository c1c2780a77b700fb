// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace ambrel {

// Where the processes that are killed have their data, their photos and the copies.
struct Folders {
  explicit Folders(const QString& path) : home(path), target(path + "/Shots"), copies(path + "/Copies") {}
  QString home;
  QString target;
  QString copies;
};

// Nothing for a file that cannot be read.
inline QByteArray bytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace ambrel
