// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <gtest/gtest.h>

#include "camera/FileMove.h"
#include "support/TemporaryFolder.h"

namespace ambrel::camera {
namespace {

using Move = int (*)(const std::string&, const std::string&);

// Every way of moving keeps the same promises.
class FileMove : public ::testing::TestWithParam<Move> {
 protected:
  test::TemporaryFolder folder;
};

TEST_P(FileMove, MovesAFileToAFreeName) {
  folder.write("part", "photo");
  EXPECT_EQ(GetParam()(folder.file("part"), folder.file("final")), 0);
  EXPECT_EQ(folder.read("final"), "photo");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"final"});
}

TEST_P(FileMove, NeverReplacesAFile) {
  folder.write("part", "photo");
  folder.write("final", "older");
  EXPECT_EQ(GetParam()(folder.file("part"), folder.file("final")), EEXIST);
  EXPECT_EQ(folder.read("final"), "older");
  EXPECT_EQ(folder.read("part"), "photo");
}

TEST_P(FileMove, LeavesNothingUnderTheNewNameWhenTheFileIsGone) {
  EXPECT_EQ(GetParam()(folder.file("gone"), folder.file("final")), ENOENT);
  EXPECT_TRUE(folder.names().empty());
}

INSTANTIATE_TEST_SUITE_P(EveryWay, FileMove,
                         ::testing::Values(&renameExclusively, &linkAndUnlink, &reserveAndRename,
                                           &moveWithoutOverwriting));

}  // namespace
}  // namespace ambrel::camera
