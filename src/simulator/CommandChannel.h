// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "simulator/Packets.h"
#include "simulator/PtpResponder.h"

namespace ambrel::simulator {

// The command connection of the host that has the seat: packets in, packets out, no socket.
class CommandChannel {
 public:
  // More than any operation of ours takes from a host.
  static constexpr std::size_t kLargestHostData = 1 << 20;

  explicit CommandChannel(CameraModel& camera) : _responder(camera) {}

  // Appends the answer, if the packet asks for one. False if the packet breaks the protocol: the connection
  // is to be closed then.
  bool handle(const Packet& packet, Bytes& out);

 private:
  bool takeRequest(const Packet& packet, Bytes& out);
  bool takeData(const Packet& packet, Bytes& out);
  void answer(const PtpRequest& request, Bytes& out);

  PtpResponder _responder;
  std::optional<PtpRequest> _collecting;  // whose data the host is sending
};

}  // namespace ambrel::simulator
