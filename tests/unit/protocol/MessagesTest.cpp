// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <vector>

#include "protocol/Messages.h"

using namespace ambrel::protocol;

namespace {

struct MessageCase {
  std::string line;
  Message message;
};

const std::vector<MessageCase>& messageCases() {
  static const std::vector<MessageCase> cases{
      {"LOG|STATUS|x", {Message::Kind::Log, "STATUS|x"}},
      {"CPP_WORKER|version 1", {Message::Kind::CppWorker, "version 1"}},
      {"READY|OK", {Message::Kind::Ready, ""}},
      {"STATUS|connecting to camera", {Message::Kind::Status, "connecting to camera"}},
      {"STATUS|", {Message::Kind::Status, ""}},
      {"CONNECTED|", {Message::Kind::Connected, ""}},
      {"CONNECTED|Canon EOS R6", {Message::Kind::Connected, "Canon EOS R6"}},
      {"DISCONNECTED|", {Message::Kind::Disconnected, ""}},
      {"PUMP_ACTIVE_READY|", {Message::Kind::PumpActiveReady, ""}},
      {"PUMP_IDLE_READY|", {Message::Kind::PumpIdleReady, ""}},
      {"WARN|CARD_MISSING|", {Message::Kind::WarnCardMissing, ""}},
      {"CAPTURE_EVENT|", {Message::Kind::CaptureEvent, ""}},
      {"DOWNLOADED|/a|b/c d.JPG", {Message::Kind::Downloaded, "/a|b/c d.JPG"}},
      {"WARN|CAPTURE_IGNORED_NOT_WATCHING|", {Message::Kind::WarnCaptureIgnored, ""}},
      {"ERROR|download failed: x", {Message::Kind::Error, "download failed: x"}},
  };
  return cases;
}

TEST(Messages, ReadsEveryLineThatItWrites) {
  for (const MessageCase& c : messageCases()) {
    EXPECT_EQ(parseMessage(c.line), c.message) << c.line;
    EXPECT_EQ(encode(c.message), c.line);
  }
}

TEST(Messages, TakesReadyOnlyWhenNothingFollows) {
  for (const char* line : {"READY|OK ", "READY|OKAY", "READY|", "READY|ok"}) {
    EXPECT_EQ(parseMessage(line).kind, Message::Kind::Unknown) << line;
  }
}

TEST(Messages, ReadsWhatItDoesNotKnowAsUnknown) {
  for (const char* line :
       {"", "|", "STATUS", "status|x", "CONNECTED", "WARN|SOMETHING_ELSE|", "\xFF\xFE", "D"}) {
    EXPECT_EQ(parseMessage(line), (Message{Message::Kind::Unknown, line})) << line;
  }
}

TEST(Messages, KeepsTheNulBytesOfAPayload) {
  const std::string line("ERROR|a\0b", 9);
  EXPECT_EQ(parseMessage(line).payload, std::string("a\0b", 3));
}

TEST(Commands, ReadsEveryLineThatItWrites) {
  const std::vector<std::pair<std::string, Command>> cases{
      {"CONNECT|both", {Command::Kind::Connect, "both"}},
      {"DISCONNECT", {Command::Kind::Disconnect}},
      {"PUMP_ACTIVE", {Command::Kind::PumpActive}},
      {"PUMP_IDLE", {Command::Kind::PumpIdle}},
      {"SET_DOWNLOAD_DIR|/photos/a|b", {Command::Kind::SetDownloadDir, "/photos/a|b"}},
      {"SET_SAVE_DEST|card", {Command::Kind::SetSaveDest, "card"}},
      {"QUIT", {Command::Kind::Quit}},
  };
  for (const auto& [line, command] : cases) {
    EXPECT_EQ(parseCommand(line), command) << line;
    EXPECT_EQ(encode(command), line);
  }
}

TEST(Commands, RefusesWhatIsNoCommand) {
  for (const char* line : {"", "QUIT|", "quit", "CONNECT", "PUMP_ACTIVE|x", "NOISE|1"}) {
    EXPECT_FALSE(parseCommand(line)) << line;
  }
}

TEST(SaveMode, HasAWordForEachModeAndNoOther) {
  EXPECT_EQ(saveModeFromWord("both"), SaveMode::Both);
  EXPECT_EQ(saveModeFromWord("disk"), SaveMode::Disk);
  EXPECT_EQ(saveModeFromWord("card"), SaveMode::Card);
  EXPECT_FALSE(saveModeFromWord("Both"));
  EXPECT_EQ(word(SaveMode::Disk), "disk");
}

}  // namespace
