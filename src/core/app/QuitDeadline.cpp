// SPDX-License-Identifier: Apache-2.0
#include "core/app/QuitDeadline.h"

namespace ambrel {

QuitDeadline::~QuitDeadline() {
  if (!_watch.joinable()) return;
  {
    const std::lock_guard lock(_mutex);
    _hasEnded = true;
  }
  _changed.notify_all();
  _watch.join();
}

void QuitDeadline::quittingBegins() {
  if (_watch.joinable()) return;
  _watch = std::thread([this] {
    std::unique_lock lock(_mutex);
    if (!_changed.wait_for(lock, _longest, [this] { return _hasEnded; })) _end();
  });
}

}  // namespace ambrel
