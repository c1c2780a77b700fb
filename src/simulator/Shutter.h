// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <string>

#include "simulator/CameraModel.h"

namespace ambrel::simulator {

// Takes the exposures that were ordered, one for each call of proceed(), so that a long burst of large photos
// never keeps the camera from answering its host.
class Shutter {
 public:
  using Clock = std::chrono::steady_clock;

  struct Result {
    std::uint32_t first = 0;  // numbers of the shots taken; last < first if there was none
    std::uint32_t last = 0;
    std::size_t files = 0;
    std::string error;  // why it ended early, or empty
  };
  using Done = std::function<void(const Result&)>;

  explicit Shutter(CameraModel& camera) : _camera(camera) {}

  // Orders `count` exposures, one every `interval` from when its turn comes. `done` is called from proceed(),
  // or at once for a count of 0.
  void press(const ShotOrder& order, std::uint64_t count, std::chrono::milliseconds interval, Done done);
  // Takes one exposure if one is due.
  void proceed(Clock::time_point now);
  // Ends what was ordered with `error`.
  void release(const std::string& error);
  bool busy() const { return !_jobs.empty(); }
  // How long poll() may wait for us; negative is for ever.
  int timeoutMs(Clock::time_point now) const;

 private:
  struct Job {
    ShotOrder order;
    std::uint64_t left = 0;
    std::chrono::milliseconds interval{};
    Done done;
    Clock::time_point due{};  // of the next exposure; long ago for the first one
    Result result;
  };
  void finish(const std::string& error);

  CameraModel& _camera;
  std::deque<Job> _jobs;
};

}  // namespace ambrel::simulator
