// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "core/worker/WorkerLink.h"

namespace ambrel {

class RunningWorker;

// The link to a real worker process. Lines longer than the protocol allows are discarded to their end, and
// reading never keeps the event loop for long, however much the worker writes.
class ProcessLink : public WorkerLink {
  Q_OBJECT
 public:
  // How long the workers that still run get to end by themselves when the link goes, before they are killed;
  // and how long a killed one is waited for. One that hangs in the kernel is left to the system.
  static constexpr std::chrono::milliseconds kEndGrace{150};
  static constexpr std::chrono::milliseconds kKillGrace{50};

  ProcessLink();
  ~ProcessLink() override;

  Result<void> start(const WorkerLaunch& launch) override;
  bool isRunning() const override;
  qint64 processId() const override;
  bool sendLine(const QByteArray& line) override;
  void terminate() override;
  void drop() override;
  void kill(qint64 processId) override;

 private:
  void forget(RunningWorker* worker);

  std::vector<std::unique_ptr<RunningWorker>> _workers;  // the current one, and those whose end is awaited
  RunningWorker* _current = nullptr;
};

}  // namespace ambrel
