// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
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

// Two answers to "how long may poll() wait", of which negative is for ever.
int sooner(int oneMs, int otherMs) {
  if (oneMs < 0 || otherMs < 0) return std::max(oneMs, otherMs);
  return std::min(oneMs, otherMs);
}

struct Program {
  explicit Program(const CameraModel::Settings& settings) : camera(settings) {}

  CameraModel camera;
  Shutter shutter{camera};
  PtpIpServer server{camera};
  Commands commands{camera, shutter, server};
  ControlServer control{commands};

  bool ended() const { return control.inputEnded() || (commands.quitAsked() && control.allAnswered()); }

  void run() {
    std::vector<pollfd> polled;
    while (!ended()) {
      polled.clear();
      server.watch(polled);
      control.watch(polled);
      const auto before = Link::Clock::now();
      const int timeoutMs = sooner(server.timeoutMs(before), shutter.timeoutMs(before));
      if (::poll(polled.data(), polled.size(), timeoutMs) < 0) continue;
      // Commands first, so that a cut holds for what the host asked in the meantime.
      control.serve(polled);
      shutter.proceed(Shutter::Clock::now());
      server.serve(Link::Clock::now());
    }
  }
};

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

  Program program(options.camera);
  if (!program.server.listen(options.port) || !program.control.listen(options.controlPort)) {
    std::cerr << "a port is taken by another program\n";
    return 1;
  }
  if (options.standardInput) program.control.attach(STDIN_FILENO, STDOUT_FILENO);
  std::cout << "READY ptpip=" << program.server.port() << " control=" << program.control.port() << std::endl;
  program.run();
  return 0;
}
