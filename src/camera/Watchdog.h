// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

namespace ambrel::camera {

// Guards a thread that may be caught in a call for ever. It looks from a thread of its own, several times a
// second, and calls `expired` there when a deadline has passed: the only cure is then to end the process.
class Watchdog {
 public:
  using Expired = std::function<void(const std::string& reason)>;

  // Once one of `endings` shows its events or is hung up, the process has kEndPatience left.
  Watchdog(std::vector<pollfd> endings, Expired expired);
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  static constexpr std::chrono::seconds kEndPatience{6};
  static constexpr std::chrono::milliseconds kTick{200};

  // Holds for as long as it lives. One at a time.
  class Deadline {
   public:
    Deadline(Watchdog& watchdog, std::string what, std::chrono::milliseconds limit);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

   private:
    Watchdog& _watchdog;
  };
  // A sign of life: the running deadline begins anew.
  void feed();

 private:
  using Time = std::chrono::steady_clock::time_point;
  void watch();
  bool endingAsked();
  std::string overdue(Time now);

  std::vector<pollfd> _endings;
  Expired _expired;
  bool _endingSeen = false;
  Time _endingSince;
  std::mutex _mutex;  // guards what follows
  std::condition_variable _wake;
  bool _stopped = false;
  bool _armed = false;
  std::string _what;
  std::chrono::milliseconds _limit{0};
  Time _since;
  std::thread _thread;
};

}  // namespace ambrel::camera
