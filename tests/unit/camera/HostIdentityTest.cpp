// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <optional>

#include "camera/HostIdentity.h"
#include "support/TemporaryFolder.h"

namespace ambrel::camera {
namespace {

const std::string kIdentity = "00:11:22:33:44:55:66:77:88:99:aa:bb:cc:dd:ee:ff";

class HostIdentity : public ::testing::Test {
 protected:
  HostIdentity() {
    for (const char* name : {"AMBREL_HOME", "XDG_DATA_HOME", "HOME"}) {
      const char* value = std::getenv(name);
      if (value != nullptr) before[name] = value;
      unsetenv(name);
    }
    setenv("AMBREL_HOME", home.path().c_str(), 1);
  }
  ~HostIdentity() override {
    for (const char* name : {"AMBREL_HOME", "XDG_DATA_HOME", "HOME"})
      unsetenv(name);
    for (const auto& [name, value] : before)
      setenv(name.c_str(), value.c_str(), 1);
  }
  void keep(const std::string& text) {
    std::filesystem::create_directories(home.file("data/Ambrel Tether"));
    home.write("data/Ambrel Tether/camera-host-id", text);
  }
  std::string kept() { return home.read("data/Ambrel Tether/camera-host-id"); }

  std::map<std::string, std::string> before;
  ambrel::test::TemporaryFolder home;
};

TEST_F(HostIdentity, IsMadeOnceAndKept) {
  const std::string made = hostIdentity();
  EXPECT_EQ(made.size(), kIdentity.size());
  EXPECT_EQ(made.find_first_not_of("0123456789abcdef:"), std::string::npos);
  EXPECT_EQ(kept(), made + "\n");
  EXPECT_EQ(hostIdentity(), made);
}

TEST_F(HostIdentity, IsAnotherOneForAnotherUser) {
  const std::string made = hostIdentity();
  const ambrel::test::TemporaryFolder other;
  setenv("AMBREL_HOME", other.path().c_str(), 1);
  EXPECT_NE(hostIdentity(), made);
}

TEST_F(HostIdentity, IsTheOneThatStandsThere) {
  keep(kIdentity + "\n");
  EXPECT_EQ(hostIdentity(), kIdentity);
}

TEST_F(HostIdentity, IsMadeAnewWhereTheFileHoldsNone) {
  for (const std::string& bad : {std::string(), std::string("nonsense"), kIdentity.substr(1), kIdentity + "0",
                                 "x" + kIdentity.substr(1)}) {
    keep(bad);
    const std::string made = hostIdentity();
    EXPECT_EQ(kept(), made + "\n") << bad;
  }
}

TEST_F(HostIdentity, LeavesNothingElseBehind) {
  hostIdentity();
  EXPECT_EQ(home.names(), std::vector<std::string>{"data"});
  const std::filesystem::directory_iterator files(home.file("data/Ambrel Tether"));
  EXPECT_EQ(std::distance(files, {}), 1);
}

TEST_F(HostIdentity, IsThereEvenWhereNothingCanBeKept) {
  setenv("AMBREL_HOME", "/sys/no/such/folder", 1);
  EXPECT_EQ(hostIdentity().size(), kIdentity.size());
  unsetenv("AMBREL_HOME");
  EXPECT_EQ(hostIdentityFile(), "");
  EXPECT_EQ(hostIdentity().size(), kIdentity.size());
}

TEST_F(HostIdentity, StandsInTheDataFolderOfTheUser) {
  EXPECT_EQ(hostIdentityFile(), home.file("data/Ambrel Tether/camera-host-id"));
  unsetenv("AMBREL_HOME");
  setenv("HOME", "/home/jo", 1);
#if defined(__APPLE__)
  EXPECT_EQ(hostIdentityFile(), "/home/jo/Library/Application Support/Ambrel Tether/camera-host-id");
#else
  EXPECT_EQ(hostIdentityFile(), "/home/jo/.local/share/Ambrel Tether/camera-host-id");
  setenv("XDG_DATA_HOME", "/data", 1);
  EXPECT_EQ(hostIdentityFile(), "/data/Ambrel Tether/camera-host-id");
#endif
}

}  // namespace
}  // namespace ambrel::camera
