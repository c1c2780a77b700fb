// SPDX-License-Identifier: Apache-2.0
#include "FakeCamera.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace ambrel::camera::test {
namespace {

constexpr std::uint64_t kWholeCardKib = 1'000'000;

std::optional<Failure> take(std::deque<Failure>& failures) {
  if (failures.empty()) return std::nullopt;
  Failure first = failures.front();
  failures.pop_front();
  return first;
}

}  // namespace

LineSource::Next FakeChannel::next(milliseconds wait) {
  if (!_script.empty() && _script.front().at <= std::min(_now + wait, _end)) {
    _now = std::max(_now, _script.front().at);
    Next next{Kind::Line, _script.front().line};
    _script.pop_front();
    return next;
  }
  _now = std::min(_now + wait, _end);
  return {_now >= _end ? Kind::End : Kind::Nothing};
}

void FakeChannel::say(const protocol::Message& message) {
  if (message.kind == protocol::Message::Kind::Log) return logs.push_back(message.payload);
  if (message.kind == protocol::Message::Kind::Status) return statuses.push_back(message.payload);
  said.push_back(protocol::encode(message));
  _saidAt[said.back()] = elapsed();
}

void FakeCamera::shoot(milliseconds at, CameraFile file, std::string content) {
  _happenings.push_back({at, {CameraEvent::Kind::FileAdded, file}});
  _photos.push_back({at, std::move(file), std::move(content)});
}

void FakeCamera::shootSilently(milliseconds at, CameraFile file, std::string content) {
  _photos.push_back({at, std::move(file), std::move(content)});
}

void FakeCamera::tell(milliseconds at, CameraEvent::Kind kind) {
  _happenings.push_back({at, {kind}});
}

std::optional<Failure> FakeCamera::lossNow() const {
  EXPECT_TRUE(sessionOpen) << "the camera was used without a session";
  if (_lossAt && _channel.elapsed() >= _lossAt->at) return _lossAt->failure;
  return std::nullopt;
}

Outcome<std::string> FakeCamera::find() {
  if (auto failure = take(findFailures)) return *failure;
  return std::string("Canon EOS R6 at usb:001,002");
}

Outcome<> FakeCamera::open(SaveMode mode) {
  EXPECT_FALSE(sessionOpen) << "a session was opened over another";
  ++opened;
  modes.push_back(mode);
  if (auto failure = take(openFailures)) return *failure;
  sessionOpen = true;
  return Done{};
}

Outcome<> FakeCamera::confirmSaveMode(SaveMode mode) {
  if (auto loss = lossNow()) return *loss;
  modes.push_back(mode);
  if (auto failure = take(confirmFailures)) return *failure;
  return Done{};
}

Outcome<bool> FakeCamera::hasCard() {
  if (auto loss = lossNow()) return *loss;
  return card;
}

Outcome<CameraEvent> FakeCamera::waitForEvent() {
  askedAt.push_back(_channel.elapsed());
  if (auto loss = lossNow()) return *loss;
  if (waitTakes > milliseconds(0)) {
    _channel.advance(waitTakes);
    goOnMeanwhile();
  }
  if (_happenings.empty() || _happenings.front().at > _channel.elapsed()) return CameraEvent{};
  if (auto failure = take(eventFailures)) return *failure;
  const CameraEvent event = _happenings.front().event;
  _happenings.pop_front();
  return event;
}

Outcome<> FakeCamera::download(const CameraFile& file, PhotoSink& sink) {
  if (auto loss = lossNow()) return *loss;
  fetched.push_back(file.name);
  const auto photo =
      std::find_if(_photos.begin(), _photos.end(), [&](const Stored& stored) { return stored.file == file; });
  if (photo == _photos.end()) return Failure{Failure::Kind::Lost, "no such file"};
  const std::span<const unsigned char> bytes(reinterpret_cast<const unsigned char*>(photo->content.data()),
                                             photo->content.size());
  const std::size_t piece = (bytes.size() + pieces - 1) / pieces;
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    duringDownload();
    goOnMeanwhile();
    if (auto failure = take(downloadFailures)) return *failure;
    if (!sink.write(bytes.subspan(at, std::min(piece, bytes.size() - at)))) {
      return Failure{Failure::Kind::Stopped, "the worker was asked to end"};
    }
  }
  return Done{};
}

Outcome<std::uint64_t> FakeCamera::cardFreeKib() {
  if (auto loss = lossNow()) return *loss;
  std::uint64_t used = 0;
  for (const Stored& photo : _photos)
    used += photo.at <= _channel.elapsed() ? 1 : 0;
  const std::uint64_t freedNow = _channel.elapsed() >= freed.first ? freed.second : 0;
  return kWholeCardKib - used + freedNow;
}

Outcome<std::vector<CameraFile>> FakeCamera::newestCardFiles() {
  if (auto loss = lossNow()) return *loss;
  ++listings;
  if (auto failure = take(listFailures)) return *failure;
  std::vector<CameraFile> files;
  for (const Stored& photo : _photos) {
    if (photo.at > _channel.elapsed() || photo.file.inHostMemory()) continue;
    files.push_back({photo.file.folder, photo.file.name});
  }
  return files;
}

Outcome<CameraFile> FakeCamera::withSize(const CameraFile& file) {
  if (auto loss = lossNow()) return *loss;
  for (const Stored& photo : _photos) {
    if (photo.file.folder == file.folder && photo.file.name == file.name) return photo.file;
  }
  return Failure{Failure::Kind::Lost, "no such file"};
}

}  // namespace ambrel::camera::test
