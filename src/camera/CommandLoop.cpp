// SPDX-License-Identifier: Apache-2.0
#include "camera/CommandLoop.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "camera/PhotoFormat.h"

namespace ambrel::camera {

using protocol::Command;
using protocol::Message;
using std::chrono::milliseconds;

// Hands a photo's bytes on for as long as there is patience for it.
class CommandLoop::Fetch : public PhotoSink {
 public:
  Fetch(CommandLoop& loop, PhotoSink& part) : _loop(loop), _part(part) {}

  bool write(std::span<const unsigned char> bytes) override {
    const bool patient = !_loop._ending || _loop._lines.now() - _loop._endingSince < kLastTransferPatience;
    return patient && _part.write(bytes);
  }

 private:
  CommandLoop& _loop;
  PhotoSink& _part;
};

CommandLoop::CommandLoop(Camera& camera, DownloadFolder& folder, LineSource& lines, MessageSink& sink,
                         SaveMode saveMode)
    : _camera(camera), _folder(folder), _lines(lines), _sink(sink), _saveMode(saveMode) {}

void CommandLoop::run() {
  _camera.meanwhile([this] { takeCommandsBetween(milliseconds(0)); });
  say(Message::Kind::Ready);
  while (!_ending) {
    const bool busy = _state != State::NoCamera && pollCamera();
    lookAtCardWhenDue();
    takeCommands(busy ? milliseconds(0) : pauseBetweenPolls());
  }
  emptyHostMemory();
  _camera.close();
  _camera.meanwhile({});
}

// ---- Commands

void CommandLoop::takeCommands(milliseconds wait) {
  while (!_ending && !_waiting.empty()) {
    const Command command = _waiting.front();
    _waiting.pop_front();
    obey(command);
    wait = milliseconds(0);
  }
  while (!_ending && takeLine(wait))
    wait = milliseconds(0);
}

bool CommandLoop::takeLine(milliseconds wait) {
  const LineSource::Next next = _lines.next(wait);
  if (next.kind == LineSource::Kind::Nothing) return false;
  if (next.kind == LineSource::Kind::End) {
    obey({Command::Kind::Quit});
  } else if (const std::optional<Command> command = protocol::parseCommand(next.line)) {
    obey(*command);
  } else {
    log("unknown command ignored");
  }
  return true;
}

// In the middle of a camera operation: whatever needs the camera waits for the end of it, and everything
// behind it waits too.
void CommandLoop::takeCommandsBetween(milliseconds wait) {
  _cameraTaken = true;
  answerIdle();
  obeyWhatSparesTheCamera(wait);
  _cameraTaken = false;
}

void CommandLoop::obeyWhatSparesTheCamera(milliseconds wait) {
  while (!_ending) {
    const LineSource::Next next = _lines.next(wait);
    wait = milliseconds(0);
    if (next.kind == LineSource::Kind::Nothing) return;
    const std::optional<Command> command =
        next.kind == LineSource::Kind::End ? Command{Command::Kind::Quit} : protocol::parseCommand(next.line);
    if (!command) continue;
    const bool isQuit = command->kind == Command::Kind::Quit;
    const bool sparesCamera =
        command->kind == Command::Kind::PumpIdle || command->kind == Command::Kind::SetDownloadDir;
    if (isQuit || (sparesCamera && _waiting.empty())) {
      obey(*command);
    } else {
      _waiting.push_back(*command);
    }
  }
}

void CommandLoop::obey(const Command& command) {
  switch (command.kind) {
    case Command::Kind::Connect:
      return connect(command.payload);
    case Command::Kind::Disconnect:
      return disconnect();
    case Command::Kind::PumpActive:
      return startWatching();
    case Command::Kind::PumpIdle:
      return stopWatching();
    case Command::Kind::SetDownloadDir:
      return setDownloadDir(command.payload);
    case Command::Kind::SetSaveDest:
      return setSaveDest(command.payload);
    case Command::Kind::Quit:
      _ending = true;
      _endingSince = _lines.now();
      return;
  }
}

void CommandLoop::connect(const std::string& modeWord) {
  _camera.close();
  _state = State::NoCamera;
  _saveMode = protocol::saveModeFromWord(modeWord).value_or(_saveMode);
  _ledger = {};
  if (const Outcome<> opened = openCamera(_saveMode); !opened) {
    const Failure& failure = opened.failure();
    const bool inUse = failure.kind == Failure::Kind::InUse || failure.kind == Failure::Kind::Busy;
    // Both are texts that the application knows and answers by trying again.
    const std::string what = inUse ? "camera busy (0x000000C0)" : "camera not detected";
    _camera.abandon();
    say(Message::Kind::Error, what + ": " + failure.reason);
    return;
  }
  _state = State::Idle;
  say(Message::Kind::Status, "connected");
  say(Message::Kind::Connected);
}

Outcome<> CommandLoop::openCamera(SaveMode mode) {
  say(Message::Kind::Status, "waiting for camera usb");
  const Outcome<std::string> found = _camera.find();
  if (!found) return found.failure();
  log("found " + found.value());
  say(Message::Kind::Status, "connecting to camera");
  say(Message::Kind::Status, "opening camera session");
  if (Outcome<> opened = _camera.open(mode); !opened) return opened;
  say(Message::Kind::Status, "setting save destination");
  if (Outcome<> set = patiently([&] { return _camera.confirmSaveMode(mode); }); !set) return set;
  return warnIfCardIsMissing();
}

Outcome<> CommandLoop::warnIfCardIsMissing() {
  if (!usesCard()) return Done{};
  say(Message::Kind::Status, "checking camera memory card");
  const Outcome<bool> card = patiently([this] { return _camera.hasCard(); });
  if (!card) return card.failure();
  if (!card.value()) say(Message::Kind::WarnCardMissing);
  return Done{};
}

void CommandLoop::disconnect() {
  const bool wasConnected = _state != State::NoCamera;
  emptyHostMemory();
  _camera.close();
  _state = State::NoCamera;
  // Said of a camera that never was, it would alarm the operator.
  if (wasConnected) say(Message::Kind::Disconnected);
}

void CommandLoop::startWatching() {
  if (_state == State::NoCamera) return log("not watching: no camera");
  if (_state == State::Finishing) _state = State::Watching;
  // What was taken until now is not to be downloaded, neither through its event nor through the card.
  while (_state == State::Idle && pollCamera()) {
  }
  if (_state == State::Idle) {
    if (const Outcome<> started = startFromCard(); !started) return cameraFailed(started.failure());
    _state = State::Watching;
    _lastEvent = _lines.now();
  }
  if (_state == State::Watching) say(Message::Kind::PumpActiveReady);
}

// What was taken while watching is still fetched. Mostly nothing is left, and then what is taken from the
// answer on is ignored; only where the camera keeps us waiting does the answer not wait for it.
void CommandLoop::stopWatching() {
  _owesIdleReady = true;
  if (_state == State::Watching) _state = State::Finishing;
  const Time begun = _lines.now();
  while (_state == State::Finishing && _owesIdleReady && !_cameraTaken &&
         _lines.now() - begun < kIdleAnswerPatience)
    pollCamera();
  answerIdle();
}

void CommandLoop::answerIdle() {
  if (std::exchange(_owesIdleReady, false)) say(Message::Kind::PumpIdleReady);
}

// What only the camera's memory holds would go with the session.
void CommandLoop::emptyHostMemory() {
  if (!fetches() || _saveMode != SaveMode::Disk) return;
  _state = State::Finishing;
  const Time begun = _lines.now();
  while (_state == State::Finishing && _lines.now() - begun < kLastTransferPatience)
    pollCamera();
  if (_state != State::Finishing) return;
  say(Message::Kind::Error, "disconnected: photos that were still in the camera's memory are gone with it");
}

void CommandLoop::setSaveDest(const std::string& modeWord) {
  const std::optional<SaveMode> mode = protocol::saveModeFromWord(modeWord);
  if (!mode) return log("unknown save mode ignored");
  _saveMode = *mode;
  if (_state == State::NoCamera) return;
  say(Message::Kind::Status, "setting save destination");
  Outcome<> done = patiently([&] { return _camera.confirmSaveMode(*mode); });
  if (done) done = warnIfCardIsMissing();
  if (done && _state == State::Watching) done = startFromCard();
  if (!done) cameraFailed(done.failure());
}

void CommandLoop::setDownloadDir(const std::string& path) {
  if (path.empty() || path.front() != '/') return log("download folder ignored: no absolute path");
  _folder.use(path);
}

// ---- Events

// True when the camera had something to tell, and may have more.
bool CommandLoop::pollCamera() {
  const Outcome<CameraEvent> event = _camera.waitForEvent();
  if (!event) {
    cameraFailed(event.failure());
    return false;
  }
  _busyTold = false;
  const bool nothing = event.value().kind == CameraEvent::Kind::Nothing;
  if (!nothing) _lastEvent = _lines.now();
  if (nothing && _state == State::Finishing) _state = State::Idle;
  if (nothing || event.value().kind == CameraEvent::Kind::FileAdded) answerIdle();
  handle(event.value());
  return !nothing;
}

milliseconds CommandLoop::pauseBetweenPolls() const {
  switch (_state) {
    case State::NoCamera:
      return kNoCameraPause;
    case State::Idle:
      return kIdlePause;
    case State::Watching:
      return _lines.now() - _lastEvent < kRestAfter ? kWatchingPause : kRestingPause;
    case State::Finishing:
      break;
  }
  return kWatchingPause;
}

void CommandLoop::handle(const CameraEvent& event) {
  switch (event.kind) {
    case CameraEvent::Kind::FileAdded:
      _lookout.announced(_lines.now());
      return fileAdded(event.file);
    case CameraEvent::Kind::CaptureComplete:
      _ledger.captureComplete();
      _lookout.exposureOver(_lines.now());
      return;
    case CameraEvent::Kind::CardChanged:
      return cardChanged();
    case CameraEvent::Kind::Nothing:
    case CameraEvent::Kind::Other:
      return;
  }
}

void CommandLoop::fileAdded(const CameraFile& file) {
  if (!isPhotoName(file.name)) return log("no photo, left on the card: " + safeName(file.name));
  if (_ledger.announced(file)) found(file);
}

void CommandLoop::found(const CameraFile& file) {
  const bool newExposure = _ledger.beginsExposure(file);
  if (newExposure) say(Message::Kind::CaptureEvent);
  if (fetches()) {
    fetch(file);
  } else if (newExposure) {
    say(Message::Kind::WarnCaptureIgnored);
  }
}

// In mode "card" a photo stays where it is; but one that no card took, because there is none, exists only
// here.
void CommandLoop::fetch(const CameraFile& file) {
  if (_saveMode == SaveMode::Card && !file.inHostMemory()) return;
  const Outcome<std::string> path = download(file);
  if (path) {
    say(Message::Kind::Downloaded, path.value());
  } else {
    downloadFailed(file, path.failure());
  }
}

Outcome<std::string> CommandLoop::download(const CameraFile& file) {
  Outcome<std::unique_ptr<PartFile>> part = _folder.begin(file);
  if (!part) return part.failure();
  Fetch sink(*this, *part.value());
  const Outcome<> fetched = patiently([&]() -> Outcome<> {
    if (Outcome<> emptied = part.value()->restart(); !emptied) return emptied;
    return _camera.download(file, sink);
  });
  if (!fetched) return fetched.failure();
  return part.value()->finish(file);
}

void CommandLoop::downloadFailed(const CameraFile& file, const Failure& failure) {
  const char* where = file.inHostMemory() ? "the photo is lost, the camera kept no copy"
                                          : "the photo stays on the camera's card";
  say(Message::Kind::Error, "download failed: " + safeName(file.name) + ": " + failure.reason + "; " + where);
  if (failure.kind == Failure::Kind::Lost || failure.kind == Failure::Kind::NotFound) lost(failure.reason);
}

// ---- Photos that no event announced

// Only mode "both" has photos on a card that are to be downloaded.
Outcome<> CommandLoop::startFromCard() {
  _lookout.begin(std::nullopt, _lines.now());
  if (_saveMode != SaveMode::Both) return Done{};
  const Outcome<std::vector<CameraFile>> listing = patiently([this] { return _camera.newestCardFiles(); });
  if (!listing) return listing.failure();
  _ledger.startFrom(listing.value());
  const Outcome<std::uint64_t> room = patiently([this] { return _camera.cardFreeKib(); });
  if (!room) return room.failure();
  _lookout.begin(room.value(), _lines.now());
  return Done{};
}

void CommandLoop::cardChanged() {
  _ledger.forgetCard();
  Outcome<> done = Done{};
  if (_state == State::Watching) done = startFromCard();
  if (done) done = warnIfCardIsMissing();
  if (!done) cameraFailed(done.failure());
}

void CommandLoop::lookAtCardWhenDue() {
  if (_state != State::Watching || _saveMode != SaveMode::Both) return;
  const CardLookout::Step step = _lookout.due(_lines.now());
  Outcome<> done = Done{};
  if (step == CardLookout::Step::Look) done = lookAtCard();
  if (step == CardLookout::Step::AskRoom) done = askForRoom();
  if (!done) cameraFailed(done.failure());
}

Outcome<> CommandLoop::askForRoom() {
  const Outcome<std::uint64_t> room = patiently([this] { return _camera.cardFreeKib(); });
  if (!room) return room.failure();
  const bool afresh = _lookout.roomIs(room.value(), _lines.now()) == CardLookout::Step::StartAfresh;
  return afresh ? startFromCard() : Done{};
}

Outcome<> CommandLoop::lookAtCard() {
  const Outcome<std::vector<CameraFile>> listing = patiently([this] { return _camera.newestCardFiles(); });
  if (!listing) return listing.failure();
  for (const CameraFile& file : _ledger.unannounced(listing.value())) {
    log("on the card without announcement: " + safeName(file.name));
    const Outcome<CameraFile> sized = patiently([&] { return _camera.withSize(file); });
    if (!sized) return sized.failure();
    found(sized.value());
    if (_state == State::NoCamera) break;
  }
  return Done{};
}

// ---- Failures

template <typename Call>
auto CommandLoop::patiently(Call call) -> decltype(call()) {
  const Time begun = _lines.now();
  while (true) {
    auto outcome = call();
    if (outcome || outcome.failure().kind != Failure::Kind::Busy) return outcome;
    if (_ending || _lines.now() - begun > kBusyPatience) return outcome;
    takeCommandsBetween(kBusyPause);
  }
}

void CommandLoop::cameraFailed(const Failure& failure) {
  if (failure.kind == Failure::Kind::Busy) return busy(failure.reason);
  lost(failure.reason);
}

// In mode "disk" a wait for events reads photos out of the camera's memory too, and one whose reading is
// refused never comes again. Which of the two was refused, nobody tells.
void CommandLoop::busy(const std::string& reason) {
  if (std::exchange(_busyTold, true)) return;
  log("camera busy: " + reason);
  if (!fetches() || _saveMode != SaveMode::Disk) return;
  say(Message::Kind::Error, "the camera was busy: a photo taken just now may still be in its memory");
}

void CommandLoop::lost(const std::string& reason) {
  if (_state == State::NoCamera) return;
  log("camera lost: " + reason);
  if (fetches() && _saveMode == SaveMode::Disk) {
    say(Message::Kind::Error, "camera lost: a photo taken in the last moment may be gone with it");
  }
  _state = State::NoCamera;
  say(Message::Kind::Disconnected);
  _camera.abandon();
}

void CommandLoop::say(Message::Kind kind, const std::string& payload) {
  _sink.say({kind, payload});
}

}  // namespace ambrel::camera
