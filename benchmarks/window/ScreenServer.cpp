// SPDX-License-Identifier: Apache-2.0
#include "window/ScreenServer.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "support/Goals.h"

// POSIX leaves this declaration to us; glibc has it all the same.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace ambrel::bench {

ScreenServer::ScreenServer() {
  std::array<int, 2> pipe{};
  require(::pipe2(pipe.data(), O_CLOEXEC) == 0, "no pipe");
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // Without -noreset it would begin anew whenever its last client has gone, and the next would wait for that.
  std::array words{std::string("Xvfb"),      std::string("-displayfd"), std::string("1"),
                   std::string("-screen"),   std::string("0"),          std::string("1440x1000x24"),
                   std::string("-nolisten"), std::string("tcp"),        std::string("-noreset")};
  std::array<char*, words.size() + 1> pointers{};
  for (std::size_t i = 0; i < words.size(); ++i)
    pointers[i] = words[i].data();
  const int failure = ::posix_spawnp(&_pid, "Xvfb", &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(pipe[1]);
  require(failure == 0, "Xvfb cannot be started");
  std::string number;
  char digit = 0;
  while (::read(pipe[0], &digit, 1) == 1 && digit != '\n')
    number += digit;
  ::close(pipe[0]);
  require(!number.empty(), "Xvfb has no display");
  ::setenv("DISPLAY", (":" + number).c_str(), 1);
  ::setenv("QT_QPA_PLATFORM", "xcb", 1);
  ::setenv("QT_SCALE_FACTOR", "1", 1);
}

ScreenServer::~ScreenServer() {
  ::kill(_pid, SIGTERM);
  while (::waitpid(_pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace ambrel::bench
