// SPDX-License-Identifier: Apache-2.0
#include "core/backup/RightOfWay.h"

#include <algorithm>
#include <utility>

namespace ambrel {

RightOfWay::RightOfWay(Clock& clock) : _clock(clock) {}

void RightOfWay::photoAnnounced() {
  ++_onTheirWay;
  shut();
}

// More may come than were announced: an exposure can have two files.
void RightOfWay::photoArrived() {
  _onTheirWay = std::max(0, _onTheirWay - 1);
  shut();
}

void RightOfWay::photosAreFiled() {
  if (_onTheirWay == 0) open();
}

void RightOfWay::shut() {
  if (!_gate->isOpen() || _openTimer != Clock::kNoTimer) return;
  _gate->shut();
  _shutTimer = _clock.callAfter(kLongest, this, [this] { letCopiesGo(); });
}

void RightOfWay::open() {
  _clock.cancel(std::exchange(_shutTimer, Clock::kNoTimer));
  _gate->open();
}

// What was announced and has not come by now may never come.
void RightOfWay::letCopiesGo() {
  _onTheirWay = 0;
  open();
  _openTimer = _clock.callAfter(kLongest, this, [this] { _openTimer = Clock::kNoTimer; });
}

}  // namespace ambrel
