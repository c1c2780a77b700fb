// SPDX-License-Identifier: Apache-2.0
#include "soak/Shutter.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace ambrel::soak {
namespace {

std::string orderFor(const Shot& shot) {
  const std::string size = " size=" + std::to_string(shot.size);
  switch (shot.kind) {
    case ShotKind::Jpeg:
      return "shoot kind=jpeg" + size;
    case ShotKind::Raw:
      return "shoot kind=raw" + size;
    case ShotKind::Pair:
      return "shoot kind=pair" + size + " rawsize=" + std::to_string(shot.size + kRawSurplus);
  }
  return {};
}

bool isSecondOfPair(std::size_t size) {
  return (size - kSmallestPhoto) % kBetweenSizes == kRawSurplus;
}

std::size_t numberIn(const std::string& text) {
  return std::strtoul(text.c_str(), nullptr, 10);
}

}  // namespace

// Small pictures: what costs time with photos is their number.
Shutter::Shutter(std::uint64_t seed, std::size_t shots)
    : _camera({"--jpeg-size", "240x160", "--seed", std::to_string(seed)}), _presses(shots) {}

void Shutter::press(const Shot& shot) {
  ++_unanswered;
  _thread.add([this, shot, trouble = _trouble](SerialThread::Line& mainThread) {
    std::string answer;
    try {
      answer = _camera.answer(orderFor(shot));
    } catch (const std::runtime_error& error) {
      answer = error.what();
    }
    const std::size_t place = shotOfSize(static_cast<std::size_t>(shot.size));
    mainThread.tell([this, place, answer, trouble] { answered(place, answer, trouble); });
  });
}

void Shutter::answered(std::size_t shot, const std::string& answer, bool trouble) {
  --_unanswered;
  const bool calm = !trouble && !_trouble;
  if (!answer.starts_with("ok")) {
    if (calm) _wrong << QStringLiteral("The camera took no photo: ") + QString::fromStdString(answer);
    return;
  }
  Press& press = _presses[shot];
  press.files = numberIn(valueIn(answer, "files"));
  press.mustArrive = calm;
  _taken += press.files;
  _onTheirWay += press.missing();
}

void Shutter::tell(const std::string& command) {
  ++_unanswered;
  _thread.add([this, command](SerialThread::Line& mainThread) {
    QString complaint;
    try {
      _camera.command(command);
    } catch (const std::runtime_error& error) {
      complaint = QString::fromLatin1(error.what());
    }
    mainThread.tell([this, complaint] {
      --_unanswered;
      if (!complaint.isEmpty()) _wrong << complaint;
    });
  });
}

std::size_t Shutter::Press::missing() const {
  const auto reported = static_cast<std::size_t>(
      std::count_if(timesReported.begin(), timesReported.end(), [](auto times) { return times > 0; }));
  return mustArrive && reported < files ? files - reported : 0;
}

void Shutter::reported(std::size_t size) {
  const std::size_t shot = shotOfSize(size);
  if (size < kSmallestPhoto || shot >= _presses.size()) {
    _wrong << QStringLiteral("A photo of %1 bytes was reported, which the camera has not made.").arg(size);
    return;
  }
  Press& press = _presses[shot];
  _onTheirWay -= press.missing();
  ++press.timesReported[isSecondOfPair(size) ? 1 : 0];
  _onTheirWay += press.missing();
}

void Shutter::troubleBegins() {
  _trouble = true;
  for (Press& press : _presses)
    if (press.missing() > 0) press.mustArrive = false;
  _onTheirWay = 0;
}

std::map<std::string, Shutter::Record> Shutter::records() {
  std::map<std::string, Record> records;
  for (const SimulatedPhoto& photo : _camera.photos()) {
    const Press& press = _presses.at(shotOfSize(photo.size));
    records[photo.sha256] = {photo, press.timesReported[isSecondOfPair(photo.size) ? 1 : 0],
                             press.mustArrive};
  }
  return records;
}

}  // namespace ambrel::soak
