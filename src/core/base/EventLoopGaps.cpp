// SPDX-License-Identifier: Apache-2.0
#include "core/base/EventLoopGaps.h"

#include <algorithm>

namespace ambrel {
namespace {

// A program that is late all the time needs no longer list.
constexpr std::size_t kMostLateFrames = 10'000;

}  // namespace

EventLoopGaps::EventLoopGaps() {
  _timer.setTimerType(Qt::PreciseTimer);
  QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { beat(); });
  restart();
  _timer.start(1);
}

void EventLoopGaps::restart() {
  _clock.start();
  _lastMs = 0;
  _longestMs = 0;
  _beats = 0;
  _lateFrames.clear();
}

void EventLoopGaps::beat() {
  const double now = static_cast<double>(_clock.nsecsElapsed()) / 1e6;
  const double gap = now - _lastMs;
  if (gap > kFrameMs && _lateFrames.size() < kMostLateFrames) _lateFrames.push_back({_lastMs, gap});
  _longestMs = std::max(_longestMs, gap);
  _lastMs = now;
  ++_beats;
}

QString EventLoopGaps::report() const {
  QString text = QStringLiteral("beats %1, longest gap %2 ms, later than %3 ms: %4\n")
                     .arg(_beats)
                     .arg(_longestMs, 0, 'f', 1)
                     .arg(kFrameMs, 0, 'f', 0)
                     .arg(_lateFrames.size());
  for (const Gap& gap : _lateFrames)
    text += QStringLiteral("at %1 ms: %2 ms\n").arg(gap.startedMs, 0, 'f', 1).arg(gap.lengthMs, 0, 'f', 1);
  return text;
}

}  // namespace ambrel
