// SPDX-License-Identifier: Apache-2.0
#include "support/NamedWorkers.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include "support/EventLoop.h"

namespace ambrel {

NamedWorkers::~NamedWorkers() {
  for (const auto& process : _processes) {
    process->kill();
    process->waitForFinished();
  }
}

QProcess* NamedWorkers::run(const QString& fileName) {
  auto process = std::make_unique<QProcess>();
  process->setProgram(copyProgram(fileName));
  process->setArguments({"say", "running", "hang"});
  return startAndHear(std::move(process));
}

QProcess* NamedWorkers::runCalled(const QString& argumentZero, const QString& fileName) {
  auto process = std::make_unique<QProcess>();
  process->setProgram("/bin/bash");
  process->setArguments(
      {"-c", "exec -a \"$0\" \"$1\" say running hang", argumentZero, copyProgram(fileName)});
  return startAndHear(std::move(process));
}

QString NamedWorkers::copyProgram(const QString& fileName) {
  const QDir folder(_folder.filePath(QString::number(_processes.size())));
  QString path = folder.filePath(fileName);
  EXPECT_TRUE(folder.mkpath("."));
  EXPECT_TRUE(QFile::copy(QStringLiteral(AMBREL_NOISY_WORKER), path));
  return path;
}

QProcess* NamedWorkers::startAndHear(std::unique_ptr<QProcess> process) {
  _processes.push_back(std::move(process));
  QProcess* const started = _processes.back().get();
  started->start();
  const bool heard = runEventsUntil([started] { return started->canReadLine(); });
  EXPECT_TRUE(heard) << started->errorString().toStdString();
  return heard ? started : nullptr;
}

}  // namespace ambrel
