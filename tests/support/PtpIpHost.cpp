// SPDX-License-Identifier: Apache-2.0
#include "support/PtpIpHost.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

#include "simulator/Sockets.h"

namespace ambrel {

using simulator::ByteReader;
using simulator::Bytes;
using simulator::ByteView;
using simulator::ByteWriter;
using simulator::Operation;
using simulator::Packet;
using simulator::PacketType;
using simulator::Response;

namespace {

constexpr int kPatienceMs = 20000;
// With an idle function the other end runs in this thread: it is served as often as we look.
constexpr int kLookMs = 1;

std::int64_t nowMs() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace

LoopbackConnection::LoopbackConnection(std::uint16_t port, std::function<void()> idle)
    : _idle(std::move(idle)) {
  if (port == 0) return;
  _socket.reset(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    _socket.reset();
  if (_socket.valid()) ::fcntl(_socket.get(), F_SETFL, O_NONBLOCK);
}

bool LoopbackConnection::send(ByteView bytes) {
  const std::int64_t deadline = nowMs() + kPatienceMs;
  while (_socket.valid() && !bytes.empty()) {
    const ssize_t count = ::send(_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno != EAGAIN || nowMs() > deadline) {
      return false;
    } else if (_idle) {
      _idle();
    } else {
      pollfd polled{_socket.get(), POLLOUT, 0};
      ::poll(&polled, 1, kPatienceMs);
    }
  }
  return _socket.valid();
}

LoopbackConnection::Arrival LoopbackConnection::receive(int waitMs) {
  if (!_socket.valid()) return Arrival::end;
  if (_idle) _idle();
  pollfd polled{_socket.get(), POLLIN, 0};
  ::poll(&polled, 1, _idle ? kLookMs : waitMs);
  std::array<std::uint8_t, 65536> block;
  const ssize_t count = ::recv(_socket.get(), block.data(), block.size(), 0);
  if (count > 0) {
    _packets.append(ByteView(block).first(static_cast<std::size_t>(count)));
    return Arrival::bytes;
  }
  return count < 0 && errno == EAGAIN ? Arrival::nothing : Arrival::end;
}

std::optional<Packet> LoopbackConnection::packet(int patienceMs) {
  const std::int64_t deadline = nowMs() + patienceMs;
  for (;;) {
    if (std::optional<Packet> packet = _packets.next()) return packet;
    const auto left = static_cast<int>(deadline - nowMs());
    if (left < 0 || receive(left) == Arrival::end) return std::nullopt;
  }
}

bool LoopbackConnection::waitClosed() {
  const std::int64_t deadline = nowMs() + kPatienceMs;
  for (;;) {
    const auto left = static_cast<int>(deadline - nowMs());
    if (left < 0) return false;
    if (receive(left) == Arrival::end) return true;
  }
}

void LoopbackConnection::reset() {
  if (!_socket.valid()) return;
  simulator::reset_on_close(_socket);
  _socket.reset();
}

PtpIpHost::PtpIpHost(std::uint16_t port, std::function<void()> idle)
    : _port(port), _idle(std::move(idle)), _command(0), _event(0) {}

bool PtpIpHost::connect() {
  _command = LoopbackConnection(_port, _idle);
  _command.send(initCommandRequest());
  const std::optional<Packet> ack = _command.packet();
  if (!ack || ack->type != PacketType::initCommandAck) return false;
  _event = LoopbackConnection(_port, _idle);
  _event.send(initEventRequest(ByteReader(ack->body).u32()));
  const std::optional<Packet> eventAck = _event.packet();
  return eventAck && eventAck->type == PacketType::initEventAck;
}

bool PtpIpHost::openSession() {
  if (!connect()) return false;
  const auto opened = request(Operation::openSession, {1});
  const auto events = request(Operation::eosSetEventMode, {1});
  return opened && opened->code == Response::ok && events && events->code == Response::ok;
}

void PtpIpHost::ask(std::uint32_t dataPhase, Operation operation,
                    const std::vector<std::uint32_t>& parameters) {
  ByteWriter body;
  body.u32(dataPhase).u16(static_cast<std::uint16_t>(operation)).u32(_transaction);
  for (const std::uint32_t parameter : parameters) {
    body.u32(parameter);
  }
  _command.send(encode_packet(PacketType::commandRequest, body.bytes()));
}

std::optional<PtpIpHost::Reply> PtpIpHost::request(Operation operation,
                                                   const std::vector<std::uint32_t>& parameters) {
  ask(1, operation, parameters);
  return reply();
}

std::optional<PtpIpHost::Reply> PtpIpHost::send(Operation operation, ByteView data) {
  ask(2, operation, {});
  _command.send(simulator::encode_data_phase(_transaction, data));
  return reply();
}

std::optional<PtpIpHost::Reply> PtpIpHost::reply() {
  Reply reply;
  while (const std::optional<Packet> packet = _command.packet()) {
    ByteReader reader(packet->body);
    if (packet->type == PacketType::commandResponse) {
      ++_transaction;
      reply.code = static_cast<Response>(reader.u16());
      reader.u32();
      while (!reader.rest().empty()) {
        reply.parameters.push_back(reader.u32());
      }
      return reply;
    }
    reader.u32();
    if (packet->type == PacketType::startData) continue;
    reply.data.insert(reply.data.end(), reader.rest().begin(), reader.rest().end());
  }
  return std::nullopt;
}

Bytes initCommandRequest() {
  const Bytes guid(16, 0x42);
  return encode_packet(PacketType::initCommandRequest,
                       ByteWriter().raw(guid).utf16z("").u16(0).u16(1).bytes());
}

Bytes initEventRequest(std::uint32_t connection) {
  return encode_packet(PacketType::initEventRequest, ByteWriter().u32(connection).bytes());
}

}  // namespace ambrel
