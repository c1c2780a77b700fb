// SPDX-License-Identifier: Apache-2.0
#include "core/base/SystemClock.h"

#include <QPointer>
#include <QTimer>

namespace ambrel {

SystemClock::SystemClock() {
  _sinceStart.start();
}

SystemClock::~SystemClock() = default;

std::chrono::milliseconds SystemClock::now() const {
  return std::chrono::milliseconds(_sinceStart.elapsed());
}

QDateTime SystemClock::wallTime() const {
  return QDateTime::currentDateTime();
}

Clock::TimerId SystemClock::callAfter(std::chrono::milliseconds delay, const QObject* context,
                                      std::function<void()> action) {
  return start(delay, false, context, std::move(action));
}

Clock::TimerId SystemClock::callEvery(std::chrono::milliseconds period, const QObject* context,
                                      std::function<void()> action) {
  return start(period, true, context, std::move(action));
}

void SystemClock::cancel(TimerId timer) {
  const auto found = _timers.find(timer);
  if (found == _timers.end()) return;
  // A timer may be cancelled from its own action: it must outlive the signal that is being delivered.
  QTimer* stopped = found->second.release();
  _timers.erase(found);
  stopped->stop();
  stopped->deleteLater();
}

Clock::TimerId SystemClock::start(std::chrono::milliseconds delay, bool repeating, const QObject* context,
                                  std::function<void()> action) {
  const TimerId id = ++_lastId;
  auto timer = std::make_unique<QTimer>();
  timer->setSingleShot(!repeating);
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer.get(), &QTimer::timeout, timer.get(),
                   [this, id, repeating, alive = QPointer<const QObject>(context), act = std::move(action)] {
                     const std::function<void()> run = act;
                     const bool contextAlive = !alive.isNull();
                     if (!repeating || !contextAlive) cancel(id);
                     if (contextAlive) run();
                   });
  timer->start(delay);
  _timers.emplace(id, std::move(timer));
  return id;
}

}  // namespace ambrel
