// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace ambrel::bench {

// Milliseconds that one call takes.
template <typename Work>
double millisecondsOf(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The same in processor time of this thread: what other programs take does not count, nor does waiting.
template <typename Work>
double processorMillisecondsOf(Work&& work) {
  const auto now = [] {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  const double start = now();
  work();
  return now() - start;
}

inline double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

inline double percentile(std::vector<double> values, int percent) {
  const std::size_t place = (values.size() - 1) * static_cast<std::size_t>(percent) / 100;
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(place), values.end());
  return values[place];
}

// Ends the benchmark: a time says nothing about work that was not done.
inline void require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "benchmark is void: %s\n", what);
  std::exit(2);
}

// Prints each measurement beside its peer, and remembers whether all goals were met.
class Goals {
 public:
  // `ours` is to be at most `most` times `peer`.
  void atMostTimes(const std::string& what, double ours, const std::string& peerName, double peer,
                   double most, const char* unit = "ms") {
    const double ratio = ours / peer;
    std::printf("%-44s ours %10.2f %s   %s %10.2f %s   ratio %5.2f   goal <= %.2f%s\n", what.c_str(), ours,
                unit, peerName.c_str(), peer, unit, ratio, most, verdict(ratio <= most));
  }
  // `ours` is to take at most the `least`-th part of the peer's time.
  void atLeastTimesFaster(const std::string& what, double ours, const std::string& peerName, double peer,
                          double least) {
    const double ratio = peer / ours;
    std::printf("%-44s ours %10.2f ms   %s %10.2f ms   %.1f times faster   goal >= %.0f%s\n", what.c_str(),
                ours, peerName.c_str(), peer, ratio, least, verdict(ratio >= least));
  }
  // `ours` is to be at most `most`.
  void atMost(const std::string& what, double ours, double most, const char* unit = "ms") {
    std::printf("%-44s ours %10.2f %s   goal <= %.2f %s%s\n", what.c_str(), ours, unit, most, unit,
                verdict(ours <= most));
  }
  // A peer that no goal is set against.
  void mention(const std::string& what, double value, const char* unit = "ms") {
    std::printf("%-44s      %10.2f %s\n", what.c_str(), value, unit);
  }
  int exitCode() const { return _missed ? 1 : 0; }

 private:
  const char* verdict(bool met) {
    _missed |= !met;
    return met ? "" : "   MISSED";
  }
  bool _missed = false;
};

}  // namespace ambrel::bench
