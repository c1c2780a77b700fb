// SPDX-License-Identifier: Apache-2.0
#include "soak/Shutter.h"

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

void Shutter::reported(std::size_t size) {
  ++_timesReported[size];
  const std::size_t shot = shotOfSize(size);
  if (size < kSmallestPhoto || shot >= _presses.size()) return;  // records() tells
  Press& press = _presses[shot];
  _onTheirWay -= press.missing();
  ++press.reported;
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
  std::map<std::size_t, int> unknown = _timesReported;
  for (const SimulatedPhoto& photo : _camera.photos()) {
    const std::size_t shot = shotOfSize(photo.size);
    records[photo.sha256] = {photo, _timesReported[photo.size], _presses.at(shot).mustArrive};
    unknown.erase(photo.size);
  }
  for (const auto& [size, times] : unknown)
    _wrong << QStringLiteral("A photo of %1 bytes was reported, which the camera has not made.").arg(size);
  return records;
}

}  // namespace ambrel::soak
