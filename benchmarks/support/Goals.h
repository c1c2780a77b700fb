// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <set>
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

// Processor time that this thread has taken so far, in milliseconds.
inline double processorMillisecondsOfThread() {
  timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// The same as millisecondsOf, in processor time of this thread: what other programs take does not count, nor
// does waiting.
template <typename Work>
double processorMillisecondsOf(Work&& work) {
  const double start = processorMillisecondsOfThread();
  work();
  return processorMillisecondsOfThread() - start;
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

// A measured value: one number, or the median of several with their spread.
struct Sample {
  Sample(double value) : middle(value) {}    // NOLINT(google-explicit-constructor)
  Sample(const std::vector<double>& values)  // NOLINT(google-explicit-constructor)
      : middle(median(values)), spread((percentile(values, 75) - percentile(values, 25)) / 2 / middle) {}

  double middle;
  double spread = 0;  // half of what the middle half of the values covers, as a part of the median
};

// Prints each measurement beside its peer, and remembers whether all goals were met. Where the environment
// variable AMBREL_BENCH_RESULTS names a file, one JSON object for each is added to it.
class Goals {
 public:
  // `ours` is to be at most `most` times `peer`.
  void atMostTimes(const std::string& what, const Sample& ours, const std::string& peerName,
                   const Sample& peer, double most, const char* unit = "ms") {
    const double ratio = ours.middle / peer.middle;
    std::printf("%-44s ours %10.2f %s%s   %s %10.2f %s%s   ratio %5.2f   goal <= %.2f%s\n", what.c_str(),
                ours.middle, unit, spreadOf(ours).c_str(), peerName.c_str(), peer.middle, unit,
                spreadOf(peer).c_str(), ratio, most, verdict(ratio <= most));
    record({.what = what,
            .ours = ours,
            .unit = unit,
            .peerName = peerName,
            .peer = peer,
            .figure = ratio,
            .goal = most,
            .met = ratio <= most});
  }
  // `ours` is to take at most the `least`-th part of the peer's time.
  void atLeastTimesFaster(const std::string& what, const Sample& ours, const std::string& peerName,
                          const Sample& peer, double least) {
    const double ratio = peer.middle / ours.middle;
    std::printf("%-44s ours %10.2f ms%s   %s %10.2f ms%s   %.1f times faster   goal >= %.0f%s\n",
                what.c_str(), ours.middle, spreadOf(ours).c_str(), peerName.c_str(), peer.middle,
                spreadOf(peer).c_str(), ratio, least, verdict(ratio >= least));
    record({.what = what,
            .ours = ours,
            .unit = "ms",
            .peerName = peerName,
            .peer = peer,
            .figure = 1 / ratio,
            .goal = 1 / least,
            .met = ratio >= least});
  }
  // `ours` is to be at most `most`.
  void atMost(const std::string& what, const Sample& ours, double most, const char* unit = "ms") {
    std::printf("%-44s ours %10.2f %s%s   goal <= %.2f %s%s\n", what.c_str(), ours.middle, unit,
                spreadOf(ours).c_str(), most, unit, verdict(ours.middle <= most));
    record({.what = what,
            .ours = ours,
            .unit = unit,
            .figure = ours.middle,
            .goal = most,
            .met = ours.middle <= most});
  }
  // A peer that no goal is set against.
  void mention(const std::string& what, const Sample& value, const char* unit = "ms") {
    std::printf("%-44s      %10.2f %s%s\n", what.c_str(), value.middle, unit, spreadOf(value).c_str());
    record({.what = what, .ours = value, .unit = unit, .figure = value.middle});
  }
  // `ours` beside a limit or peer that no goal is set against.
  void mention(const std::string& what, const Sample& ours, const std::string& peerName, const Sample& peer,
               const char* unit = "ms") {
    const double ratio = ours.middle / peer.middle;
    std::printf("%-44s ours %10.2f %s%s   %s %10.2f %s%s   ratio %5.2f\n", what.c_str(), ours.middle, unit,
                spreadOf(ours).c_str(), peerName.c_str(), peer.middle, unit, spreadOf(peer).c_str(), ratio);
    record({.what = what, .ours = ours, .unit = unit, .peerName = peerName, .peer = peer, .figure = ratio});
  }
  int exitCode() const { return _missed ? 1 : 0; }

 private:
  struct Record {
    const std::string& what;
    const Sample& ours;
    const char* unit;
    std::string peerName = {};
    Sample peer = 0.0;
    double figure;  // what is held against the goal: the smaller, the better
    double goal = 0;
    bool met = true;
  };

  static std::string spreadOf(const Sample& sample) {
    if (sample.spread == 0) return {};
    char text[32];
    std::snprintf(text, sizeof text, " (+-%.0f %%)", sample.spread * 100);
    return text;
  }

  void record(const Record& record) {
    // A later line of the same name would take its place in every table.
    require(_recorded.insert(record.what + '\n' + record.peerName).second, "two lines have one name");
    const char* path = std::getenv("AMBREL_BENCH_RESULTS");
    std::FILE* file = path ? std::fopen(path, "a") : nullptr;
    if (!file) {
      require(!path, "its results cannot be written");
      return;
    }
    // Names are ours, and hold neither quotes nor backslashes.
    std::fprintf(
        file,
        R"({"program": "%s", "what": "%s", "unit": "%s", "ours": %.6g, "spread": %.3g, "peer_name": "%s", )"
        R"("peer": %.6g, "figure": %.6g, "goal": %.6g, "met": %s})"
        "\n",
        program_invocation_short_name, record.what.c_str(), record.unit, record.ours.middle,
        record.ours.spread, record.peerName.c_str(), record.peer.middle, record.figure, record.goal,
        record.met ? "true" : "false");
    std::fclose(file);
  }

  const char* verdict(bool met) {
    _missed |= !met;
    return met ? "" : "   MISSED";
  }
  bool _missed = false;
  std::set<std::string> _recorded;
};

}  // namespace ambrel::bench
