// SPDX-License-Identifier: Apache-2.0
#include "support/SimulatedCamera.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "simulator/Sha256.h"

// POSIX leaves this declaration to us; glibc has it all the same.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace ambrel {

namespace {

constexpr std::chrono::seconds kLongestWait{30};

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error("simulated camera: " + what);
}

// Waits for bytes to read; false once `deadline` has passed.
bool waitReadable(int fd, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() < 0) return false;
    pollfd polled{fd, POLLIN, 0};
    if (::poll(&polled, 1, static_cast<int>(left.count())) > 0) return true;
  }
}

SimulatedPhoto photoFrom(const std::string& line) {
  SimulatedPhoto photo;
  photo.name = valueIn(line, "name");
  photo.size = std::stoull(valueIn(line, "size"));
  photo.sha256 = valueIn(line, "sha256");
  photo.shot = static_cast<unsigned>(std::stoul(valueIn(line, "shot")));
  photo.place = valueIn(line, "place");
  photo.asked = static_cast<unsigned>(std::stoul(valueIn(line, "asked")));
  photo.deleted = valueIn(line, "deleted") == "1";
  return photo;
}

}  // namespace

SimulatedCamera::SimulatedCamera(const std::vector<std::string>& arguments) {
  start(arguments);
  try {
    const std::string ready = readLine();
    if (!ready.starts_with("READY ")) fail("began with \"" + ready + "\"");
    _port = static_cast<std::uint16_t>(std::stoul(valueIn(ready, "ptpip")));
    _controlPort = static_cast<std::uint16_t>(std::stoul(valueIn(ready, "control")));
  } catch (...) {
    end();
    throw;
  }
}

SimulatedCamera::~SimulatedCamera() {
  end();
}

void SimulatedCamera::start(const std::vector<std::string>& arguments) {
  // Close-on-exec: another child that inherited the writing end would keep the program alive.
  std::array<int, 2> toCamera{};
  std::array<int, 2> fromCamera{};
  // A socket to write to: it can say that the program has ended without a signal to this process.
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, toCamera.data()) != 0 ||
      ::pipe2(fromCamera.data(), O_CLOEXEC) != 0) {
    fail("no pipe");
  }
  _input = toCamera[1];
  _output = fromCamera[0];

  std::vector<std::string> words{AMBREL_SIM_CAMERA};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, toCamera[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, fromCamera[1], STDOUT_FILENO);
  const int failure = ::posix_spawn(&_pid, AMBREL_SIM_CAMERA, &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(toCamera[0]);
  ::close(fromCamera[1]);
  if (failure != 0) {
    _pid = -1;
    end();
    fail("cannot start " AMBREL_SIM_CAMERA);
  }
}

void SimulatedCamera::end() {
  if (_input >= 0) ::close(std::exchange(_input, -1));
  if (_output >= 0) ::close(std::exchange(_output, -1));
  if (_pid <= 0) return;
  ::kill(_pid, SIGKILL);
  while (::waitpid(_pid, nullptr, 0) < 0 && errno == EINTR) {
  }
  _pid = -1;
}

void SimulatedCamera::send(const std::string& line) {
  const std::string whole = line + "\n";
  if (::send(_input, whole.data(), whole.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(whole.size())) {
    fail("cannot send \"" + line + "\"");
  }
}

std::string SimulatedCamera::readLine() {
  const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
  std::size_t end = 0;
  while ((end = _pending.find('\n')) == std::string::npos) {
    if (!waitReadable(_output, deadline)) fail("gives no answer");
    std::array<char, 65536> block;
    const ssize_t count = ::read(_output, block.data(), block.size());
    if (count == 0) fail("has ended");
    if (count > 0) _pending.append(block.data(), static_cast<std::size_t>(count));
  }
  std::string line = _pending.substr(0, end);
  _pending.erase(0, end + 1);
  return line;
}

std::string SimulatedCamera::answer(const std::string& line) {
  send(line);
  return readLine();
}

std::string SimulatedCamera::command(const std::string& line) {
  std::string answered = answer(line);
  if (!answered.starts_with("ok")) fail("\"" + line + "\" was answered \"" + answered + "\"");
  return answered;
}

std::vector<SimulatedPhoto> SimulatedCamera::photos() {
  send("photos");
  std::vector<SimulatedPhoto> photos;
  for (std::string line = readLine(); !line.starts_with("ok"); line = readLine()) {
    if (!line.starts_with("photo ")) fail("listed \"" + line + "\"");
    photos.push_back(photoFrom(line));
  }
  return photos;
}

std::string SimulatedCamera::gphotoPort() const {
  const std::string port = std::to_string(_port);
  return "ptpip:127.0.0.1:" + port + ":" + port;
}

std::string sha256OfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  return simulator::sha256_hex({data, bytes.size()});
}

std::string valueIn(std::string_view line, std::string_view key) {
  std::size_t at = 0;
  while (at < line.size()) {
    const std::size_t end = std::min(line.find(' ', at), line.size());
    const std::string_view word = line.substr(at, end - at);
    if (word.size() > key.size() && word.starts_with(key) && word[key.size()] == '=') {
      return std::string(word.substr(key.size() + 1));
    }
    at = end + 1;
  }
  return {};
}

}  // namespace ambrel
