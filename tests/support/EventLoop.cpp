// SPDX-License-Identifier: Apache-2.0
#include "support/EventLoop.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>

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

Heartbeat::Heartbeat() {
  startTimer(std::chrono::milliseconds(1), Qt::PreciseTimer);
}

void Heartbeat::timerEvent(QTimerEvent*) {
  const auto now = std::chrono::steady_clock::now();
  _longestGap = std::max(_longestGap, std::chrono::duration_cast<std::chrono::milliseconds>(now - _lastBeat));
  _lastBeat = now;
}

}  // namespace ambrel
