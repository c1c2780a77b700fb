// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>

namespace ambrel {

struct ProgramCall {
  QString program;  // found in the search path unless absolute
  QStringList arguments;
};

struct ProgramEnd {
  int exitCode = 0;
  QByteArray output;  // standard output
};

// Runs a program that has nobody to ask: its input is empty, its language English, and it stands in a session
// of its own, without a terminal. Blocks until it ends. None when it cannot be started, crashes, or outlasts
// `patience`; then it is killed, and so is everything that it has started.
std::optional<ProgramEnd> runProgram(const ProgramCall& call, std::chrono::milliseconds patience);

}  // namespace ambrel
