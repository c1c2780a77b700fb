// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace ambrel::simulator {

// A small reproducible sequence (SplitMix64). The standard library's distributions may differ from one
// implementation to the next; the photos of a seed must not.
class Random {
 public:
  explicit Random(std::uint64_t seed) : _state(seed) {}

  std::uint64_t next() {
    _state += 0x9E3779B97F4A7C15U;
    std::uint64_t value = _state;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
  }

 private:
  std::uint64_t _state;
};

}  // namespace ambrel::simulator
