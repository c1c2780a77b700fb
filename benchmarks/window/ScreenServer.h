// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

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
  pid_t _pid = -1;
};

}  // namespace ambrel::bench
