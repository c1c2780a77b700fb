// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <chrono>
#include <memory>

#include "core/base/Clock.h"
#include "core/base/Gate.h"

namespace ambrel {

// Lets photos that come from the camera go before the copies of those that are there: both want the same
// cores, and often the same disk. While a photo is on its way the gate is shut, and whoever copies begins no
// copy; one that is under way goes on.
//
// Where photo follows photo the copies do not wait for the last of them: the gate stays shut for kLongest at
// most, and is then open for as long.
class RightOfWay : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::seconds kLongest{2};

  explicit RightOfWay(Clock& clock);
  // Nobody is left waiting.
  ~RightOfWay() override { _gate->open(); }
  RightOfWay(const RightOfWay&) = delete;
  RightOfWay& operator=(const RightOfWay&) = delete;

  // The camera has a photo, which is to be fetched now.
  void photoAnnounced();
  // A photo is here, and to be filed now.
  void photoArrived();
  // Every photo that is here is filed, or cannot be.
  void photosAreFiled();

  // For the threads that copy; outlives this object.
  std::shared_ptr<const Gate> gate() const { return _gate; }

 private:
  void shut();
  void open();
  void letCopiesGo();

  Clock& _clock;
  const std::shared_ptr<Gate> _gate = std::make_shared<Gate>();
  int _onTheirWay = 0;  // announced, and not here yet
  Clock::TimerId _shutTimer = Clock::kNoTimer;
  Clock::TimerId _openTimer = Clock::kNoTimer;
};

}  // namespace ambrel
