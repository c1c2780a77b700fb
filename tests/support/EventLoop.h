// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <chrono>
#include <functional>

namespace ambrel {

// Runs the event loop until `condition` holds; whether it came to hold within `limit`.
bool runEventsUntil(const std::function<bool()>& condition,
                    std::chrono::milliseconds limit = std::chrono::seconds(20));

// Beats once in a millisecond and remembers the longest time that the event loop was away, less the time in
// which other programs had the core: what else the machine does must not decide.
class Heartbeat : public QObject {
 public:
  Heartbeat();
  std::chrono::milliseconds longestGap() const { return _longestGap; }

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  std::chrono::steady_clock::time_point _lastBeat = std::chrono::steady_clock::now();
  std::chrono::nanoseconds _waitedAtLastBeat;
  std::chrono::milliseconds _longestGap{0};
};

}  // namespace ambrel
