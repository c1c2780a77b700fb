// SPDX-License-Identifier: Apache-2.0
#include "core/worker/ProcessLink.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <csignal>

#include "core/worker/RunningWorker.h"

namespace ambrel {
namespace {

std::chrono::milliseconds timeLeft(const QDeadlineTimer& deadline) {
  return std::chrono::milliseconds(deadline.remainingTime());
}

// A worker that not even a kill has ended yet. Destroying it would wait for that; it stays until the
// application ends.
void leaveBehind(std::unique_ptr<RunningWorker> worker) {
  static auto* const left = new std::vector<std::unique_ptr<RunningWorker>>;
  left->push_back(std::move(worker));
}

}  // namespace

ProcessLink::ProcessLink() {
  // Writing to a worker that has just died must fail, not end the application. Qt does the same for its own
  // pipes, and a started program gets the default back.
  std::signal(SIGPIPE, SIG_IGN);
}

ProcessLink::~ProcessLink() {
  for (const auto& worker : _workers) {
    worker->disconnect();
    worker->abandon();
    worker->terminate();
  }
  const QDeadlineTimer grace(kEndGrace);
  for (const auto& worker : _workers)
    if (!worker->waitForEnd(timeLeft(grace))) worker->kill();
  const QDeadlineTimer killGrace(kKillGrace);
  for (auto& worker : _workers) {
    if (!worker->waitForEnd(timeLeft(killGrace))) leaveBehind(std::move(worker));
  }
}

Result<void> ProcessLink::start(const WorkerLaunch& launch) {
  drop();
  auto worker = std::make_unique<RunningWorker>();
  if (Result<void> started = worker->start(launch); !started) return started;
  RunningWorker* const started = worker.get();
  connect(started, &RunningWorker::lineArrived, this, &WorkerLink::blockArrived);
  connect(started, &RunningWorker::ended, this, [this, started] {
    const bool wasCurrent = started == _current;
    forget(started);
    Q_EMIT exited(wasCurrent);
  });
  connect(started, &RunningWorker::launchFailed, this, [this, started](const QString& reason) {
    const bool wasCurrent = started == _current;
    forget(started);
    if (wasCurrent) {
      Q_EMIT launchFailed(reason);
    } else {
      Q_EMIT exited(false);
    }
  });
  _current = started;
  _workers.push_back(std::move(worker));
  return {};
}

bool ProcessLink::isRunning() const {
  return _current && _current->isRunning();
}

qint64 ProcessLink::processId() const {
  return isRunning() ? _current->processId() : 0;
}

bool ProcessLink::sendLine(const QByteArray& line) {
  return isRunning() && _current->writeLine(line);
}

void ProcessLink::terminate() {
  if (isRunning()) _current->terminate();
}

void ProcessLink::drop() {
  if (_current) _current->abandon();
  _current = nullptr;
}

void ProcessLink::kill(qint64 processId) {
  for (const auto& worker : _workers) {
    if (worker->isRunning() && worker->processId() == processId) worker->kill();
  }
}

// From within a signal of the worker, which must outlive it.
void ProcessLink::forget(RunningWorker* worker) {
  const auto found = std::find_if(_workers.begin(), _workers.end(),
                                  [worker](const auto& owned) { return owned.get() == worker; });
  found->release()->deleteLater();
  _workers.erase(found);
  if (_current == worker) _current = nullptr;
}

}  // namespace ambrel
