// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>
#include <functional>
#include <vector>

namespace ambrel {

// What stray workers are found and ended with.
struct StrayWorkerMeans {
  std::function<std::vector<qint64>()> workerProcesses;  // ids of this user's processes that run the worker
  std::function<void(qint64 processId)> kill;            // in a way that cannot be refused

  static StrayWorkerMeans ofTheSystem();
};

// Kills the workers that an earlier run left behind: all but this application's own (0 when it has none).
void killStrayWorkers(qint64 ownWorkerPid, const StrayWorkerMeans& means);

}  // namespace ambrel
