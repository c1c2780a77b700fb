// SPDX-License-Identifier: Apache-2.0
#include "simulator/Link.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ambrel::simulator {

void Link::setRate(std::uint64_t bytesPerSecond) {
  _rate = bytesPerSecond;
  _free = {};
}

void Link::cutAfter(std::uint64_t bytes, Cut how) {
  _bytesToCut = bytes;
  _cut = how;
}

std::optional<Cut> Link::takeDueCut() {
  if (!_cut || _bytesToCut > 0) return std::nullopt;
  return std::exchange(_cut, std::nullopt);
}

std::size_t Link::allowance(Clock::time_point now) {
  std::uint64_t bytes = std::numeric_limits<std::size_t>::max();
  if (_rate > 0) {
    if (now < _free) return 0;
    bytes = std::max<std::uint64_t>(1, _rate * static_cast<std::uint64_t>(kStep.count()) / 1000);
  }
  if (_cut) bytes = std::min(bytes, _bytesToCut);
  return bytes;
}

void Link::noteSent(std::size_t bytes, Clock::time_point now) {
  if (_cut) _bytesToCut -= std::min<std::uint64_t>(bytes, _bytesToCut);
  if (_rate == 0) return;
  const std::chrono::duration<double> taken(static_cast<double>(bytes) / static_cast<double>(_rate));
  // A link that wakes up late makes up for it, within one step.
  _free = std::max(_free, now - kStep) + std::chrono::duration_cast<Clock::duration>(taken);
}

Link::Clock::duration Link::wait(Clock::time_point now) const {
  return _rate == 0 ? Clock::duration::zero() : std::max(Clock::duration::zero(), _free - now);
}

}  // namespace ambrel::simulator
