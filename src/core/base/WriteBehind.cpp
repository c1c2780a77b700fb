// SPDX-License-Identifier: Apache-2.0
#include "core/base/WriteBehind.h"

namespace ambrel {

WriteBehind::WriteBehind(std::function<void()> work) : _work(std::move(work)), _thread([this] { run(); }) {}

WriteBehind::~WriteBehind() {
  {
    const std::lock_guard lock(_mutex);
    _ending = true;
  }
  _changed.notify_all();
  _thread.join();
}

void WriteBehind::request() {
  {
    const std::lock_guard lock(_mutex);
    _requested = true;
  }
  _changed.notify_all();
}

void WriteBehind::finish() {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [this] { return isAtRest(); });
}

bool WriteBehind::finishWithin(std::chrono::milliseconds longest) {
  std::unique_lock lock(_mutex);
  return _changed.wait_for(lock, longest, [this] { return isAtRest(); });
}

void WriteBehind::run() {
  std::unique_lock lock(_mutex);
  for (;;) {
    _changed.wait(lock, [this] { return _requested || _ending; });
    if (!_requested) return;
    _requested = false;
    _running = true;
    lock.unlock();
    _work();
    lock.lock();
    _running = false;
    _changed.notify_all();
  }
}

}  // namespace ambrel
