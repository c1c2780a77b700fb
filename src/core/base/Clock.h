// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QObject>
#include <chrono>
#include <functional>

namespace ambrel {

// The time and every delay of the application, so that a test can walk through hours without waiting.
// Actions run on the thread that asked for them (the main thread), never from within the call that asked, and
// not at all once `context` is destroyed.
class Clock {
 public:
  using TimerId = quint64;
  static constexpr TimerId kNoTimer = 0;

  virtual ~Clock() = default;

  // Time since an arbitrary start; never goes back.
  virtual std::chrono::milliseconds now() const = 0;
  // Calendar time; may jump.
  virtual QDateTime wallTime() const = 0;

  virtual TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                            std::function<void()> action) = 0;
  virtual TimerId callEvery(std::chrono::milliseconds period, const QObject* context,
                            std::function<void()> action) = 0;
  // Does nothing for kNoTimer and for a timer that has already fired.
  virtual void cancel(TimerId timer) = 0;
};

}  // namespace ambrel
