// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "camera/Camera.h"
#include "camera/LineSource.h"

namespace ambrel::camera::test {

using std::chrono::milliseconds;

// Commands that come at set times, a clock that advances only when the loop waits, and everything that was
// said.
class FakeChannel : public LineSource, public MessageSink {
 public:
  void send(milliseconds at, std::string line) { _script.push_back({Time{} + at, std::move(line)}); }
  void endAt(milliseconds at) { _end = Time{} + at; }

  Next next(milliseconds wait) override;
  std::chrono::steady_clock::time_point now() const override { return _now; }
  void advance(milliseconds by) { _now += by; }
  milliseconds elapsed() const { return std::chrono::duration_cast<milliseconds>(_now - Time{}); }

  void say(const protocol::Message& message) override;
  // What was said but LOG and STATUS lines, and those.
  std::vector<std::string> said;
  std::vector<std::string> statuses;
  std::vector<std::string> logs;
  milliseconds saidAt(const std::string& line) const { return _saidAt.at(line); }

 private:
  using Time = std::chrono::steady_clock::time_point;
  struct Step {
    Time at;
    std::string line;
  };
  std::deque<Step> _script;
  Time _now;
  Time _end = Time{} + std::chrono::seconds(10);
  std::map<std::string, milliseconds> _saidAt;
};

// A camera whose events, card and failures the test sets.
class FakeCamera : public Camera {
 public:
  explicit FakeCamera(FakeChannel& channel) : _channel(channel) {}

  // At this time the camera announces the photo and has it.
  void shoot(milliseconds at, CameraFile file, std::string content);
  // The same, but nobody hears of it.
  void shootSilently(milliseconds at, CameraFile file, std::string content);
  // The announcement alone, of a photo that was shot silently.
  void announce(milliseconds at, CameraFile file) {
    _happenings.push_back({at, {CameraEvent::Kind::FileAdded, std::move(file)}});
  }
  void tell(milliseconds at, CameraEvent::Kind kind);
  void failFrom(milliseconds at, Failure failure) { _lossAt = {at, std::move(failure)}; }

  // Failures of single operations, each used up one by one.
  std::deque<Failure> findFailures, openFailures, confirmFailures, downloadFailures, listFailures;
  // Met by the first waits in which something happens.
  std::deque<Failure> eventFailures;
  bool card = true;
  bool sessionOpen = false;
  // From this time on the card has so many KiB more.
  std::pair<milliseconds, std::uint64_t> freed{0, 0};
  int opened = 0;
  int listings = 0;
  std::vector<SaveMode> modes;
  std::vector<std::string> fetched;
  std::vector<milliseconds> askedAt;  // for events
  // Each wait for events takes this long, and commands are obeyed meanwhile.
  milliseconds waitTakes{0};
  // A photo comes in this many pieces, and this is called before each.
  std::size_t pieces = 1;
  std::function<void()> duringDownload = [] {};

  void meanwhile(std::function<void()> act) override { _act = std::move(act); }
  Outcome<std::string> find() override;
  Outcome<> open(SaveMode mode) override;
  Outcome<> confirmSaveMode(SaveMode mode) override;
  Outcome<bool> hasCard() override;
  Outcome<CameraEvent> waitForEvent() override;
  Outcome<> download(const CameraFile& file, PhotoSink& sink) override;
  Outcome<std::uint64_t> cardFreeKib() override;
  Outcome<std::vector<CameraFile>> newestCardFiles() override;
  Outcome<CameraFile> withSize(const CameraFile& file) override;
  void close() override { sessionOpen = false; }
  void abandon() override { sessionOpen = false; }

 private:
  struct Happening {
    milliseconds at;
    CameraEvent event;
  };
  struct Stored {
    milliseconds at;
    CameraFile file;
    std::string content;
  };
  struct Loss {
    milliseconds at;
    Failure failure;
  };
  std::optional<Failure> lossNow() const;

  void goOnMeanwhile() const {
    if (_act) _act();
  }

  FakeChannel& _channel;
  std::function<void()> _act;
  std::deque<Happening> _happenings;
  std::vector<Stored> _photos;
  std::optional<Loss> _lossAt;
};

}  // namespace ambrel::camera::test
