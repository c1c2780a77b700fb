// SPDX-License-Identifier: Apache-2.0
#include "simulator/CommandChannel.h"

#include <utility>

namespace ambrel::simulator {

namespace {

constexpr std::uint32_t kDataFromHost = 2;

void append(Bytes& out, Bytes more) {
  if (out.empty()) {
    out = std::move(more);
    return;
  }
  out.insert(out.end(), more.begin(), more.end());
}

}  // namespace

bool CommandChannel::handle(const Packet& packet, Bytes& out) {
  switch (packet.type) {
    case PacketType::commandRequest:
      return takeRequest(packet, out);
    case PacketType::startData: {
      ByteReader reader(packet.body);
      reader.u32();
      return _collecting && reader.u64() <= kLargestHostData && reader.ok();
    }
    case PacketType::data:
    case PacketType::endData:
      return takeData(packet, out);
    case PacketType::cancel:
      _collecting.reset();
      return true;
    case PacketType::ping:
      append(out, encode_packet(PacketType::pong, {}));
      return true;
    case PacketType::pong:
      return true;
    default:
      return false;
  }
}

bool CommandChannel::takeRequest(const Packet& packet, Bytes& out) {
  if (_collecting) return false;
  ByteReader reader(packet.body);
  PtpRequest request;
  const std::uint32_t dataPhase = reader.u32();
  request.operation = reader.u16();
  request.transaction = reader.u32();
  if (!reader.ok()) return false;
  for (std::uint32_t& parameter : request.parameters) {
    parameter = reader.u32();
  }
  if (dataPhase == kDataFromHost) {
    _collecting = std::move(request);
  } else {
    answer(request, out);
  }
  return true;
}

bool CommandChannel::takeData(const Packet& packet, Bytes& out) {
  ByteReader reader(packet.body);
  reader.u32();
  if (!_collecting || !reader.ok()) return false;
  const ByteView bytes = reader.rest();
  if (_collecting->data.size() + bytes.size() > kLargestHostData) return false;
  _collecting->data.insert(_collecting->data.end(), bytes.begin(), bytes.end());
  if (packet.type == PacketType::endData) {
    const PtpRequest request = *std::exchange(_collecting, std::nullopt);
    answer(request, out);
  }
  return true;
}

void CommandChannel::answer(const PtpRequest& request, Bytes& out) {
  const PtpReply reply = _responder.perform(request);
  if (reply.data) append(out, encode_data_phase(request.transaction, *reply.data));
  append(out, encode_response(reply.code, request.transaction, reply.parameters));
}

}  // namespace ambrel::simulator
