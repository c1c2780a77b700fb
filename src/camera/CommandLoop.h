// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>

#include "camera/Camera.h"
#include "camera/CaptureLedger.h"
#include "camera/DownloadFolder.h"
#include "camera/LineSource.h"
#include "protocol/Messages.h"

namespace ambrel::camera {

// How often the camera is asked for events between commands: watching, a photo should be seen at once; idle,
// the camera is only kept awake and its captures are counted.
constexpr std::chrono::milliseconds kWatchingPause{20};
constexpr std::chrono::milliseconds kIdlePause{60};
constexpr std::chrono::milliseconds kNoCameraPause{1000};
// A busy camera is asked again for this long before a photo is given up.
constexpr std::chrono::seconds kBusyPatience{10};
constexpr std::chrono::milliseconds kBusyPause{100};
// Watching and hearing of no photo for this long, the card is asked whether it has less room than before.
constexpr std::chrono::seconds kQuietBeforeLook{2};
// The announcement of a file may come after the end of its exposure.
constexpr std::chrono::milliseconds kAnnouncementDelay{500};
// After QUIT a transfer that runs may take this long to end.
constexpr std::chrono::seconds kLastTransferPatience{3};

// Obeys the application and watches the camera, in turns, in one thread.
//
//   no camera  --CONNECT-->  idle  --PUMP_ACTIVE-->  watching
//       <--DISCONNECT, loss--      <--PUMP_IDLE----
class CommandLoop {
 public:
  CommandLoop(Camera& camera, DownloadFolder& folder, LineSource& lines, MessageSink& sink,
              SaveMode saveMode);

  // Says READY and works until QUIT or the end of the input.
  void run();

 private:
  enum class State { NoCamera, Idle, Watching };
  using Time = std::chrono::steady_clock::time_point;
  class Fetch;

  void takeCommands(std::chrono::milliseconds wait);
  bool takeLine(std::chrono::milliseconds wait);
  void takeCommandsBetween(std::chrono::milliseconds wait);
  void obey(const protocol::Command& command);

  void connect(const std::string& modeWord);
  Outcome<> openCamera(SaveMode mode);
  Outcome<> warnIfCardIsMissing();
  void disconnect();
  void startWatching();
  void stopWatching();
  void setSaveDest(const std::string& modeWord);
  void setDownloadDir(const std::string& path);

  bool pollCamera();
  void handle(const CameraEvent& event);
  void fileAdded(const CameraFile& file);
  void fetch(const CameraFile& file);
  Outcome<std::string> download(const CameraFile& file);
  void downloadFailed(const CameraFile& file, const Failure& failure);
  void found(const CameraFile& file);
  void cardChanged();
  void lookAtCardWhenDue();
  void lookAtCard();
  Outcome<> startFromCard();
  // Repeats a call for as long as the camera is busy, up to kBusyPatience.
  template <typename Call>
  auto patiently(Call call) -> decltype(call());
  void busy(const std::string& reason);
  // Handles a failure that no photo is to blame for.
  void cameraFailed(const Failure& failure);
  void lost(const std::string& reason);

  void say(protocol::Message::Kind kind, const std::string& payload = {});
  void log(const std::string& text) { say(protocol::Message::Kind::Log, text); }
  bool usesCard() const { return _saveMode != SaveMode::Disk; }

  Camera& _camera;
  DownloadFolder& _folder;
  LineSource& _lines;
  MessageSink& _sink;

  State _state = State::NoCamera;
  SaveMode _saveMode;
  bool _ending = false;
  Time _endingSince;
  std::deque<protocol::Command>
      _waiting;  // commands that came during a camera operation and wait for its end

  bool _busyTold = false;  // since the camera last answered
  CaptureLedger _ledger;
  Time _quietSince;                        // when a photo last came, or the card was last asked
  bool _announced = false;                 // a file, since the last exposure that was over
  std::optional<Time> _lookAt;             // when to ask the card for what was not announced
  std::optional<std::uint64_t> _cardRoom;  // KiB, while the ledger holds all that is on the card
};

}  // namespace ambrel::camera
