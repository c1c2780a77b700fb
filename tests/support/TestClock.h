// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <map>

#include "core/base/Clock.h"

namespace ambrel {

// A Clock that stands still until advance() walks through the timers that fall due, in the order of their
// times.
class TestClock : public Clock {
 public:
  std::chrono::milliseconds now() const override { return _now; }
  QDateTime wallTime() const override { return _wallStart.addMSecs(_now.count()); }
  TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                    std::function<void()> action) override;
  TimerId callEvery(std::chrono::milliseconds period, const QObject* context,
                    std::function<void()> action) override;
  void cancel(TimerId timer) override;

  void advance(std::chrono::milliseconds span);
  std::size_t pendingTimers() const { return _timers.size(); }
  void setWallTime(const QDateTime& time) { _wallStart = time.addMSecs(-_now.count()); }

 private:
  struct Timer {
    std::chrono::milliseconds due;
    std::chrono::milliseconds period;  // zero for one shot
    QPointer<const QObject> context;
    std::function<void()> action;
  };
  TimerId add(std::chrono::milliseconds delay, std::chrono::milliseconds period, const QObject* context,
              std::function<void()> action);

  std::chrono::milliseconds _now{0};
  QDateTime _wallStart = QDateTime(QDate(2026, 5, 4), QTime(9, 0), Qt::UTC);
  std::map<TimerId, Timer> _timers;
  TimerId _lastId = kNoTimer;
};

}  // namespace ambrel
