// SPDX-License-Identifier: Apache-2.0
#include "camera/Watchdog.h"

#include <utility>

namespace ambrel::camera {

using Clock = std::chrono::steady_clock;

void WatchdogState::arm(std::string what, std::chrono::milliseconds limit, Time now) {
  _armed = true;
  _what = std::move(what);
  _limit = limit;
  _since = now;
}

std::string WatchdogState::overdue(Time now) {
  if (!_endingSeen && endingAsked()) {
    _endingSeen = true;
    _endingSince = now;
  }
  if (_endingSeen && now - _endingSince > kEndPatience) return "the worker was asked to end and could not";
  if (!_armed || now - _since <= _limit) return {};
  return "no answer from the camera while " + _what;
}

bool WatchdogState::endingAsked() {
  return !_endings.empty() && poll(_endings.data(), _endings.size(), 0) > 0;
}

Watchdog::Watchdog(std::vector<pollfd> endings, Expired expired)
    : _expired(std::move(expired)), _state(std::move(endings)), _thread([this] { watch(); }) {}

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock(_mutex);
    _stopped = true;
  }
  _wake.notify_one();
  _thread.join();
}

Watchdog::Deadline::Deadline(Watchdog& watchdog, std::string what, std::chrono::milliseconds limit)
    : _watchdog(watchdog) {
  const std::lock_guard lock(_watchdog._mutex);
  _watchdog._state.arm(std::move(what), limit, Clock::now());
}

Watchdog::Deadline::~Deadline() {
  const std::lock_guard lock(_watchdog._mutex);
  _watchdog._state.disarm();
}

void Watchdog::feed() {
  const std::lock_guard lock(_mutex);
  _state.feed(Clock::now());
}

void Watchdog::watch() {
  std::unique_lock lock(_mutex);
  while (!_wake.wait_for(lock, kTick, [this] { return _stopped; })) {
    const std::string reason = _state.overdue(Clock::now());
    if (reason.empty()) continue;
    lock.unlock();
    _expired(reason);
    lock.lock();
  }
}

}  // namespace ambrel::camera
