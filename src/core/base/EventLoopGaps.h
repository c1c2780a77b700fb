// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <vector>

namespace ambrel {

// How long the main thread's event loop was kept from serving events. Beats once a millisecond, which costs a
// few per cent of a core: for measuring only.
class EventLoopGaps {
 public:
  // A gap as long as this is a frame that came too late.
  static constexpr double kFrameMs = 16;

  struct Gap {
    double startedMs;  // since the recording began
    double lengthMs;
  };

  EventLoopGaps();

  // Forgets what was measured so far.
  void restart();
  double longestGapMs() const { return _longestMs; }
  // Those longer than a frame, in order.
  const std::vector<Gap>& lateFrames() const { return _lateFrames; }
  // One line: "beats", "longest gap" and how many were late; then a line for each late frame.
  QString report() const;

 private:
  void beat();

  QTimer _timer;
  QElapsedTimer _clock;
  double _lastMs = 0;
  double _longestMs = 0;
  qint64 _beats = 0;
  std::vector<Gap> _lateFrames;
};

}  // namespace ambrel
