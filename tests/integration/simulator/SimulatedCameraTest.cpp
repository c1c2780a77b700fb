// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/SimulatedCamera.h"

using ambrel::SimulatedCamera;
using ambrel::SimulatedPhoto;

namespace {

TEST(SimulatedCamera, ListsWhatWasTaken) {
  SimulatedCamera camera({"--jpeg-size", "160x120"});
  EXPECT_EQ(camera.command("shoot n=2 kind=pair"), "ok first=1 last=2 files=4");
  const std::vector<SimulatedPhoto> photos = camera.photos();
  ASSERT_EQ(photos.size(), 4U);
  EXPECT_EQ(photos[0].name, "IMG_0001.JPG");
  EXPECT_EQ(photos[1].name, "IMG_0001.CR3");
  EXPECT_EQ(photos[1].shot, 1U);
  EXPECT_EQ(photos[3].name, "IMG_0002.CR3");
  EXPECT_EQ(photos[3].shot, 2U);
  EXPECT_EQ(photos[0].place, "card");
  EXPECT_EQ(photos[0].sha256.size(), 64U);
  EXPECT_NE(photos[0].sha256, photos[2].sha256);
}

TEST(SimulatedCamera, AnswersWhatItCannotDoWithAnError) {
  SimulatedCamera camera;
  EXPECT_EQ(camera.answer("dance"), "error unknown command dance");
  EXPECT_EQ(camera.answer("shoot kind=film"), "error bad or missing value kind");
  EXPECT_THROW(camera.command("dance"), std::runtime_error);
  EXPECT_EQ(camera.photos().size(), 0U);
}

TEST(SimulatedCamera, EndsByOrderAndTheTestLearnsOfIt) {
  SimulatedCamera camera;
  EXPECT_EQ(camera.command("quit"), "ok");
  EXPECT_THROW(
      {
        camera.command("status");
        camera.command("status");
      },
      std::runtime_error);
}

TEST(SimulatedCamera, TakesEachItsOwnPorts) {
  SimulatedCamera one;
  SimulatedCamera two;
  EXPECT_NE(one.port(), two.port());
  EXPECT_NE(one.controlPort(), two.controlPort());
}

}  // namespace
