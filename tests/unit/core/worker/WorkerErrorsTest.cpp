// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/worker/WorkerErrors.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

TEST(WorkerErrors, AreToldApartByTheirText) {
  const std::pair<const char*, WorkerError> cases[] = {
      {"download failed: no space left", WorkerError::StorageWrite},
      {"EdsCreateFileStream returned 0x22", WorkerError::StorageWrite},
      {"Storage is full", WorkerError::StorageWrite},
      {"Disk error", WorkerError::StorageWrite},
      {"Camera Busy", WorkerError::CameraBusy},
      {"open session: 0x000000C0", WorkerError::CameraBusy},
      {"Camera not detected", WorkerError::CameraNotDetected},
      {"something else", WorkerError::Other},
      {"", WorkerError::Other},
  };
  for (const auto& [text, error] : cases) {
    EXPECT_EQ(classifyWorkerError(text), error) << text;
  }
}

TEST(WorkerErrors, AreStorageFailuresBeforeAnythingElse) {
  EXPECT_EQ(classifyWorkerError("DOWNLOAD FAILED (0x000000C0)"), WorkerError::StorageWrite);
  EXPECT_EQ(classifyWorkerError("camera not detected while writing to disk"), WorkerError::StorageWrite);
}

TEST(WorkerErrors, AreBusyBeforeTheyAreNotDetected) {
  EXPECT_EQ(classifyWorkerError("camera not detected, camera busy"), WorkerError::CameraBusy);
}

TEST(WorkerErrors, AreShownInTheOperatorsWords) {
  EXPECT_EQ(workerErrorStatus(WorkerError::StorageWrite, "x"),
            "Storage write failed. Check laptop free space and camera memory card space.");
  EXPECT_EQ(workerErrorStatus(WorkerError::CameraBusy, "x"),
            "Camera busy — close EOS Utility / Photos / Image Capture, or replug the camera. Retrying…");
  EXPECT_EQ(workerErrorStatus(WorkerError::CameraNotDetected, "x"),
            "Camera not detected. Check USB/camera power. Retrying...");
}

TEST(WorkerErrors, KeepTheWorkersOwnTextWhenUnknown) {
  EXPECT_EQ(workerErrorStatus(WorkerError::Other, "Lens Cap ON"), "Lens Cap ON");
}

}  // namespace
}  // namespace ambrel
