// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace ambrel::bench {

// A program that is started afterwards does not outlive this process, however that ends.
inline void endWithParent(QProcess& program) {
  program.setChildProcessModifier([parent = ::getpid()] {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(127);  // it has ended already
  });
}

}  // namespace ambrel::bench
