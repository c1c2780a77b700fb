// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>

#include "camera/Camera.h"
#include "camera/CaptureLedger.h"
#include "camera/CardLookout.h"
#include "camera/DownloadFolder.h"
#include "camera/LineSource.h"
#include "protocol/Messages.h"

namespace ambrel::camera {

// How often the camera is asked for events between commands: watching, a photo should be seen at once; idle,
// the camera is only kept awake and its captures are counted.
constexpr std::chrono::milliseconds kWatchingPause{20};
// Between people nobody shoots: after this long without a word from the camera half the questions will do.
constexpr std::chrono::seconds kRestAfter{5};
constexpr std::chrono::milliseconds kRestingPause{40};
constexpr std::chrono::milliseconds kIdlePause{60};
constexpr std::chrono::milliseconds kNoCameraPause{1000};
// A busy camera is asked again for this long before a photo is given up.
constexpr std::chrono::seconds kBusyPatience{10};
constexpr std::chrono::milliseconds kBusyPause{100};
// What the camera still has to tell may delay the answer to PUMP_IDLE by this.
constexpr std::chrono::milliseconds kIdleAnswerPatience{100};
// Asked to end or to let the camera go, the worker may take this long for photos that are on their way.
constexpr std::chrono::seconds kLastTransferPatience{3};

// Obeys the application and watches the camera in turns. During a long operation of the camera it obeys what
// can be obeyed without it.
//
//   no camera  --CONNECT-->  idle  --PUMP_ACTIVE-->  watching  --PUMP_IDLE-->  finishing
//       <--DISCONNECT, loss--  <--all fetched that was taken until then------------
class CommandLoop {
 public:
  CommandLoop(Camera& camera, DownloadFolder& folder, LineSource& lines, MessageSink& sink,
              SaveMode saveMode);

  // Says READY and works until QUIT or the end of the input.
  void run();

 private:
  enum class State { NoCamera, Idle, Watching, Finishing };
  using Time = std::chrono::steady_clock::time_point;
  class Fetch;

  void takeCommands(std::chrono::milliseconds wait);
  bool takeLine(std::chrono::milliseconds wait);
  void takeCommandsBetween(std::chrono::milliseconds wait);
  void obeyWhatSparesTheCamera(std::chrono::milliseconds wait);
  void obey(const protocol::Command& command);

  void connect(const std::string& modeWord);
  Outcome<> openCamera(SaveMode mode);
  Outcome<> warnIfCardIsMissing();
  void disconnect();
  void startWatching();
  void stopWatching();
  void answerIdle();
  void emptyHostMemory();
  void setSaveDest(const std::string& modeWord);
  void setDownloadDir(const std::string& path);

  bool pollCamera();
  std::chrono::milliseconds pauseBetweenPolls() const;
  void handle(const CameraEvent& event);
  void fileAdded(const CameraFile& file);
  void fetch(const CameraFile& file);
  Outcome<std::string> download(const CameraFile& file);
  void downloadFailed(const CameraFile& file, const Failure& failure);
  void found(const CameraFile& file);
  void cardChanged();
  void lookAtCardWhenDue();
  Outcome<> lookAtCard();
  Outcome<> askForRoom();
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
  bool fetches() const { return _state == State::Watching || _state == State::Finishing; }

  Camera& _camera;
  DownloadFolder& _folder;
  LineSource& _lines;
  MessageSink& _sink;

  State _state = State::NoCamera;
  SaveMode _saveMode;
  bool _ending = false;
  Time _endingSince;
  bool _cameraTaken = false;    // commands are taken in the middle of a camera operation
  bool _owesIdleReady = false;  // PUMP_IDLE is obeyed and not yet answered
  std::deque<protocol::Command>
      _waiting;  // commands that came during a camera operation and wait for its end

  bool _busyTold = false;  // since the camera last answered
  Time _lastEvent;         // or the begin of watching
  CaptureLedger _ledger;
  CardLookout _lookout;
};

}  // namespace ambrel::camera
