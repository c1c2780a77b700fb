// SPDX-License-Identifier: Apache-2.0
#include "simulator/Packets.h"

#include <algorithm>

namespace ambrel::simulator {

namespace {

constexpr std::size_t kDataBlock = 256 << 10;
constexpr std::size_t kCompactAbove = 64 << 10;
constexpr std::uint8_t kGuid[16] = {'a', 'm', 'b', 'r', 'e', 'l', '-', 's',
                                    'i', 'm', '-', 'c', 'a', 'm', 0,   1};

}  // namespace

void PacketReader::append(ByteView bytes) {
  if (_broken) return;
  _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
}

std::optional<Packet> PacketReader::next() {
  if (_broken || buffered() < kHeaderBytes) return std::nullopt;
  ByteReader header(ByteView(_bytes).subspan(_read));
  const std::size_t length = header.u32();
  const auto type = static_cast<PacketType>(header.u32());
  if (length < kHeaderBytes || length > kLargestPacket) {
    _broken = true;
    _bytes.clear();
    _read = 0;
    return std::nullopt;
  }
  if (buffered() < length) return std::nullopt;
  const ByteView body = header.rest().first(length - kHeaderBytes);
  Packet packet{type, Bytes(body.begin(), body.end())};
  _read += length;
  if (_read == _bytes.size() || _read > kCompactAbove) {
    _bytes.erase(_bytes.begin(), _bytes.begin() + static_cast<std::ptrdiff_t>(_read));
    _read = 0;
  }
  return packet;
}

Bytes encode_packet(PacketType type, ByteView body) {
  return ByteWriter()
      .u32(static_cast<std::uint32_t>(PacketReader::kHeaderBytes + body.size()))
      .u32(static_cast<std::uint32_t>(type))
      .raw(body)
      .take();
}

Bytes encode_init_ack(std::uint32_t connection, std::string_view name) {
  ByteWriter body;
  body.u32(connection).raw(kGuid).utf16z(name).u16(0).u16(1);
  return encode_packet(PacketType::initCommandAck, body.bytes());
}

Bytes encode_init_fail(InitFailure reason) {
  return encode_packet(PacketType::initFail, ByteWriter().u32(static_cast<std::uint32_t>(reason)).bytes());
}

Bytes encode_response(Response code, std::uint32_t transaction, std::span<const std::uint32_t> parameters) {
  ByteWriter body;
  body.u16(static_cast<std::uint16_t>(code)).u32(transaction);
  for (const std::uint32_t parameter : parameters) {
    body.u32(parameter);
  }
  return encode_packet(PacketType::commandResponse, body.bytes());
}

Bytes encode_data_phase(std::uint32_t transaction, ByteView data) {
  // Photos are large: each byte is copied once here, and no block on its own.
  constexpr std::size_t kBlockHeader = PacketReader::kHeaderBytes + 4;
  ByteWriter out;
  out.reserve(data.size() + (data.size() / kDataBlock + 2) * (kBlockHeader + 8));
  out.raw(encode_packet(PacketType::startData, ByteWriter().u32(transaction).u64(data.size()).bytes()));
  PacketType type = PacketType::data;
  while (type != PacketType::endData) {
    const ByteView block = data.first(std::min(data.size(), kDataBlock));
    data = data.subspan(block.size());
    if (data.empty()) type = PacketType::endData;
    out.u32(static_cast<std::uint32_t>(kBlockHeader + block.size())).u32(static_cast<std::uint32_t>(type));
    out.u32(transaction).raw(block);
  }
  return out.take();
}

}  // namespace ambrel::simulator
