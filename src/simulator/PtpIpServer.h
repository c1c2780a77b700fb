// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

#include "simulator/CameraModel.h"
#include "simulator/CommandChannel.h"
#include "simulator/Descriptor.h"
#include "simulator/Link.h"
#include "simulator/Packets.h"

namespace ambrel::simulator {

// The camera's end of the cable: PTP/IP on 127.0.0.1 for one host at a time. A second one is refused, and a
// lost connection frees the seat at once. Nothing here blocks: watch() and serve() are called around one
// poll().
class PtpIpServer {
 public:
  explicit PtpIpServer(CameraModel& camera) : _camera(camera) {}

  // Port 0 takes any free one. False if the port is taken.
  bool listen(std::uint16_t port);
  std::uint16_t port() const { return _port; }

  void watch(std::vector<pollfd>& polled) const;
  // How long poll() may wait for us; negative is for ever.
  int timeoutMs(Link::Clock::time_point now) const;
  void serve(Link::Clock::time_point now);

  Link& link() { return _link; }
  // Loses the host's connection, now or after that many more bytes to it. If `out`, the camera cannot be
  // reached afterwards until plugIn(); a frozen link stays frozen until then in any case.
  void cut(std::uint64_t afterBytes, Cut how, bool out);
  // Makes the camera reachable, thaws a frozen link and takes back a cut that has not come about. False if
  // another program has taken the port.
  bool plugIn();
  bool reachable() const { return _listening && !_frozen; }
  bool hasHost() const { return _seat != nullptr; }
  // How the latest host that was let in identified itself: 32 hexadecimal digits, or an empty text.
  const std::string& hostId() const { return _hostId; }

 private:
  enum class Role { unknown, command, event };
  struct Connection {
    Descriptor socket;
    Role role = Role::unknown;
    PacketReader in;
    Bytes out;
    std::size_t written = 0;
    std::unique_ptr<CommandChannel> channel;
    bool ended = false;  // by the host, or for what it sent
    bool closeWhenSent = false;
  };

  void acceptHosts();
  void read(Connection& connection);
  void process(Connection& connection);
  bool handle(Connection& connection, const Packet& packet);
  bool greetCommand(Connection& connection, const Packet& packet);
  bool greetEvent(Connection& connection, const Packet& packet);
  void write(Connection& connection, Link::Clock::time_point now);
  void dropEnded();
  void applyCut(Cut how);
  void unplug();

  CameraModel& _camera;
  Link _link;
  Descriptor _listener;
  std::uint16_t _port = 0;
  bool _listening = false;
  bool _frozen = false;
  bool _outAfterCut = false;
  std::vector<std::unique_ptr<Connection>> _connections;  // oldest first
  Connection* _seat = nullptr;  // the command connection of the host that was let in
  std::uint32_t _seatNumber = 0;
  std::string _hostId;
};

}  // namespace ambrel::simulator
