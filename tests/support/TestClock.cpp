// SPDX-License-Identifier: Apache-2.0
#include "support/TestClock.h"

#include <QCoreApplication>
#include <algorithm>

namespace ambrel {

Clock::TimerId TestClock::callAfter(std::chrono::milliseconds delay, const QObject* context,
                                    std::function<void()> action) {
  return add(delay, std::chrono::milliseconds(0), context, std::move(action));
}

Clock::TimerId TestClock::callEvery(std::chrono::milliseconds period, const QObject* context,
                                    std::function<void()> action) {
  return add(period, period, context, std::move(action));
}

void TestClock::cancel(TimerId timer) {
  _timers.erase(timer);
}

void TestClock::advance(std::chrono::milliseconds span) {
  const std::chrono::milliseconds end = _now + span;
  for (;;) {
    const auto next = std::min_element(_timers.begin(), _timers.end(), [](const auto& a, const auto& b) {
      return a.second.due < b.second.due;
    });
    if (next == _timers.end() || next->second.due > end) break;
    _now = std::max(_now, next->second.due);
    const Timer fired = next->second;
    if (fired.period.count() > 0 && fired.context) {
      next->second.due += fired.period;
    } else {
      _timers.erase(next);
    }
    if (fired.context) fired.action();
    QCoreApplication::processEvents();
  }
  _now = end;
}

Clock::TimerId TestClock::add(std::chrono::milliseconds delay, std::chrono::milliseconds period,
                              const QObject* context, std::function<void()> action) {
  const TimerId id = ++_lastId;
  _timers.emplace(id, Timer{_now + delay, period, context, std::move(action)});
  return id;
}

}  // namespace ambrel
