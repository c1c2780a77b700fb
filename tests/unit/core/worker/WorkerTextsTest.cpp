// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/worker/WorkerTexts.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

TEST(WorkerTexts, TellTheProgressInTheOperatorsWords) {
  const std::pair<const char*, const char*> cases[] = {
      {"Loading Canon SDK", "Loading Canon camera SDK..."},
      {"waiting for camera USB (3)", "Looking for camera over USB..."},
      {"Connecting to camera", "Connecting to camera..."},
      {"opening camera session", "Opening camera session..."},
      {"setting save destination", "Setting camera save mode..."},
      {"checking camera memory card", "Checking camera memory card..."},
      {"Connected", "Camera connected. Ready to start watching."},
      {"camera disconnected", "Camera connected. Ready to start watching."},  // contains "connected"
  };
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(friendlyStatusForWorker(text), shown) << text;
  }
}

TEST(WorkerTexts, LetTheFirstTranslationDecide) {
  EXPECT_EQ(friendlyStatusForWorker("connected, opening camera session"), "Opening camera session...");
}

TEST(WorkerTexts, KeepAnUnknownText) {
  EXPECT_EQ(friendlyStatusForWorker("Réglage de l'objectif"), "Réglage de l'objectif");
  EXPECT_EQ(friendlyStatusForWorker(""), "");
}

}  // namespace
}  // namespace ambrel
