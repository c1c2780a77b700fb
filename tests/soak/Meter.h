// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QStringList>
#include <chrono>
#include <optional>
#include <sys/types.h>
#include <vector>

#include "soak/Trend.h"

namespace ambrel::soak {

// Memory and descriptors of the application and of its workers, taken every kPeriod.
class Meter {
 public:
  static constexpr std::chrono::milliseconds kPeriod{2000};

  // A soak of this length stands for so many hours of the day that it presses together.
  Meter(std::chrono::milliseconds length, double hoursOfTheDay);

  // To be called often. No worker: 0.
  void tick(pid_t worker);
  // The day is over; what comes now is not the application's.
  void stop() { _stopped = true; }
  // How many a process has open at this moment; 0: this one.
  static int descriptors(pid_t process = 0);

  struct Memory {
    double firstMB = 0;  // after the warm-up: a quarter of the points is left out
    double lastMB = 0;
    double mostMB = 0;
    Trend perHour;  // of the day
  };
  Memory application() const;
  // What the application has asked the C library for and not given back. Grows with what is remembered of
  // each photo, and not with how the library manages its memory.
  Memory applicationInUse() const;
  // Its memory through the day, at so many moments.
  std::vector<double> courseMB(std::size_t moments) const;
  std::vector<double> courseInUseMB(std::size_t moments) const;
  // Of the worker that lived longest.
  Memory longestWorker() const;
  double mostOfAnyWorkerMB() const { return _mostOfAnyWorker; }
  std::chrono::seconds longestWorkerLived() const;

 private:
  struct Series {
    pid_t process = 0;
    std::vector<Point> points;  // hours of the day, megabytes
  };
  static Memory memoryOf(const Series& series);
  static std::vector<double> courseOf(const Series& series, std::size_t moments);
  static std::optional<double> megabytes(pid_t process);

  const double _hoursPerMillisecond;
  QElapsedTimer _clock;
  qint64 _nextSample = 0;
  bool _stopped = false;
  Series _application;
  Series _applicationInUse;
  Series _worker;         // the present one
  Series _longestWorker;  // of those before
  double _mostOfAnyWorker = 0;
};

}  // namespace ambrel::soak
