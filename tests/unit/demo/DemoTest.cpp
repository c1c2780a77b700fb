// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <optional>

#include "demo/Demo.h"
#include "support/AppSession.h"

using namespace ambrel;

namespace {

TEST(Demo, EndsWithOneWhenNoPhotoArrivesInTime) {
  AppSession session;
  session.launch();
  DemoCamera camera("/no such program", DemoCamera::Console::None);
  const SampleShoot shoot{session.locations, {}, session.path("Photos")};
  Demo demo(Demo::Mode::Unattended, session.clock, shoot, camera);
  std::optional<int> exitCode;
  QObject::connect(&demo, &Demo::finished, &demo, [&](int code) { exitCode = code; });
  demo.run(*session.app, [](const QString&) { return true; });
  session.clock.advance(Demo::kLimit);
  EXPECT_EQ(exitCode, 1);
}

TEST(Demo, LeavesTheApplicationToTheOperatorWhenDrivenByHand) {
  AppSession session;
  session.launch();
  DemoCamera camera("/no such program", DemoCamera::Console::None);
  Demo demo(Demo::Mode::ByHand, session.clock, {session.locations, {}, session.path("Photos")}, camera);
  bool over = false;
  QObject::connect(&demo, &Demo::finished, &demo, [&] { over = true; });
  demo.run(*session.app, [](const QString&) { return true; });
  session.clock.advance(2 * Demo::kLimit);
  EXPECT_FALSE(over);
}

}  // namespace
