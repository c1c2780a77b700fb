// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "core/worker/WorkerLink.h"

namespace ambrel {

// A WorkerLink played by the test: it records what the application does and speaks only when told to.
class TestLink : public WorkerLink {
  Q_OBJECT
 public:
  using WorkerLink::WorkerLink;

  Result<void> start(const WorkerLaunch& launch) override;
  bool isRunning() const override { return _running; }
  qint64 processId() const override { return _running ? _processId : 0; }
  bool sendLine(const QByteArray& line) override;
  void terminate() override { ++terminations; }
  void drop() override { _running = false; }
  void kill(qint64 processId) override { kills.push_back(processId); }

  void say(const QByteArray& line) { Q_EMIT blockArrived(line + '\n'); }
  // The current worker ends.
  void exit();
  // A worker that had been dropped or replaced ends.
  void exitDropped() { Q_EMIT exited(false); }
  // The system found out late that the current worker's program cannot run.
  void failLaunchLate(const QString& reason);

  std::vector<WorkerLaunch> launches;
  std::vector<QByteArray> sent;
  int terminations = 0;
  std::vector<qint64> kills;
  QString failLaunchWith;   // not null: start fails with it
  bool pipeBroken = false;  // sendLine fails

 private:
  bool _running = false;
  qint64 _processId = 1000;
};

}  // namespace ambrel
