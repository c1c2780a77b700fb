// SPDX-License-Identifier: Apache-2.0
// The simulated camera is held to a host that is not ours: Debian's gphoto2.
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "GphotoProgram.h"
#include "support/SimulatedCamera.h"

using ambrel::GphotoProgram;
using ambrel::sha256OfFile;
using ambrel::SimulatedCamera;
using ambrel::SimulatedPhoto;

namespace {

constexpr const char* kFromCard = "/main/settings/capturetarget=1";
constexpr const char* kFromHost = "/main/settings/capturetarget=0";

class Gphoto : public ::testing::Test {
 protected:
  // Has gphoto2 fetch `shots` exposures while it waits for photos, and returns the checksums by file name.
  std::map<std::string, std::string> tether(const char* target, std::size_t shots, const std::string& how) {
    // Setting the target starts the events; what is taken before that nobody announces.
    _gphoto.start({"--set-config", target, "--keep", "--capture-tethered"});
    EXPECT_TRUE(_gphoto.waitFor("Waiting for events")) << _gphoto.printed();
    _camera.command("shoot n=" + std::to_string(shots) + " " + how);
    EXPECT_TRUE(_gphoto.waitFor("CAPTURECOMPLETE", shots)) << _gphoto.printed();
    _gphoto.stop();
    std::map<std::string, std::string> sums;
    for (const auto& entry : std::filesystem::directory_iterator(_gphoto.folder())) {
      if (entry.is_regular_file()) sums[entry.path().filename().string()] = sha256OfFile(entry.path());
    }
    return sums;
  }

  // From the card a file keeps its name.
  void expectFromCard(std::size_t shots, const std::string& how) {
    const auto saved = tether(kFromCard, shots, how);
    std::map<std::string, std::string> taken;
    for (const SimulatedPhoto& photo : _camera.photos()) {
      EXPECT_EQ(photo.place, "card");
      EXPECT_EQ(photo.asked, 1U) << photo.name;
      taken[photo.name] = photo.sha256;
    }
    EXPECT_GE(taken.size(), shots);
    EXPECT_EQ(saved, taken) << _gphoto.printed();
  }

  // From the host's memory gphoto2 counts the files itself, in the order of their announcement.
  void expectFromHost(std::size_t shots, const std::string& how) {
    const auto saved = tether(kFromHost, shots, how);
    std::vector<std::string> taken;
    for (const SimulatedPhoto& photo : _camera.photos()) {
      EXPECT_EQ(photo.place, "host");
      EXPECT_EQ(photo.asked, 1U) << photo.name;
      taken.push_back(photo.sha256);
    }
    std::vector<std::string> inOrder;
    for (const auto& [name, sum] : saved) {
      EXPECT_TRUE(name.starts_with("capt")) << name;
      inOrder.push_back(sum);
    }
    EXPECT_GE(taken.size(), shots);
    EXPECT_EQ(inOrder, taken) << _gphoto.printed();
  }

  SimulatedCamera _camera{{"--jpeg-size", "600x400"}};
  GphotoProgram _gphoto{_camera.gphotoPort()};
};

TEST_F(Gphoto, TellsWhatTheCameraIs) {
  const std::string summary = _gphoto.run({"--summary"});
  EXPECT_EQ(_gphoto.status(), 0) << summary;
  for (const std::string line :
       {"Manufacturer: Canon.Inc", "Model: Canon EOS R6", "Serial Number: 012345678901",
        "store_00010001:", "Maximum Capability: 68719476736", "Canon EOS Capture"}) {
    EXPECT_NE(summary.find(line), std::string::npos) << line << "\n" << summary;
  }
}

TEST_F(Gphoto, SetsTheCaptureTarget) {
  const std::string before = _gphoto.run({"--get-config", "capturetarget"});
  EXPECT_NE(before.find("Current: Internal RAM"), std::string::npos) << before;
  _gphoto.run({"--set-config", "capturetarget=1"});
  EXPECT_EQ(_gphoto.status(), 0) << _gphoto.printed();
  const std::string after = _gphoto.run({"--get-config", "capturetarget"});
  EXPECT_NE(after.find("Current: Memory card"), std::string::npos) << after;
}

TEST_F(Gphoto, FetchesABurstFromTheCard) {
  expectFromCard(20, "size=300000");
}

TEST_F(Gphoto, FetchesABurstFromTheHostsMemory) {
  expectFromHost(20, "size=300000");
}

TEST_F(Gphoto, FetchesRawFilesFromTheCard) {
  expectFromCard(3, "kind=raw size=12000000");
}

TEST_F(Gphoto, FetchesRawFilesFromTheHostsMemory) {
  expectFromHost(3, "kind=raw size=12000000");
}

TEST_F(Gphoto, FetchesPairsFromTheCard) {
  expectFromCard(5, "kind=pair size=2000000 rawsize=1048577");
}

TEST_F(Gphoto, FetchesPairsFromTheHostsMemory) {
  expectFromHost(5, "kind=pair first=raw size=1048576");
}

TEST_F(Gphoto, FetchesOverASlowLink) {
  _camera.command("set rate=4000000");
  expectFromCard(2, "size=1500000");
}

TEST_F(Gphoto, ListsPhotosThatNobodyAnnounced) {
  _camera.command("set silent=1");
  _camera.command("shoot n=2 kind=pair");
  const std::string listed = _gphoto.run({"--list-files"});
  EXPECT_EQ(_gphoto.status(), 0) << listed;
  for (const SimulatedPhoto& photo : _camera.photos()) {
    EXPECT_NE(listed.find(photo.name), std::string::npos) << listed;
  }
}

TEST_F(Gphoto, FindsNoCardWhereThereIsNone) {
  _camera.command("shoot");
  _camera.command("card in=0");
  const std::string listed = _gphoto.run({"--list-files"});
  EXPECT_EQ(listed.find("IMG_0001"), std::string::npos) << listed;
  const std::string storage = _gphoto.run({"--storage-info"});
  EXPECT_EQ(_gphoto.status(), 0) << storage;
  EXPECT_EQ(storage.find("store_00010001"), std::string::npos) << storage;
}

TEST_F(Gphoto, PressesTheShutter) {
  _gphoto.run({"--set-config", kFromCard, "--capture-image-and-download", "--keep"});
  EXPECT_EQ(_gphoto.status(), 0) << _gphoto.printed();
  const std::vector<SimulatedPhoto> photos = _camera.photos();
  ASSERT_EQ(photos.size(), 1U);
  EXPECT_EQ(sha256OfFile(_gphoto.folder() / "IMG_0001.JPG"), photos[0].sha256) << _gphoto.printed();
}

TEST_F(Gphoto, LosesACutTransferAndGetsThePhotoInTheNextSession) {
  _gphoto.start({"--set-config", kFromCard, "--keep", "--capture-tethered"});
  ASSERT_TRUE(_gphoto.waitFor("Waiting for events")) << _gphoto.printed();
  _camera.command("cable in=0 after=700000");
  _camera.command("shoot size=3000000");
  EXPECT_TRUE(_gphoto.waitFor("ERROR")) << _gphoto.printed();
  _gphoto.stop();
  EXPECT_NE(_camera.command("status").find("cable=0"), std::string::npos);

  _gphoto.run({"--list-files"});
  EXPECT_NE(_gphoto.status(), 0) << "nobody reaches a camera without its cable";
  _camera.command("cable in=1");
  _gphoto.run({"--get-all-files", "--force-overwrite"});
  EXPECT_EQ(_gphoto.status(), 0) << _gphoto.printed();
  EXPECT_EQ(sha256OfFile(_gphoto.folder() / "IMG_0001.JPG"), _camera.photos()[0].sha256);
}

}  // namespace
