// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>

namespace ambrel::bench {

// An X server without a screen, under a number that no other has, for as long as this lives. The environment
// of this process names it. Ends the benchmark where it does not start.
class ScreenServer {
 public:
  ScreenServer();
  ~ScreenServer();
  ScreenServer(const ScreenServer&) = delete;
  ScreenServer& operator=(const ScreenServer&) = delete;

 private:
  QProcess _server;
};

}  // namespace ambrel::bench
