// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <map>
#include <string>
#include <vector>

#include "core/base/SerialThread.h"
#include "soak/Plan.h"
#include "support/SimulatedCamera.h"

namespace ambrel::soak {

// The camera in the photographer's hand, and the book of what it took and what the worker reported. The
// camera is spoken to on a thread of its own: it may be slow, and the application's event loop is measured.
class Shutter {
 public:
  Shutter(std::uint64_t seed, std::size_t shots);

  std::string gphotoPort() const { return _camera.gphotoPort(); }
  void press(const Shot& shot);
  // Cable, card, power: what the simulated camera's help lists.
  void tell(const std::string& command);

  // The worker reported a photo of this size. Its name may be another than the camera's own.
  void reported(std::size_t size);
  // Photos taken in times of trouble need not arrive, nor those that are on their way when it begins.
  void troubleBegins();
  void troubleEnds() { _trouble = false; }
  bool inTrouble() const { return _trouble; }

  std::size_t taken() const { return _taken; }            // files
  std::size_t onTheirWay() const { return _onTheirWay; }  // of those that must arrive
  bool isIdle() const { return _unanswered == 0; }
  // What cannot be, one sentence each.
  const QStringList& wrong() const { return _wrong; }

  struct Record {
    SimulatedPhoto photo;
    int timesReported = 0;
    bool mustArrive = false;
  };
  // Every photo ever taken, by its SHA-256. Only while idle.
  std::map<std::string, Record> records();

 private:
  struct Press {
    std::size_t files = 0;
    bool mustArrive = false;
    std::array<std::uint16_t, 2> timesReported{};  // the file itself, and the raw file of a pair
    std::size_t missing() const;
  };
  void answered(std::size_t shot, const std::string& answer, bool trouble);

  SimulatedCamera _camera;
  std::vector<Press> _presses;  // by their place in the plan; all there from the beginning
  std::size_t _taken = 0;
  std::size_t _onTheirWay = 0;
  std::size_t _unanswered = 0;
  bool _trouble = false;
  QStringList _wrong;
  SerialThread _thread;
};

}  // namespace ambrel::soak
