// SPDX-License-Identifier: Apache-2.0
#include "core/platform/QuitSignals.h"

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <signal.h>
#include <unistd.h>

namespace ambrel {
namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler gets no argument of ours. Lock-free, as a handler may use nothing else.
std::atomic<int> wakeDescriptor{-1};

void wakeEventLoop(int) {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor, &byte, 1);
}

void installHandler(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  for (const int number : kSignals)
    ::sigaction(number, &action, nullptr);
}

}  // namespace

QuitSignals::QuitSignals() {
  Result<Pipe> pipe = makePipe();
  if (!pipe) return;
  _pipe = std::move(pipe).value();
  _pipe.readEnd.stopWaiting();
  _pipe.writeEnd.stopWaiting();
  _notifier = std::make_unique<QSocketNotifier>(_pipe.readEnd.descriptor(), QSocketNotifier::Read);
  connect(_notifier.get(), &QSocketNotifier::activated, this, [this] {
    char byte = 0;
    if (::read(_pipe.readEnd.descriptor(), &byte, 1) == 1) Q_EMIT quitRequested();
  });
  wakeDescriptor = _pipe.writeEnd.descriptor();
  installHandler(wakeEventLoop);
}

QuitSignals::~QuitSignals() {
  installHandler(SIG_DFL);
  wakeDescriptor = -1;
}

}  // namespace ambrel
