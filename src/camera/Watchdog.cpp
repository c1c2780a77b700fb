// SPDX-License-Identifier: Apache-2.0
#include "camera/Watchdog.h"

#include <utility>

namespace ambrel::camera {

using Clock = std::chrono::steady_clock;

void WatchdogState::arm(std::string what, Patience patience, Time now) {
  _armed = true;
  _what = std::move(what);
  _patience = patience;
  _begun = now;
  _aliveAt = now;
}

void WatchdogState::received(std::uint64_t bytes, Time now) {
  if (std::exchange(_received, bytes) != bytes) feed(now);
}

std::string WatchdogState::overdue(Time now) {
  if (!_endingSeen && endingAsked()) {
    _endingSeen = true;
    _endingSince = now;
  }
  if (_endingSeen && now - _endingSince > kEndPatience) return "the worker was asked to end and could not";
  const bool over = now - _aliveAt > _patience.silence || now - _begun > _patience.total;
  if (!_armed || !over) return {};
  return "no answer from the camera while " + _what;
}

bool WatchdogState::endingAsked() {
  return !_endings.empty() && poll(_endings.data(), _endings.size(), 0) > 0;
}

Watchdog::Watchdog(std::vector<pollfd> endings, Expired expired, Received received)
    : _expired(std::move(expired)),
      _received(std::move(received)),
      _state(std::move(endings)),
      _thread([this] { watch(); }) {}

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock(_mutex);
    _stopped = true;
  }
  _wake.notify_one();
  _thread.join();
}

Watchdog::Deadline::Deadline(Watchdog& watchdog, std::string what, Patience patience) : _watchdog(watchdog) {
  const std::lock_guard lock(_watchdog._mutex);
  _watchdog._state.arm(std::move(what), patience, Clock::now());
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
    const auto now = Clock::now();
    if (_received && _state.isSilent(now)) _state.received(_received(), now);
    const std::string reason = _state.overdue(now);
    if (reason.empty()) continue;
    lock.unlock();
    _expired(reason);
    lock.lock();
  }
}

}  // namespace ambrel::camera
