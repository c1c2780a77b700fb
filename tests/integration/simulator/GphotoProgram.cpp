// SPDX-License-Identifier: Apache-2.0
#include "GphotoProgram.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace ambrel {

namespace {

constexpr std::chrono::minutes kPatience{1};

std::size_t countOf(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos;
       at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

int millisecondsUntil(std::chrono::steady_clock::time_point deadline) {
  const auto left = deadline - std::chrono::steady_clock::now();
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count());
}

// In the child: no way back from here.
[[noreturn]] void becomeGphoto(const std::filesystem::path& folder, int output, std::vector<char*>& words) {
  ::setenv("HOME", folder.c_str(), 1);
  ::setenv("LC_ALL", "C", 1);
  const int input = ::open("/dev/null", O_RDONLY);
  if (::chdir(folder.c_str()) == 0 && ::dup2(input, STDIN_FILENO) >= 0 &&
      ::dup2(output, STDOUT_FILENO) >= 0 && ::dup2(output, STDERR_FILENO) >= 0) {
    ::execvp(words[0], words.data());
  }
  ::_exit(127);
}

}  // namespace

GphotoProgram::GphotoProgram(std::string port) : _port(std::move(port)) {
  std::string name = (std::filesystem::temp_directory_path() / "ambrel-gphoto-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder for gphoto2");
  _folder = name;
}

GphotoProgram::~GphotoProgram() {
  if (_pid > 0) ::kill(_pid, SIGKILL);
  waitEnd();
  std::error_code ignored;
  std::filesystem::remove_all(_folder, ignored);
}

void GphotoProgram::start(const std::vector<std::string>& arguments) {
  // Without stdbuf its lines would stay in its buffer as long as it waits for events.
  std::vector<std::string> words{"stdbuf", "-oL", "gphoto2", "--camera", "PTP/IP Camera", "--port", _port};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for gphoto2");
  _printed.clear();
  _status = -1;
  _output = pipe[0];
  _pid = ::fork();
  if (_pid == 0) becomeGphoto(_folder, pipe[1], pointers);
  ::close(pipe[1]);
}

std::string GphotoProgram::run(const std::vector<std::string>& arguments) {
  start(arguments);
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (readMore(millisecondsUntil(deadline))) {
  }
  if (millisecondsUntil(deadline) <= 0) ::kill(_pid, SIGKILL);
  waitEnd();
  return _printed;
}

bool GphotoProgram::waitFor(std::string_view text, std::size_t times) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (countOf(_printed, text) < times) {
    if (!readMore(millisecondsUntil(deadline))) return false;
  }
  return true;
}

void GphotoProgram::stop() {
  ::kill(_pid, SIGINT);
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (readMore(millisecondsUntil(deadline))) {
  }
  if (millisecondsUntil(deadline) <= 0) ::kill(_pid, SIGKILL);
  waitEnd();
}

bool GphotoProgram::readMore(int waitMs) {
  pollfd polled{_output, POLLIN, 0};
  if (waitMs <= 0 || ::poll(&polled, 1, waitMs) <= 0) return false;
  std::array<char, 4096> block;
  const ssize_t count = ::read(_output, block.data(), block.size());
  if (count <= 0) return false;
  _printed.append(block.data(), static_cast<std::size_t>(count));
  return true;
}

void GphotoProgram::waitEnd() {
  if (_output >= 0) ::close(std::exchange(_output, -1));
  if (_pid <= 0) return;
  int state = 0;
  while (::waitpid(_pid, &state, 0) < 0 && errno == EINTR) {
  }
  _pid = -1;
  _status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
}

}  // namespace ambrel
