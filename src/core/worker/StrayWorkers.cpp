// SPDX-License-Identifier: Apache-2.0
#include "core/worker/StrayWorkers.h"

#include <csignal>
#include <sys/types.h>

#include "core/platform/WorkerProcesses.h"
#include "core/worker/WorkerFiles.h"

namespace ambrel {

StrayWorkerMeans StrayWorkerMeans::ofTheSystem() {
  return {[] { return processesRunning(WorkerFiles::workerName()); },
          [](qint64 processId) { ::kill(static_cast<pid_t>(processId), SIGKILL); }};
}

void killStrayWorkers(qint64 ownWorkerPid, const StrayWorkerMeans& means) {
  for (const qint64 processId : means.workerProcesses()) {
    // An id of 0 or less would name a whole group of processes.
    if (processId >= 1 && processId != ownWorkerPid) means.kill(processId);
  }
}

}  // namespace ambrel
