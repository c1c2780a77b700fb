// SPDX-License-Identifier: Apache-2.0
#include "support/WorkerProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

extern char** environ;

namespace ambrel {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kLinesShownOnFailure = 40;

std::vector<std::string> environmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> environment = variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view inherited(*entry);
    const bool replaced = std::any_of(variables.begin(), variables.end(), [&](const std::string& variable) {
      return inherited.starts_with(variable.substr(0, variable.find('=') + 1));
    });
    if (!replaced) environment.emplace_back(inherited);
  }
  return environment;
}

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

WorkerProcess::WorkerProcess(const Launch& launch) : _saveMode(launch.saveMode) {
  // A worker that is gone shows when the test waits for it.
  std::signal(SIGPIPE, SIG_IGN);
  start(launch);
  waitFor("READY|OK", launch.patience);
}

WorkerProcess::~WorkerProcess() {
  closeInput();
  if (_output >= 0) ::close(_output);
  if (_pid <= 0) return;
  ::kill(_pid, SIGKILL);
  while (::waitpid(_pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

void WorkerProcess::start(const Launch& launch) {
  std::array<int, 2> toWorker{};
  std::array<int, 2> fromWorker{};
  if (::pipe2(toWorker.data(), O_CLOEXEC) != 0 || ::pipe2(fromWorker.data(), O_CLOEXEC) != 0) fail("no pipe");
  _input = toWorker[1];
  _output = fromWorker[0];

  std::vector<std::string> words = launch.under;
  words.insert(words.end(), {AMBREL_CPP_WORKER, launch.downloadFolder, "/no/sdk/EDSDK", launch.saveMode});
  std::vector<std::string> environment =
      environmentWith({"AMBREL_CAMERA_PORT=" + launch.cameraPort,
                       "AMBREL_HOME=" + (launch.home.empty() ? _home.path() : launch.home)});
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, toWorker[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, fromWorker[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, fromWorker[1], STDERR_FILENO);
  const int failure = ::posix_spawnp(&_pid, words.front().c_str(), &actions, nullptr,
                                     pointersTo(words).data(), pointersTo(environment).data());
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(toWorker[0]);
  ::close(fromWorker[1]);
  if (failure != 0) {
    _pid = -1;
    fail("cannot be started");
  }
}

void WorkerProcess::send(const std::string& line) {
  const std::string whole = line + "\n";
  if (::write(_input, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
    fail("takes no more lines");
  }
}

std::string WorkerProcess::waitFor(std::string_view prefix, std::chrono::milliseconds patience) {
  const auto deadline = Clock::now() + patience;
  while (true) {
    for (; _passed < _lines.size(); ++_passed) {
      if (std::string_view(_lines[_passed]).starts_with(prefix)) return _lines[_passed++];
    }
    if (!read(deadline)) fail("did not say " + std::string(prefix));
  }
}

std::optional<std::string> WorkerProcess::next(std::chrono::milliseconds patience) {
  const auto deadline = Clock::now() + patience;
  while (_passed == _lines.size()) {
    if (!read(deadline)) return std::nullopt;
  }
  return _lines[_passed++];
}

void WorkerProcess::connect() {
  send("CONNECT|" + _saveMode);
  waitFor("CONNECTED|");
}

void WorkerProcess::watch() {
  send("PUMP_ACTIVE");
  waitFor("PUMP_ACTIVE_READY|");
}

bool WorkerProcess::read(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  pollfd polled{_output, POLLIN, 0};
  if (left.count() < 0 || ::poll(&polled, 1, static_cast<int>(left.count())) <= 0) return false;
  std::array<char, 65536> block;
  const ssize_t count = ::read(_output, block.data(), block.size());
  if (count <= 0) return false;
  _pending.append(block.data(), static_cast<std::size_t>(count));
  for (std::size_t end = _pending.find('\n'); end != std::string::npos; end = _pending.find('\n')) {
    _lines.push_back(_pending.substr(0, end));
    _pending.erase(0, end + 1);
  }
  return true;
}

void WorkerProcess::closeInput() {
  if (_input >= 0) ::close(std::exchange(_input, -1));
}

void WorkerProcess::signal(int number) {
  ::kill(_pid, number);
}

int WorkerProcess::waitForExit(std::chrono::milliseconds patience) {
  const auto deadline = Clock::now() + patience;
  int status = 0;
  while (true) {
    // A worker whose output nobody takes could not end.
    while (read(Clock::now())) {
    }
    if (::waitpid(_pid, &status, WNOHANG) == _pid) break;
    if (Clock::now() > deadline) fail("does not end");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  _pid = -1;
  while (read(Clock::now())) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

int WorkerProcess::count(std::string_view prefix) const {
  return static_cast<int>(std::count_if(_lines.begin(), _lines.end(), [&](const std::string& line) {
    return std::string_view(line).starts_with(prefix);
  }));
}

void WorkerProcess::fail(const std::string& what) const {
  std::string text = "camera worker " + what + "; it said:";
  const std::size_t first = _lines.size() - std::min(_lines.size(), kLinesShownOnFailure);
  for (std::size_t i = first; i < _lines.size(); ++i) {
    text += "\n  " + _lines[i];
  }
  throw std::runtime_error(text);
}

}  // namespace ambrel
