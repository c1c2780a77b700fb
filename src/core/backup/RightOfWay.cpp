// SPDX-License-Identifier: Apache-2.0
#include "core/backup/RightOfWay.h"

#include <utility>

namespace ambrel {

RightOfWay::RightOfWay(Clock& clock) : _clock(clock) {}

void RightOfWay::photoComes() {
  if (!_gate->isOpen() || _openTimer != Clock::kNoTimer) return;
  _gate->shut();
  _shutTimer = _clock.callAfter(kLongest, this, [this] { letCopiesGo(); });
}

void RightOfWay::photosAreIn() {
  _clock.cancel(std::exchange(_shutTimer, Clock::kNoTimer));
  _gate->open();
}

void RightOfWay::letCopiesGo() {
  photosAreIn();
  _openTimer = _clock.callAfter(kLongest, this, [this] { _openTimer = Clock::kNoTimer; });
}

}  // namespace ambrel
