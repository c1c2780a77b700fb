// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

// What a process takes of the machine, read from /proc; the benchmark ends where it cannot be read.
namespace ambrel::bench {

qint64 residentBytes(qint64 pid);
// Of the process and of all that it has started and that still runs.
double processorSeconds(qint64 pid);
// How many those are, the process itself included.
int processesOf(qint64 pid);

}  // namespace ambrel::bench
