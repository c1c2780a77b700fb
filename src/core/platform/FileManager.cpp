// SPDX-License-Identifier: Apache-2.0
#include "core/platform/FileManager.h"

#include <QProcess>
#include <utility>

namespace ambrel {

void FileManager::tryInTurn(std::vector<FileManagerCommand> commands) {
  if (commands.empty()) return;
  const FileManagerCommand command = std::move(commands.front());
  commands.erase(commands.begin());
  if (commands.empty()) {
    // Perhaps the file manager itself, which stays when this application ends.
    QProcess::startDetached(command.program, command.arguments);
    return;
  }
  auto* process = new QProcess(this);
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  const auto next = [this, process, commands](bool succeeded) {
    process->deleteLater();
    if (!succeeded) tryInTurn(commands);
  };
  connect(process, &QProcess::finished, this, [next](int code, QProcess::ExitStatus status) {
    next(status == QProcess::NormalExit && code == 0);
  });
  connect(process, &QProcess::errorOccurred, this, [next](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) next(false);
  });
  process->start(command.program, command.arguments);
}

}  // namespace ambrel
