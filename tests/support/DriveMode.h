// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcessEnvironment>
#include <QString>

namespace ambrel {

// Tells processes that have FaultyDrive.cpp preloaded how their drive is to behave.
class DriveMode {
 public:
  // The file that says so; its folder exists.
  explicit DriveMode(QString file);

  // `word` as FaultyDrive.cpp lists them; of `folder` alone where one is given. False if it cannot be said.
  [[nodiscard]] bool set(const QByteArray& word, const QString& folder = {}) const;
  // What a process is started with for whom `drive` is that drive.
  QProcessEnvironment environmentFor(const QString& drive) const;

 private:
  const QString _file;
};

}  // namespace ambrel
