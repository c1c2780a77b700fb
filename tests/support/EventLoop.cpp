// SPDX-License-Identifier: Apache-2.0
#include "support/EventLoop.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <fstream>

namespace ambrel {

bool runEventsUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  QTimer overtime;
  overtime.setSingleShot(true);
  overtime.start(limit);
  while (!condition()) {
    if (!overtime.isActive()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

namespace {

// How long this thread was ready to run and another had the core, where the system tells.
std::chrono::nanoseconds timeKeptFromRunning() {
  std::ifstream schedule("/proc/thread-self/schedstat");
  long long ran = 0;
  long long waited = 0;
  schedule >> ran >> waited;
  return std::chrono::nanoseconds(waited);
}

}  // namespace

Heartbeat::Heartbeat() : _waitedAtLastBeat(timeKeptFromRunning()) {
  startTimer(std::chrono::milliseconds(1), Qt::PreciseTimer);
}

void Heartbeat::timerEvent(QTimerEvent*) {
  const auto now = std::chrono::steady_clock::now();
  const auto waited = timeKeptFromRunning();
  const auto away = (now - _lastBeat) - (waited - _waitedAtLastBeat);
  _longestGap = std::max(_longestGap, std::chrono::duration_cast<std::chrono::milliseconds>(away));
  _lastBeat = now;
  _waitedAtLastBeat = waited;
}

}  // namespace ambrel
