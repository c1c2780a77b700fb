// SPDX-License-Identifier: Apache-2.0
#include "simulator/ControlServer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits.h>
#include <unistd.h>

#include "simulator/Sockets.h"

namespace ambrel::simulator {

namespace {

constexpr std::size_t kMostPeers = 16;
// Commands wait while so many bytes of answers have not been read.
constexpr std::size_t kMostUnread = 1 << 20;
constexpr std::size_t kMostLines = 1000;

bool ready(const std::vector<pollfd>& polled, int fd, int events) {
  return std::any_of(polled.begin(), polled.end(),
                     [&](const pollfd& each) { return each.fd == fd && (each.revents & events) != 0; });
}

}  // namespace

bool ControlServer::listen(std::uint16_t port) {
  _listener = bind_loopback(port);
  return _listener.valid() && start_listening(_listener);
}

std::uint16_t ControlServer::port() const {
  return port_of(_listener);
}

void ControlServer::attach(int input, int output) {
  _peers.push_back(std::make_shared<Peer>());
  _peers.back()->input = input;
  _peers.back()->output = output;
}

bool ControlServer::allAnswered() const {
  return std::all_of(_peers.begin(), _peers.end(), [](const auto& peer) { return peer->idle(); });
}

bool ControlServer::Peer::listens() const {
  return !ended && lines.size() < kMostLines && answers.size() < kMostUnread;
}

void ControlServer::watch(std::vector<pollfd>& polled) const {
  if (_listener.valid() && _peers.size() < kMostPeers) polled.push_back({_listener.get(), POLLIN, 0});
  for (const auto& peer : _peers) {
    if (peer->listens()) polled.push_back({peer->input, POLLIN, 0});
    if (!peer->answers.empty()) polled.push_back({peer->output, POLLOUT, 0});
  }
}

void ControlServer::serve(const std::vector<pollfd>& polled) {
  for (const auto& peer : _peers) {
    if (ready(polled, peer->input, POLLIN | POLLHUP | POLLERR)) read(*peer);
    execute(peer);
    if (ready(polled, peer->output, POLLOUT | POLLERR)) write(*peer);
  }
  std::erase_if(_peers, [&](const auto& peer) {
    const bool gone = peer->ended && peer->idle();
    _inputEnded = _inputEnded || (gone && !peer->socket.valid());
    return gone;
  });
  if (!ready(polled, _listener.get(), POLLIN)) return;
  Descriptor socket = accept_connection(_listener);
  if (!socket.valid()) return;
  attach(socket.get(), socket.get());
  _peers.back()->socket = std::move(socket);
}

void ControlServer::read(Peer& peer) {
  std::array<char, 4096> block;
  const ssize_t count = ::read(peer.input, block.data(), block.size());
  if (count > 0) {
    peer.framer.feed({block.data(), static_cast<std::size_t>(count)},
                     [&](std::string_view line) { peer.lines.emplace_back(line); });
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    peer.ended = true;
  }
}

// One command at a time, in order: the next one waits for the answer.
void ControlServer::execute(const std::shared_ptr<Peer>& peer) {
  while (!peer->waiting && !peer->lines.empty()) {
    const std::string line = std::move(peer->lines.front());
    peer->lines.pop_front();
    peer->waiting = true;
    _commands.execute(line, [peer](const std::string& answer) {
      peer->waiting = false;
      peer->answers += answer;
    });
  }
}

void ControlServer::write(Peer& peer) {
  // A ready pipe takes this much without blocking, although it was never told not to block.
  const std::size_t wanted = std::min<std::size_t>(peer.answers.size(), PIPE_BUF);
  const ssize_t count = ::write(peer.output, peer.answers.data(), wanted);
  if (count > 0) {
    peer.answers.erase(0, static_cast<std::size_t>(count));
  } else if (errno != EAGAIN && errno != EINTR) {
    peer.answers.clear();
    peer.lines.clear();
    peer.ended = true;
  }
}

}  // namespace ambrel::simulator
