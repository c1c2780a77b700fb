// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>

#include "support/Goals.h"
#include "support/ScratchFolder.h"

namespace ambrel::bench {

// What main() of a benchmark does: has everything measured, in a folder of its own on the disk, and returns 1
// where a goal was missed.
template <typename Application = QCoreApplication>
int runBenchmark(int argc, char** argv, void (*measure)(Goals& goals, const QString& folder)) {
  const ScratchFolder folder;
  const Application application(argc, argv);
  Goals goals;
  measure(goals, folder.path());
  return goals.exitCode();
}

}  // namespace ambrel::bench
