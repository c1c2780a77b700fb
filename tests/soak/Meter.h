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

  explicit Meter(std::chrono::milliseconds expectedLength);

  // To be called often. No worker: 0.
  void tick(pid_t worker);
  // Of the application at this moment.
  static int descriptors(pid_t process = 0);

  struct Memory {
    double firstMB = 0;  // after the warm-up: a quarter of the points is left out
    double lastMB = 0;
    double mostMB = 0;
    Trend perHour;
  };
  Memory application() const;
  // Of the worker that lived longest.
  Memory longestWorker() const;
  double mostOfAnyWorkerMB() const { return _mostOfAnyWorker; }
  std::chrono::seconds longestWorkerLived() const;

 private:
  struct Series {
    pid_t process = 0;
    std::vector<Point> points;  // hours, megabytes
  };
  static Memory memoryOf(const Series& series);
  static std::optional<double> megabytes(pid_t process);

  QElapsedTimer _clock;
  qint64 _nextSample = 0;
  Series _application;
  Series _worker;         // the present one
  Series _longestWorker;  // of those before
  double _mostOfAnyWorker = 0;
};

}  // namespace ambrel::soak
