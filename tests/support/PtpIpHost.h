// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Descriptor.h"
#include "simulator/Packets.h"
#include "simulator/PtpCodes.h"

namespace ambrel {

// A TCP connection to a port on 127.0.0.1 that never blocks for ever: while it waits it calls `idle`, if
// there is one, and gives up after twenty seconds.
class LoopbackConnection {
 public:
  explicit LoopbackConnection(std::uint16_t port, std::function<void()> idle = {});

  bool connected() const { return _socket.valid(); }
  // False once the other end does not take it any more.
  bool send(simulator::ByteView bytes);
  // The next packet, or nothing if the other end has closed, or stays silent for `patienceMs`.
  std::optional<simulator::Packet> packet(int patienceMs = 20000);
  // Waits until the other end has closed; false if it does not within twenty seconds.
  bool waitClosed();
  // Ends the connection: in order, or torn down.
  void close() { _socket.reset(); }
  void reset();

 private:
  enum class Arrival { bytes, nothing, end };
  Arrival receive(int waitMs);

  simulator::Descriptor _socket;
  std::function<void()> _idle;
  simulator::PacketReader _packets;
};

// A host for the simulated camera: both connections, and one operation after the other.
class PtpIpHost {
 public:
  struct Reply {
    simulator::Response code{};
    std::vector<std::uint32_t> parameters;
    simulator::Bytes data;
  };

  explicit PtpIpHost(std::uint16_t port, std::function<void()> idle = {});

  // Greets on both connections; false if the camera refuses.
  bool connect();
  // As connect(), then opens a session and asks for events.
  bool openSession();
  // Nothing if the connection is lost before the whole answer is there.
  std::optional<Reply> request(simulator::Operation operation,
                               const std::vector<std::uint32_t>& parameters = {});
  // An operation that sends `data`.
  std::optional<Reply> send(simulator::Operation operation, simulator::ByteView data);

  LoopbackConnection& command() { return _command; }
  LoopbackConnection& event() { return _event; }

 private:
  std::optional<Reply> reply();
  void ask(std::uint32_t dataPhase, simulator::Operation operation,
           const std::vector<std::uint32_t>& parameters);

  std::uint16_t _port;
  std::function<void()> _idle;
  LoopbackConnection _command;
  LoopbackConnection _event;
  std::uint32_t _transaction = 0;
};

// The greeting of a host with an empty name.
simulator::Bytes initCommandRequest();
simulator::Bytes initEventRequest(std::uint32_t connection);

}  // namespace ambrel
