// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "support/SimulatedCamera.h"
#include "support/TemporaryFolder.h"
#include "support/WorkerProcess.h"

namespace ambrel {

// A simulated camera, a download folder and the worker between them.
class WorkerSession : public ::testing::Test {
 protected:
  // Starts a worker, killing the one before.
  WorkerProcess& start(const std::string& mode = "both", std::vector<std::string> under = {});
  // The same, and has it connect and watch.
  WorkerProcess& watch(const std::string& mode = "both");
  // After each test: whatever the worker wrote was a whole line of the protocol.
  void TearDown() override;

  // Waits for the next photo to be reported. Its bytes stand under `path` from then on.
  std::string waitForPath();
  // The checksums of the next `count` reported photos, in order.
  std::vector<std::string> waitForPhotos(std::size_t count);
  // Those of all photos the camera ever took, in order.
  std::vector<std::string> takenPhotos();
  // Fails if the worker reports any photo within this time.
  void expectNoMorePhotos(std::chrono::milliseconds within);

  SimulatedCamera camera;
  test::TemporaryFolder folder;
  std::chrono::seconds startPatience = WorkerProcess::kPatience;
  std::unique_ptr<WorkerProcess> worker;
};

// The number in an environment variable, or `otherwise`.
int numberFromEnvironment(const char* variable, int otherwise);

// Milliseconds that `action` takes.
template <typename Action>
std::chrono::milliseconds timeOf(Action action) {
  const auto begun = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begun);
}

}  // namespace ambrel
