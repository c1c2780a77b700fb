// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <functional>

namespace ambrel::faults {

enum class Task {
  Shoot,    // four photos, each settled before the next one is taken
  Burst,    // four photos at once
  Camera,   // four photos by the real worker from a simulated camera
  Recover,  // no camera: only what a start and the timers do
};

// Runs the whole core without a window on `home`, with a real worker process and time played, says in the
// report what an operator would have seen, and ends the process.
// `shutter` takes the next photo of a simulated camera.
[[noreturn]] void runSession(const QString& home, const QString& bundle, Task task,
                             const std::function<void()>& shutter = {});
// Has the sessions of this process note in the log of calls which photos leave the queue's file, and when.
void noteQueueFile();

}  // namespace ambrel::faults
