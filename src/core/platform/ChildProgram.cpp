// SPDX-License-Identifier: Apache-2.0
#include "core/platform/ChildProgram.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <signal.h>
#include <unistd.h>

namespace ambrel {

std::optional<ProgramEnd> runProgram(const ProgramCall& call, std::chrono::milliseconds patience) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  process.setChildProcessModifier([] { ::setsid(); });
  process.start(call.program, call.arguments, QIODevice::ReadOnly);
  const auto group = static_cast<pid_t>(process.processId());
  const bool ended = process.waitForFinished(static_cast<int>(patience.count()));
  if (!ended && group > 0) {
    // The whole session. What is stuck in the kernel ends when the kernel lets it go.
    ::kill(-group, SIGKILL);
    process.waitForFinished(1000);
  }
  if (!ended || process.error() == QProcess::FailedToStart || process.exitStatus() != QProcess::NormalExit) {
    return std::nullopt;
  }
  return ProgramEnd{process.exitCode(), process.readAllStandardOutput()};
}

}  // namespace ambrel
