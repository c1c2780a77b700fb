// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <vector>

namespace ambrel {

// Real processes whose executables bear the names that a test gives them. They end with their owner.
class NamedWorkers {
 public:
  ~NamedWorkers();

  // Copies the noisy worker to a new folder under this file name and runs it until it is told to end. Null,
  // and a failed test, when it does not run.
  QProcess* run(const QString& fileName);
  // The same program as `fileName` says, run under another process name.
  QProcess* runCalled(const QString& argumentZero, const QString& fileName);
  QString pathOf(const QProcess& process) const { return process.program(); }

 private:
  QString copyProgram(const QString& fileName);
  QProcess* startAndHear(std::unique_ptr<QProcess> process);

  QTemporaryDir _folder;
  std::vector<std::unique_ptr<QProcess>> _processes;
};

}  // namespace ambrel
