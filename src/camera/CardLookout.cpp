// SPDX-License-Identifier: Apache-2.0
#include "camera/CardLookout.h"

#include <utility>

namespace ambrel::camera {

void CardLookout::begin(std::optional<std::uint64_t> room, Time now) {
  _lookAt.reset();
  _room = room;
  _quietSince = now;
}

void CardLookout::announced(Time now) {
  _announced = true;
  begin(std::nullopt, now);
}

void CardLookout::exposureOver(Time now) {
  if (!std::exchange(_announced, false)) _lookAt = now + kAnnouncementDelay;
}

CardLookout::Step CardLookout::due(Time now) {
  if (_lookAt) {
    if (now < *_lookAt) return Step::Nothing;
    begin(std::nullopt, _quietSince);
    return Step::Look;
  }
  if (now - _quietSince < kQuietBeforeLook) return Step::Nothing;
  _quietSince = now;
  return Step::AskRoom;
}

CardLookout::Step CardLookout::roomIs(std::uint64_t room, Time now) {
  const std::optional<std::uint64_t> before = std::exchange(_room, room);
  if (!before || *before == room) return Step::Nothing;
  // More than before: photos were deleted, or it is another card.
  if (room > *before) return Step::StartAfresh;
  // The announcement may be on the way.
  _lookAt = now + kAnnouncementDelay;
  return Step::Nothing;
}

}  // namespace ambrel::camera
