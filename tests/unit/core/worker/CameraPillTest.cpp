// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/worker/CameraPill.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

struct PillCase {
  const char* situation;
  PillInputs inputs;
  CameraPill pill;
};

// A camera nowhere in sight, everything set up for one.
PillInputs waiting() {
  PillInputs inputs;
  inputs.targetFolderSet = true;
  return inputs;
}

PillInputs with(PillInputs inputs, void (*change)(PillInputs&)) {
  change(inputs);
  return inputs;
}

void expectPills(const std::vector<PillCase>& cases) {
  for (const PillCase& c : cases) {
    const CameraPill pill = cameraPill(c.inputs);
    EXPECT_EQ(pill.text, c.pill.text) << c.situation;
    EXPECT_EQ(pill.color, c.pill.color) << c.situation;
    EXPECT_EQ(pill.toolTip, c.pill.toolTip) << c.situation;
  }
}

TEST(CameraPill, SaysInOneWordHowTheCameraStands) {
  expectPills({
      {"connected",
       with(waiting(), [](PillInputs& i) { i.cameraConnected = true; }),
       {"Connected", PillColor::Green, "Camera: Connected"}},
      {"connecting, with progress",
       with(waiting(),
            [](PillInputs& i) {
              i.connecting = true;
              i.cameraConnectDetail = "Opening camera session...";
            }),
       {"Connecting…", PillColor::Orange, "Camera: Opening camera session..."}},
      {"auto-connect searching",
       with(waiting(),
            [](PillInputs& i) {
              i.connecting = true;
              i.autoInitiatedConnect = true;
            }),
       {"Searching…", PillColor::Orange, "Camera: Searching…"}},
      {"connecting",
       with(waiting(), [](PillInputs& i) { i.connecting = true; }),
       {"Connecting…", PillColor::Orange, "Camera: Connecting…"}},
      {"failed",
       with(waiting(), [](PillInputs& i) { i.cameraError = "no"; }),
       {"Error", PillColor::Red, "Camera: Error"}},
      {"no folder",
       PillInputs{},
       {"No folder", PillColor::Secondary, "Camera: Set a Target Folder to connect"}},
      {"auto-connect off",
       with(waiting(), [](PillInputs& i) { i.autoConnect = false; }),
       {"Auto off", PillColor::Secondary, "Camera: Auto-connect off — use the Camera menu"}},
      {"manually disconnected",
       with(waiting(), [](PillInputs& i) { i.autoConnectSuppressed = true; }),
       {"Disconnected", PillColor::Secondary, "Camera: Unplug and replug to reconnect"}},
      {"detecting",
       with(waiting(), [](PillInputs& i) { i.detectRunning = true; }),
       {"Searching…", PillColor::Orange, "Camera: Searching…"}},
      {"nothing there", waiting(), {"No camera", PillColor::Orange, "Camera: Waiting for a camera"}},
  });
}

TEST(CameraPill, TakesTheFirstRowThatMatches) {
  PillInputs all;
  all.cameraConnected = true;
  all.connecting = true;
  all.autoInitiatedConnect = true;
  all.cameraError = "error";
  all.cameraConnectDetail = "detail";
  all.autoConnect = false;
  all.autoConnectSuppressed = true;
  all.detectRunning = true;
  const std::vector<std::pair<const char*, void (*)(PillInputs&)>> steps{
      {"Connected", [](PillInputs& i) { i.cameraConnected = false; }},
      {"Connecting…", [](PillInputs& i) { i.cameraError.clear(); }},          // the error hides the detail
      {"Connecting…", [](PillInputs& i) { i.cameraConnectDetail.clear(); }},  // the detail
      {"Searching…", [](PillInputs& i) { i.autoInitiatedConnect = false; }},  //
      {"Connecting…",
       [](PillInputs& i) {
         i.connecting = false;
         i.cameraError = "error";
       }},
      {"Error", [](PillInputs& i) { i.cameraError.clear(); }},
      {"No folder", [](PillInputs& i) { i.targetFolderSet = true; }},
      {"Auto off", [](PillInputs& i) { i.autoConnect = true; }},
      {"Disconnected", [](PillInputs& i) { i.autoConnectSuppressed = false; }},
      {"Searching…", [](PillInputs& i) { i.detectRunning = false; }},
      {"No camera", [](PillInputs&) {}},
  };
  for (const auto& [text, next] : steps) {
    EXPECT_EQ(cameraPill(all).text, QString(text));
    next(all);
  }
}

TEST(CameraPill, HidesProgressAndSearchWhileAnErrorIsShown) {
  PillInputs inputs = waiting();
  inputs.connecting = true;
  inputs.autoInitiatedConnect = true;
  inputs.cameraConnectDetail = "Opening camera session...";
  inputs.cameraError = "Camera busy";
  EXPECT_EQ(cameraPill(inputs), (CameraPill{"Connecting…", PillColor::Orange, "Camera: Connecting…"}));
}

}  // namespace
}  // namespace ambrel
