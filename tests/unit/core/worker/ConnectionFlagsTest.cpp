// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/worker/ConnectionFlags.h"

namespace ambrel {
namespace {

using Change = void (*)(ConnectionFlags&);

ConnectionFlags flagsWith(Change change) {
  ConnectionFlags flags;
  change(flags);
  return flags;
}

TEST(ConnectionFlags, LetAutoConnectStartOnlyFromRest) {
  EXPECT_TRUE(autoConnectIsDue({}, false));
  EXPECT_FALSE(autoConnectIsDue({}, true)) << "a worker runs";
  const Change obstacles[] = {
      [](ConnectionFlags& f) { f.autoConnect = false; },
      [](ConnectionFlags& f) { f.cameraConnected = true; },
      [](ConnectionFlags& f) { f.pendingConnect = true; },
      [](ConnectionFlags& f) { f.connectRequested = true; },
      [](ConnectionFlags& f) { f.autoConnectSuppressed = true; },
  };
  for (const Change obstacle : obstacles) {
    EXPECT_FALSE(autoConnectIsDue(flagsWith(obstacle), false));
  }
}

TEST(ConnectionFlags, MakeOneControlConnectOrDisconnect) {
  const auto connected = flagsWith([](ConnectionFlags& f) { f.cameraConnected = true; });
  const auto retrying = flagsWith([](ConnectionFlags& f) { f.connectRequested = true; });
  const auto pending = flagsWith([](ConnectionFlags& f) { f.connectRequested = f.pendingConnect = true; });
  EXPECT_EQ(toggleChoice(connected, true), ToggleChoice::Disconnect);
  EXPECT_EQ(toggleChoice(retrying, true), ToggleChoice::Disconnect);
  EXPECT_EQ(toggleChoice(retrying, false), ToggleChoice::Connect);
  EXPECT_EQ(toggleChoice(pending, true), ToggleChoice::Connect);
  EXPECT_EQ(toggleChoice({}, true), ToggleChoice::Connect);
  EXPECT_EQ(toggleChoice({}, false), ToggleChoice::Connect);
}

TEST(ConnectionFlags, WantARetryUntilTheOperatorDisconnects) {
  EXPECT_FALSE(retryIsWanted({}));
  EXPECT_TRUE(retryIsWanted(flagsWith([](ConnectionFlags& f) { f.connectRequested = true; })));
  EXPECT_FALSE(
      retryIsWanted(flagsWith([](ConnectionFlags& f) { f.connectRequested = f.manualDisconnect = true; })));
}

TEST(ConnectionFlags, SayWhatTheEndOfTheWorkerMeans) {
  for (const bool restarting : {false, true}) {
    for (const bool manual : {false, true}) {
      for (const bool requested : {false, true}) {
        ConnectionFlags flags;
        flags.restartingWorkerForConnect = restarting;
        flags.manualDisconnect = manual;
        flags.connectRequested = requested;
        const ExitReaction expected = restarting  ? ExitReaction::RestartWorker
                                      : manual    ? ExitReaction::Silent
                                      : requested ? ExitReaction::ConnectionLost
                                                  : ExitReaction::WorkerStopped;
        EXPECT_EQ(exitReaction(flags), expected) << restarting << manual << requested;
      }
    }
  }
}

TEST(ConnectionFlags, WantWatchingWithCameraFolderAndNames) {
  ConnectionFlags connected;
  connected.cameraConnected = true;
  ConnectionFlags watching = connected;
  watching.watching = true;
  ConnectionFlags lost;
  lost.watching = true;
  EXPECT_EQ(watchStep(connected, true, true), WatchStep::Start);
  EXPECT_EQ(watchStep(connected, false, true), WatchStep::None);
  EXPECT_EQ(watchStep(connected, true, false), WatchStep::None);
  EXPECT_EQ(watchStep({}, true, true), WatchStep::None);
  EXPECT_EQ(watchStep(watching, true, true), WatchStep::None);
  EXPECT_EQ(watchStep(watching, false, true), WatchStep::Stop);
  EXPECT_EQ(watchStep(watching, true, false), WatchStep::Stop);
  EXPECT_EQ(watchStep(lost, true, true), WatchStep::Stop);
}

}  // namespace
}  // namespace ambrel
