// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/CameraModel.h"
#include "simulator/PtpIpServer.h"
#include "simulator/Shutter.h"

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
  // Gets the answer to one command: the line "ok ..." or "error ...", after the lines of a list if there is
  // one. It ends with a line feed.
  using Answer = std::function<void(const std::string&)>;

  Commands(CameraModel& camera, Shutter& shutter, PtpIpServer& server)
      : _camera(camera), _shutter(shutter), _server(server) {}

  // Calls `answer` once: at once, or for "shoot" from the shutter when all was taken.
  void execute(std::string_view line, const Answer& answer);
  bool quitAsked() const { return _quit; }

  // One line per command for --help.
  static std::string_view help();

 private:
  std::string run(const Command& command);
  void shoot(const Command& command, const Answer& answer);
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
  Shutter& _shutter;
  PtpIpServer& _server;
  bool _power = true;
  bool _quit = false;
};

}  // namespace ambrel::simulator
