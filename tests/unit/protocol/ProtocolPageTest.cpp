// SPDX-License-Identifier: Apache-2.0
// The page about the protocol shows lines as they are sent: every kind, and no other.
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "protocol/Messages.h"

namespace {

using namespace ambrel::protocol;

class ProtocolPage : public ::testing::Test {
 protected:
  // The lines of the page that begin with this arrow, without it.
  static std::vector<std::string> examples(const std::string& arrow) {
    std::ifstream page(AMBREL_PROTOCOL_PAGE);
    EXPECT_TRUE(page.is_open()) << AMBREL_PROTOCOL_PAGE;
    std::vector<std::string> found;
    for (std::string line; std::getline(page, line);) {
      if (line.starts_with(arrow + " ")) found.push_back(line.substr(arrow.size() + 1));
    }
    return found;
  }
};

TEST_F(ProtocolPage, ShowsCommandsAsTheyAreSent) {
  std::set<Command::Kind> shown;
  for (const std::string& line : examples("->")) {
    const std::optional<Command> command = parseCommand(line);
    ASSERT_TRUE(command) << line;
    EXPECT_EQ(encode(*command), line);
    shown.insert(command->kind);
    const bool hasMode =
        command->kind == Command::Kind::Connect || command->kind == Command::Kind::SetSaveDest;
    EXPECT_TRUE(!hasMode || saveModeFromWord(command->payload)) << line;
  }
  EXPECT_EQ(shown.size(), static_cast<std::size_t>(Command::Kind::Quit) + 1) << "a command is missing";
}

TEST_F(ProtocolPage, ShowsMessagesAsTheyAreSent) {
  std::set<Message::Kind> shown;
  for (const std::string& line : examples("<-")) {
    const Message message = parseMessage(line);
    EXPECT_NE(message.kind, Message::Kind::Unknown) << line;
    EXPECT_EQ(encode(message), line);
    shown.insert(message.kind);
  }
  EXPECT_EQ(shown.size(), static_cast<std::size_t>(Message::Kind::Unknown)) << "a message is missing";
}

}  // namespace
