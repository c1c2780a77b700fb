// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>

#include "simulator/Bytes.h"
#include "simulator/PtpCodes.h"

namespace ambrel::simulator {

struct Packet {
  PacketType type{};
  Bytes body;
};

// Cuts the byte stream of a host into PTP/IP packets: u32 length (itself included), u32 type, body. A length
// that no host has a reason to send breaks the stream for good, so that one connection costs bounded memory.
class PacketReader {
 public:
  static constexpr std::size_t kHeaderBytes = 8;
  static constexpr std::size_t kLargestPacket = 1 << 20;

  void append(ByteView bytes);
  // The next whole packet, or nothing if it is not there yet or the stream is broken.
  std::optional<Packet> next();
  bool broken() const { return _broken; }
  std::size_t buffered() const { return _bytes.size() - _read; }

 private:
  Bytes _bytes;
  std::size_t _read = 0;
  bool _broken = false;
};

Bytes encode_packet(PacketType type, ByteView body);
// What a host learns of us when it is let in. The connection number comes back with its event connection.
Bytes encode_init_ack(std::uint32_t connection, std::string_view name);
Bytes encode_init_fail(InitFailure reason);
Bytes encode_response(Response code, std::uint32_t transaction, std::span<const std::uint32_t> parameters);
// Start, data packets of at most 256 KiB and the end, for one answer with data.
Bytes encode_data_phase(std::uint32_t transaction, ByteView data);

}  // namespace ambrel::simulator
