// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace ambrel::camera {

// Watching and hearing of no photo for this long, the card is asked whether it has less room than before.
constexpr std::chrono::seconds kQuietBeforeLook{2};
// The announcement of a file may come after the end of its exposure.
constexpr std::chrono::milliseconds kAnnouncementDelay{500};

// Decides when to look at a card for photos that nothing announced. Such a look takes as long as opening the
// camera, so it is made only where something speaks for it: an exposure of which no file was announced, or a
// card that has less room than before.
class CardLookout {
 public:
  using Time = std::chrono::steady_clock::time_point;
  enum class Step { Nothing, AskRoom, Look, StartAfresh };

  // All that is on the card is known now; `room` is what it has free, in KiB, and nothing without a card to
  // look at.
  void begin(std::optional<std::uint64_t> room, Time now);
  void announced(Time now);
  void exposureOver(Time now);
  // What to do now: Nothing, AskRoom or Look. Each is said once.
  Step due(Time now);
  // The answer to AskRoom: Nothing, or StartAfresh after photos went from the card.
  Step roomIs(std::uint64_t room, Time now);

 private:
  Time _quietSince;                    // when a photo last came, or the card was last asked
  bool _announced = false;             // a file, since the last exposure that was over
  std::optional<Time> _lookAt;         // when to look for what was not announced
  std::optional<std::uint64_t> _room;  // while all that is on the card is known
};

}  // namespace ambrel::camera
