// SPDX-License-Identifier: Apache-2.0
#include "simulator/PtpIpServer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <sys/socket.h>

#include "simulator/CameraIdentity.h"
#include "simulator/Sockets.h"

namespace ambrel::simulator {

namespace {

// Greetings that were begun and never ended may not use up the descriptors.
constexpr std::size_t kMostConnections = 16;
// A host that does not read its answers is not read from either.
constexpr std::size_t kMostUnsent = 1 << 20;
constexpr std::size_t kReadBlock = 64 << 10;

std::string hexadecimal(ByteView bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

bool wouldBlock() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

bool PtpIpServer::listen(std::uint16_t port) {
  _listener = bind_loopback(port);
  if (!_listener.valid()) return false;
  _port = port_of(_listener);
  _listening = start_listening(_listener);
  return _listening;
}

void PtpIpServer::watch(std::vector<pollfd>& polled) const {
  if (_frozen) return;
  if (_listening) polled.push_back({_listener.get(), POLLIN, 0});
  const bool mayWrite = _link.wait(Link::Clock::now()) == Link::Clock::duration::zero();
  for (const auto& connection : _connections) {
    const std::size_t unsent = connection->out.size() - connection->written;
    short events = 0;
    if (unsent < kMostUnsent) events = static_cast<short>(events | POLLIN);
    if (unsent > 0 && mayWrite) events = static_cast<short>(events | POLLOUT);
    polled.push_back({connection->socket.get(), events, 0});
  }
}

int PtpIpServer::timeoutMs(Link::Clock::time_point now) const {
  const bool waiting = std::any_of(_connections.begin(), _connections.end(), [](const auto& connection) {
    return connection->out.size() > connection->written;
  });
  if (_frozen || !waiting || _link.rate() == 0) return -1;
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(_link.wait(now)).count());
}

void PtpIpServer::serve(Link::Clock::time_point now) {
  if (const std::optional<Cut> cut = _link.takeDueCut()) applyCut(*cut);
  if (_frozen) return;
  // The end of an old connection must free the seat before a new one asks for it.
  for (const auto& connection : _connections) {
    read(*connection);
  }
  dropEnded();
  for (const auto& connection : _connections) {
    process(*connection);
    write(*connection, now);
  }
  dropEnded();
  if (const std::optional<Cut> cut = _link.takeDueCut()) applyCut(*cut);
  if (!_frozen && _listening) acceptHosts();
}

void PtpIpServer::acceptHosts() {
  while (_connections.size() < kMostConnections) {
    Descriptor socket = accept_connection(_listener);
    if (!socket.valid()) return;
    _connections.push_back(std::make_unique<Connection>());
    _connections.back()->socket = std::move(socket);
  }
  // The oldest that has not said what it wants makes room.
  const auto idle = std::find_if(_connections.begin(), _connections.end(),
                                 [](const auto& connection) { return connection->role == Role::unknown; });
  if (idle != _connections.end()) _connections.erase(idle);
}

void PtpIpServer::read(Connection& connection) {
  std::array<std::uint8_t, kReadBlock> block;
  while (!connection.ended && connection.in.buffered() < PacketReader::kLargestPacket) {
    const ssize_t count = ::recv(connection.socket.get(), block.data(), block.size(), 0);
    if (count > 0) {
      connection.in.append(ByteView(block).first(static_cast<std::size_t>(count)));
    } else {
      if (count == 0 || !wouldBlock()) connection.ended = true;
      return;
    }
  }
}

void PtpIpServer::process(Connection& connection) {
  while (!connection.ended && !connection.closeWhenSent &&
         connection.out.size() - connection.written < kMostUnsent) {
    const std::optional<Packet> packet = connection.in.next();
    if (!packet) break;
    if (handle(connection, *packet)) continue;
    // Who is not let in is told so; who breaks the protocol inside frees the seat at once.
    (connection.role == Role::unknown ? connection.closeWhenSent : connection.ended) = true;
  }
  if (connection.in.broken()) connection.ended = true;
}

bool PtpIpServer::handle(Connection& connection, const Packet& packet) {
  switch (connection.role) {
    case Role::unknown:
      if (packet.type == PacketType::initCommandRequest) return greetCommand(connection, packet);
      if (packet.type == PacketType::initEventRequest) return greetEvent(connection, packet);
      return false;
    case Role::command:
      return connection.channel->handle(packet, connection.out);
    case Role::event:
      return packet.type == PacketType::ping || packet.type == PacketType::pong;
  }
  return false;
}

bool PtpIpServer::greetCommand(Connection& connection, const Packet& packet) {
  // A GUID, a name that may be empty but has its NUL, and the version.
  constexpr std::size_t kIdBytes = 16;
  constexpr std::size_t kSmallestGreeting = kIdBytes + 2 + 4;
  if (_seat != nullptr || packet.body.size() < kSmallestGreeting) {
    connection.out = encode_init_fail(_seat != nullptr ? InitFailure::busy : InitFailure::rejected);
    return false;
  }
  connection.role = Role::command;
  connection.channel = std::make_unique<CommandChannel>(_camera);
  connection.out = encode_init_ack(++_seatNumber, kCameraModel);
  _seat = &connection;
  _hostId = hexadecimal(ByteView(packet.body).first(kIdBytes));
  return true;
}

bool PtpIpServer::greetEvent(Connection& connection, const Packet& packet) {
  ByteReader reader(packet.body);
  const bool known = _seat != nullptr && reader.u32() == _seatNumber && reader.ok();
  const bool taken = std::any_of(_connections.begin(), _connections.end(),
                                 [](const auto& other) { return other->role == Role::event; });
  if (!known || taken) {
    connection.out = encode_init_fail(InitFailure::rejected);
    return false;
  }
  connection.role = Role::event;
  connection.out = encode_packet(PacketType::initEventAck, {});
  return true;
}

void PtpIpServer::write(Connection& connection, Link::Clock::time_point now) {
  while (!connection.ended && connection.written < connection.out.size()) {
    const std::size_t wanted = std::min(connection.out.size() - connection.written, _link.allowance(now));
    if (wanted == 0) return;
    const ssize_t count =
        ::send(connection.socket.get(), connection.out.data() + connection.written, wanted, MSG_NOSIGNAL);
    if (count < 0) {
      connection.ended = !wouldBlock();
      return;
    }
    connection.written += static_cast<std::size_t>(count);
    _link.noteSent(static_cast<std::size_t>(count), now);
  }
  connection.out.clear();
  connection.written = 0;
  if (connection.closeWhenSent) connection.ended = true;
}

void PtpIpServer::dropEnded() {
  // The two connections of a host live and die together.
  const bool hostGone = std::any_of(_connections.begin(), _connections.end(), [](const auto& connection) {
    return connection->ended && connection->role != Role::unknown;
  });
  std::erase_if(_connections, [&](const auto& connection) {
    return connection->ended || (hostGone && connection->role != Role::unknown);
  });
  if (hostGone) {
    _seat = nullptr;
    _camera.endSession();
  }
}

void PtpIpServer::cut(std::uint64_t afterBytes, Cut how, bool out) {
  _outAfterCut = out;
  _link.cutAfter(afterBytes, how);
}

void PtpIpServer::applyCut(Cut how) {
  if (how == Cut::freeze) {
    _frozen = true;
    return;
  }
  for (const auto& connection : _connections) {
    // Unread bytes would turn an orderly end into a reset.
    read(*connection);
    if (how == Cut::reset) reset_on_close(connection->socket);
    connection->ended = true;
  }
  dropEnded();
  if (_outAfterCut) unplug();
}

void PtpIpServer::unplug() {
  // Bound but not listening: hosts are refused, and no other program gets the port meanwhile.
  _listener.reset();
  _listener = bind_loopback(_port);
  _listening = false;
}

bool PtpIpServer::plugIn() {
  _link.cancelCut();
  _frozen = false;
  if (_listening) return true;
  if (!_listener.valid()) _listener = bind_loopback(_port);
  _listening = _listener.valid() && start_listening(_listener);
  return _listening;
}

}  // namespace ambrel::simulator
