// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

#include "protocol/LineFramer.h"
#include "simulator/Commands.h"
#include "simulator/Descriptor.h"

namespace ambrel::simulator {

// Takes command lines from standard input and from connections to a port on 127.0.0.1, and writes the answers
// back to where each came from. Nothing here blocks: watch() and serve() are called around one poll().
class ControlServer {
 public:
  explicit ControlServer(Commands& commands) : _commands(commands) {}

  // Port 0 takes any free one. False if the port is taken.
  bool listen(std::uint16_t port);
  std::uint16_t port() const;
  // Reads commands from `input` and answers on `output`; both stay open when the object goes.
  void attach(int input, int output);
  // The attached input has come to its end, and all that it asked for was answered.
  bool inputEnded() const { return _inputEnded; }
  // Nobody waits for an answer or the rest of one.
  bool allAnswered() const;

  void watch(std::vector<pollfd>& polled) const;
  // `polled` as poll() left it.
  void serve(const std::vector<pollfd>& polled);

 private:
  struct Peer {
    int input = -1;
    int output = -1;
    Descriptor socket;  // not valid for the attached pair
    protocol::LineFramer framer;
    std::deque<std::string> lines;  // not executed yet
    bool waiting = false;           // for the answer to the one before them
    std::string answers;
    bool ended = false;

    bool idle() const { return !waiting && lines.empty() && answers.empty(); }
    bool listens() const;
  };

  void read(Peer& peer);
  void execute(const std::shared_ptr<Peer>& peer);
  void write(Peer& peer);

  Commands& _commands;
  Descriptor _listener;
  std::vector<std::shared_ptr<Peer>> _peers;  // an answer may come when its peer is gone
  bool _inputEnded = false;
};

}  // namespace ambrel::simulator
