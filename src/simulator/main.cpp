// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <poll.h>
#include <signal.h>
#include <unistd.h>
#include <vector>

#include "simulator/ControlServer.h"
#include "simulator/Options.h"
#include "simulator/PtpIpServer.h"

namespace {

using namespace ambrel::simulator;

void run(PtpIpServer& server, ControlServer& control, const Commands& commands) {
  std::vector<pollfd> polled;
  while (!control.inputEnded() && !(commands.quitAsked() && control.allAnswered())) {
    polled.clear();
    server.watch(polled);
    control.watch(polled);
    if (::poll(polled.data(), polled.size(), server.timeoutMs(Link::Clock::now())) < 0) continue;
    // Commands first, so that a cut holds for what the host asked in the meantime.
    control.serve(polled);
    server.serve(Link::Clock::now());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parse_options({argv + 1, argv + argc});
  if (options.help) {
    std::cout << help_text();
    return 0;
  }
  if (!options.error.empty()) {
    std::cerr << options.error << "; --help tells more\n";
    return 2;
  }
  // A host or a reader that goes away is noticed by the failing write.
  ::signal(SIGPIPE, SIG_IGN);

  CameraModel camera(options.camera);
  PtpIpServer server(camera);
  Commands commands(camera, server);
  ControlServer control(commands);
  if (!server.listen(options.port) || !control.listen(options.controlPort)) {
    std::cerr << "a port is taken by another program\n";
    return 1;
  }
  if (options.standardInput) control.attach(STDIN_FILENO, STDOUT_FILENO);
  std::cout << "READY ptpip=" << server.port() << " control=" << control.port() << std::endl;
  run(server, control, commands);
  return 0;
}
