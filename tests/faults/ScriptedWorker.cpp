// SPDX-License-Identifier: Apache-2.0
// A camera worker whose camera is a signal: SIGUSR1 delivers the next photo, SIGUSR2 all that are left.
// What it has delivered stands in the file AMBREL_DELIVERIES before the application hears of it.
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string>
#include <sys/signalfd.h>
#include <unistd.h>

#include "faults/Photos.h"

namespace {

using ambrel::faults::kPhotos;

void writeWhole(int descriptor, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
    if (count <= 0) std::_Exit(3);
    done += static_cast<std::size_t>(count);
  }
}

void say(const std::string& line) {
  writeWhole(STDOUT_FILENO, line + "\n");
}

void deliver(const std::string& folder, int number) {
  const std::string path = folder + "/" + ambrel::faults::cameraName(number);
  const std::string unfinished = folder + "/." + ambrel::faults::cameraName(number) + ".ambrel-part";
  const int file = ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  writeWhole(file, ambrel::faults::photoBytes(number));
  ::fsync(file);
  ::close(file);
  if (::rename(unfinished.c_str(), path.c_str()) != 0) std::_Exit(4);
  const int list = ::open(std::getenv("AMBREL_DELIVERIES"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  writeWhole(list, std::to_string(number) + "\n");
  ::close(list);
  say("DOWNLOADED|" + path);
}

void obey(const std::string& command) {
  if (command.starts_with("CONNECT")) say("CONNECTED|");
  if (command == "PUMP_ACTIVE") say("PUMP_ACTIVE_READY|");
  if (command == "QUIT") std::_Exit(0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || !std::getenv("AMBREL_DELIVERIES")) return 2;
  ::alarm(60);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  sigaddset(&signals, SIGUSR2);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {::signalfd(-1, &signals, SFD_CLOEXEC), POLLIN, 0}};
  say("READY|OK");
  std::string commands;
  int next = 1;
  while (::poll(sources, 2, -1) > 0) {
    signalfd_siginfo signal = {};
    if ((sources[1].revents & POLLIN) != 0 && ::read(sources[1].fd, &signal, sizeof signal) > 0) {
      const int last = signal.ssi_signo == SIGUSR1 ? next : kPhotos;
      for (; next <= last && next <= kPhotos; ++next)
        deliver(argv[1], next);
    }
    if (sources[0].revents == 0) continue;
    char bytes[512];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) return 0;
    commands.append(bytes, static_cast<std::size_t>(count));
    for (std::size_t end = 0; (end = commands.find('\n')) != std::string::npos; commands.erase(0, end + 1))
      obey(commands.substr(0, end));
  }
  return 0;
}
