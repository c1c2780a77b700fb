// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

namespace ambrel::camera {

// What a watchdog knows, and when it has seen enough.
class WatchdogState {
 public:
  using Time = std::chrono::steady_clock::time_point;
  static constexpr std::chrono::seconds kEndPatience{6};

  // How long a call may take without a sign of life, and with any number of them.
  struct Patience {
    std::chrono::milliseconds silence;
    std::chrono::milliseconds total;
  };

  // Once one of `endings` shows its events or is hung up, the process has kEndPatience left.
  explicit WatchdogState(std::vector<pollfd> endings) : _endings(std::move(endings)) {}

  void arm(std::string what, Patience patience, Time now);
  void disarm() { _armed = false; }
  // A sign of life.
  void feed(Time now) { _aliveAt = now; }
  // There was none for a while, and it is worth asking for the bytes received; a number that is not the last
  // one is a sign of life.
  bool isSilent(Time now) const { return _armed && now - _aliveAt >= kSilence; }
  void received(std::uint64_t bytes, Time now);
  // Why the process has to end, or an empty text. To be asked regularly.
  std::string overdue(Time now);

 private:
  static constexpr std::chrono::milliseconds kSilence{500};
  bool endingAsked();

  std::vector<pollfd> _endings;
  bool _endingSeen = false;
  Time _endingSince;
  bool _armed = false;
  std::string _what;
  Patience _patience{};
  Time _begun;
  Time _aliveAt;
  std::uint64_t _received = 0;
};

// Guards a thread that may be caught in a call for ever. It looks from a thread of its own, several times a
// second, and calls `expired` there when a deadline has passed: the only cure is then to end the process.
class Watchdog {
 public:
  using Expired = std::function<void(const std::string& reason)>;
  using Patience = WatchdogState::Patience;
  // How many bytes this process has received from the camera.
  using Received = std::function<std::uint64_t()>;
  static constexpr std::chrono::milliseconds kTick{200};

  Watchdog(std::vector<pollfd> endings, Expired expired, Received received = {});
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  // Holds for as long as it lives. One at a time.
  class Deadline {
   public:
    // `what` completes the sentence "no answer from the camera while ...".
    Deadline(Watchdog& watchdog, std::string what, Patience patience);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

   private:
    Watchdog& _watchdog;
  };
  void feed();

 private:
  void watch();

  Expired _expired;
  Received _received;
  std::mutex _mutex;  // guards what follows
  std::condition_variable _wake;
  bool _stopped = false;
  WatchdogState _state;
  std::thread _thread;
};

}  // namespace ambrel::camera
