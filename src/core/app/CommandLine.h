// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include "core/base/Result.h"

namespace ambrel {

// What the program was asked for.
struct CommandLine {
  enum class Task { Run, Demo, Help, Version };
  Task task = Task::Run;
  bool automatic = false;   // demo: a picture every few seconds
  bool unattended = false;  // demo: takes its pictures, judges what was filed and ends
  bool operator==(const CommandLine&) const = default;
};

// `arguments` without the program's name. Fails with a sentence that names what it does not know.
Result<CommandLine> parseCommandLine(const QStringList& arguments);

QString commandLineHelp();

}  // namespace ambrel
