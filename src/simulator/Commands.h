// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/CameraModel.h"
#include "simulator/PtpIpServer.h"

namespace ambrel::simulator {

// A command line: one word, then key=value pairs.
struct Command {
  std::string word;
  std::map<std::string, std::string, std::less<>> values;
};

// Nothing for an empty line, a pair without "=", or a key given twice.
std::optional<Command> parse_command(std::string_view line);

// Carries out what the operator of the simulated camera types.
class Commands {
 public:
  Commands(CameraModel& camera, PtpIpServer& server) : _camera(camera), _server(server) {}

  // The answer, lines included that go before the closing "ok ..." or "error ..."; it ends with a line feed.
  std::string execute(std::string_view line);
  bool quitAsked() const { return _quit; }

  // One line per command for --help.
  static std::string_view help();

 private:
  std::string shoot(const Command& command);
  std::string photos(const Command& command);
  std::string drop(const Command& command);
  std::string cable(const Command& command);
  std::string power(const Command& command);
  std::string card(const Command& command);
  std::string busy(const Command& command);
  std::string set(const Command& command);
  std::string status(const Command& command);
  std::string quit(const Command& command);

  CameraModel& _camera;
  PtpIpServer& _server;
  bool _power = true;
  bool _quit = false;
};

}  // namespace ambrel::simulator
