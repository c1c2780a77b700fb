// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <gtest/gtest.h>

#include "demo/DemoCamera.h"

using namespace ambrel;

namespace {

TEST(DemoCamera, ReadsTheHashesOutOfAnAnswer) {
  const QString hash(64, QLatin1Char('a'));
  EXPECT_EQ(hashesInAnswer({"photo name=IMG_0001.JPG size=1 sha256=" + hash + " shot=1 place=card", "noise"}),
            QStringList{hash});
}

TEST(DemoCamera, SaysThatItsProgramIsMissing) {
  DemoCamera camera("/no such program", DemoCamera::Console::None);
  const Result<void> started = camera.startAndWait();
  EXPECT_FALSE(started);
  EXPECT_TRUE(started.error().startsWith("The simulated camera: ")) << started.error().toStdString();
}

TEST(DemoCamera, SaysThatItsProgramIsNoCamera) {
  DemoCamera camera("/bin/true", DemoCamera::Console::None);
  EXPECT_FALSE(camera.startAndWait());
}

}  // namespace
