// SPDX-License-Identifier: Apache-2.0
#include "protocol/Messages.h"

#include <array>

namespace ambrel::protocol {
namespace {

struct CommandForm {
  Command::Kind kind;
  std::string_view keyword;
  bool hasPayload;
};

constexpr std::array kCommands{
    CommandForm{Command::Kind::Connect, "CONNECT", true},
    CommandForm{Command::Kind::Disconnect, "DISCONNECT", false},
    CommandForm{Command::Kind::PumpActive, "PUMP_ACTIVE", false},
    CommandForm{Command::Kind::PumpIdle, "PUMP_IDLE", false},
    CommandForm{Command::Kind::SetDownloadDir, "SET_DOWNLOAD_DIR", true},
    CommandForm{Command::Kind::SetSaveDest, "SET_SAVE_DEST", true},
    CommandForm{Command::Kind::Quit, "QUIT", false},
};

struct MessageForm {
  Message::Kind kind;
  std::string_view prefix;
};

constexpr std::array kMessages{
    MessageForm{Message::Kind::Log, "LOG|"},
    MessageForm{Message::Kind::CppWorker, "CPP_WORKER|"},
    MessageForm{Message::Kind::Ready, "READY|OK"},
    MessageForm{Message::Kind::Status, "STATUS|"},
    MessageForm{Message::Kind::Connected, "CONNECTED|"},
    MessageForm{Message::Kind::Disconnected, "DISCONNECTED|"},
    MessageForm{Message::Kind::PumpActiveReady, "PUMP_ACTIVE_READY|"},
    MessageForm{Message::Kind::PumpIdleReady, "PUMP_IDLE_READY|"},
    MessageForm{Message::Kind::WarnCardMissing, "WARN|CARD_MISSING|"},
    MessageForm{Message::Kind::CaptureEvent, "CAPTURE_EVENT|"},
    MessageForm{Message::Kind::Downloaded, "DOWNLOADED|"},
    MessageForm{Message::Kind::WarnCaptureIgnored, "WARN|CAPTURE_IGNORED_NOT_WATCHING|"},
    MessageForm{Message::Kind::Error, "ERROR|"},
};

}  // namespace

std::string_view word(SaveMode mode) {
  switch (mode) {
    case SaveMode::Both:
      return "both";
    case SaveMode::Disk:
      return "disk";
    case SaveMode::Card:
      return "card";
  }
  return "both";
}

std::optional<SaveMode> saveModeFromWord(std::string_view text) {
  for (const SaveMode mode : {SaveMode::Both, SaveMode::Disk, SaveMode::Card}) {
    if (text == word(mode)) return mode;
  }
  return std::nullopt;
}

std::string encode(const Command& command) {
  for (const CommandForm& form : kCommands) {
    if (form.kind != command.kind) continue;
    std::string line(form.keyword);
    if (form.hasPayload) line.append("|").append(command.payload);
    return line;
  }
  return {};
}

std::optional<Command> parseCommand(std::string_view line) {
  const std::size_t bar = line.find('|');
  const std::string_view keyword = line.substr(0, bar);
  const bool hasPayload = bar != std::string_view::npos;
  for (const CommandForm& form : kCommands) {
    if (form.keyword != keyword || form.hasPayload != hasPayload) continue;
    return Command{form.kind, hasPayload ? std::string(line.substr(bar + 1)) : std::string()};
  }
  return std::nullopt;
}

std::string encode(const Message& message) {
  for (const MessageForm& form : kMessages) {
    if (form.kind == message.kind) return std::string(form.prefix).append(message.payload);
  }
  return message.payload;
}

Message parseMessage(std::string_view line) {
  for (const MessageForm& form : kMessages) {
    const bool matches = form.kind == Message::Kind::Ready
                             ? line == form.prefix
                             : line.substr(0, form.prefix.size()) == form.prefix;
    if (matches) return {form.kind, std::string(line.substr(form.prefix.size()))};
  }
  return {Message::Kind::Unknown, std::string(line)};
}

}  // namespace ambrel::protocol
