// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Every line that the application and the camera worker exchange, as values. A line is UTF-8 text of at most
// kMaxLineBytes, ended by one line feed (which the functions below neither expect nor write).
namespace ambrel::protocol {

constexpr std::size_t kMaxLineBytes = 65536;

// Where photos are stored: on both, on the computer only, on the camera's memory card only.
enum class SaveMode { Both, Disk, Card };

std::string_view word(SaveMode mode);  // "both", "disk", "card"
std::optional<SaveMode> saveModeFromWord(std::string_view word);

// Application -> worker. The payload is the save mode word (Connect, SetSaveDest) or an absolute path
// (SetDownloadDir); the other commands have none.
struct Command {
  enum class Kind { Connect, Disconnect, PumpActive, PumpIdle, SetDownloadDir, SetSaveDest, Quit };
  Kind kind;
  std::string payload = {};
  bool operator==(const Command&) const = default;
};

std::string encode(const Command& command);
std::optional<Command> parseCommand(std::string_view line);

// Worker -> application. The payload is everything after the prefix, further "|" included: progress text
// (Status), absolute path (Downloaded), reason (Error), free text (Log, CppWorker), the line itself
// (Unknown).
struct Message {
  enum class Kind {
    Log,
    CppWorker,
    Ready,
    Status,
    Connected,
    Disconnected,
    PumpActiveReady,
    PumpIdleReady,
    WarnCardMissing,
    CaptureEvent,
    Downloaded,
    WarnCaptureIgnored,
    Error,
    Unknown
  };
  Kind kind;
  std::string payload = {};
  bool operator==(const Message&) const = default;
};

std::string encode(const Message& message);

// Total: a line that no test recognises is Unknown. Tests are made in the order of Message::Kind, matched by
// prefix and case-sensitively; only Ready must equal its line.
Message parseMessage(std::string_view line);

}  // namespace ambrel::protocol
