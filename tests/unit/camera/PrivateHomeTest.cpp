// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "camera/PrivateHome.h"
#include "support/TemporaryFolder.h"

namespace ambrel::camera {
namespace {

namespace fs = std::filesystem;

class PrivateHome : public ::testing::Test {
 protected:
  PrivateHome() { setenv("TMPDIR", temporary.path().c_str(), 1); }
  ~PrivateHome() override {
    unsetenv("TMPDIR");
    setenv("HOME", oldHome.c_str(), 1);
  }
  // A process that has ended.
  static pid_t deadProcess() {
    const pid_t pid = fork();
    if (pid == 0) _exit(0);
    waitpid(pid, nullptr, 0);
    return pid;
  }

  std::string oldHome = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "/";
  ambrel::test::TemporaryFolder temporary;
};

TEST_F(PrivateHome, IsTheHomeOfThisProcessForAsLongAsItLives) {
  {
    const camera::PrivateHome home;
    EXPECT_EQ(std::getenv("HOME"), home.path());
    EXPECT_TRUE(fs::is_directory(home.path()));
    fs::create_directory(home.path() + "/.gphoto");
  }
  EXPECT_TRUE(temporary.names().empty());
}

TEST_F(PrivateHome, IsAnotherOneEachTime) {
  const camera::PrivateHome one;
  const camera::PrivateHome two;
  EXPECT_NE(one.path(), two.path());
  EXPECT_EQ(temporary.names().size(), 2u) << "that of a living process is kept";
}

TEST_F(PrivateHome, RemovesThoseOfDeadProcessesOnly) {
  const std::string dead = std::to_string(deadProcess());
  fs::create_directories(temporary.file("ambrel-worker-" + dead + "-abcdef/.gphoto"));
  fs::create_directory(temporary.file("ambrel-worker-1-abcdef"));
  fs::create_directory(temporary.file("ambrel-worker-notes"));
  temporary.write("ambrel-worker-" + dead + "-file", "not a folder");
  { const camera::PrivateHome home; }
  std::vector<std::string> kept{"ambrel-worker-1-abcdef", "ambrel-worker-" + dead + "-file",
                                "ambrel-worker-notes"};
  std::sort(kept.begin(), kept.end());
  EXPECT_EQ(temporary.names(), kept);
}

TEST_F(PrivateHome, LeavesHomeAsItIsWhenThereIsNoTemporaryFolder) {
  setenv("TMPDIR", temporary.file("gone").c_str(), 1);
  const camera::PrivateHome home;
  EXPECT_EQ(std::getenv("HOME"), oldHome);
  EXPECT_EQ(home.path(), "");
}

}  // namespace
}  // namespace ambrel::camera
