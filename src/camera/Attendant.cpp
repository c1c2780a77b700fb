// SPDX-License-Identifier: Apache-2.0
#include "camera/Attendant.h"

#include <utility>

namespace ambrel::camera {

Attendant::~Attendant() {
  {
    const std::lock_guard lock(_mutex);
    _stopped = true;
  }
  _wake.notify_one();
  _thread.join();
}

void Attendant::actWith(std::function<void()> act) {
  const std::lock_guard lock(_mutex);
  _act = std::move(act);
}

void Attendant::setCalling(bool calling) {
  const std::lock_guard lock(_mutex);
  _calling = calling;
  _since = std::chrono::steady_clock::now();
}

// It looks at set times instead of being woken: nearly every call is over long before the first.
void Attendant::attend() {
  std::unique_lock lock(_mutex);
  while (!_wake.wait_for(lock, kTick, [this] { return _stopped; })) {
    if (_calling && _act && std::chrono::steady_clock::now() - _since >= kTick) _act();
  }
}

}  // namespace ambrel::camera
