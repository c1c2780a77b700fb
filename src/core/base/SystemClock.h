// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <map>
#include <memory>

#include "core/base/Clock.h"

class QTimer;

namespace ambrel {

// The Clock of the running application, on QTimer and the event loop.
class SystemClock : public Clock {
 public:
  SystemClock();
  ~SystemClock() override;

  std::chrono::milliseconds now() const override;
  QDateTime wallTime() const override;
  TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                    std::function<void()> action) override;
  TimerId callEvery(std::chrono::milliseconds period, const QObject* context,
                    std::function<void()> action) override;
  void cancel(TimerId timer) override;

 private:
  TimerId start(std::chrono::milliseconds delay, bool repeating, const QObject* context,
                std::function<void()> action);

  QElapsedTimer _sinceStart;
  std::map<TimerId, std::unique_ptr<QTimer>> _timers;
  TimerId _lastId = kNoTimer;
};

}  // namespace ambrel
