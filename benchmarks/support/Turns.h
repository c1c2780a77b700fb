// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <vector>

namespace ambrel::bench {

// Does the work of one round, proves it, and gives what it took.
using Turn = std::function<double()>;

// What each took in each round. They take turns, every round begun by another of them and every other one
// going backwards, so that whatever else the machine does, and whatever one leaves behind for the next, meets
// all alike.
inline std::vector<std::vector<double>> inTurns(int rounds, const std::vector<Turn>& turns) {
  const std::size_t count = turns.size();
  std::vector<std::vector<double>> taken(count);
  for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t whose = (round + (round % 2 == 0 ? i : count - i)) % count;
      taken[whose].push_back(turns[whose]());
    }
  }
  return taken;
}

}  // namespace ambrel::bench
