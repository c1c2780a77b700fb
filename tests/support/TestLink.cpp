// SPDX-License-Identifier: Apache-2.0
#include "support/TestLink.h"

namespace ambrel {

Result<void> TestLink::start(const WorkerLaunch& launch) {
  if (!failLaunchWith.isNull()) return Failure{failLaunchWith};
  launches.push_back(launch);
  _running = true;
  ++_processId;
  return {};
}

bool TestLink::sendLine(const QByteArray& line) {
  if (!_running || pipeBroken) return false;
  sent.push_back(line);
  return true;
}

void TestLink::exit() {
  _running = false;
  Q_EMIT exited(true);
}

void TestLink::failLaunchLate(const QString& reason) {
  _running = false;
  Q_EMIT launchFailed(reason);
}

}  // namespace ambrel
