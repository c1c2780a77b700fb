// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/capture/FolderToShow.h"

namespace ambrel {
namespace {

const PersonsFolders kAnn{"Ann", {"/t/Ann_FR", "/t/Ann_Lee"}};
const PersonsFolders kBen{"Ben %1", {}};

TEST(FolderToShow, IsTheFirstOfThePersonsOwn) {
  EXPECT_EQ(folderOfSelectedRow(kAnn, "/t"), (FolderToShow{"/t/Ann_FR", ""}));
  EXPECT_EQ(folderOfMenuRow(kAnn, "/t"), (FolderToShow{"/t/Ann_FR", ""}));
}

TEST(FolderToShow, IsTheTargetFolderForAPersonWithoutPhotos) {
  EXPECT_EQ(folderOfSelectedRow(kBen, "/t"),
            (FolderToShow{"/t", "No photo folder yet for \"Ben %1\" — opening the target folder."}));
  EXPECT_EQ(folderOfMenuRow(kBen, "/t"), (FolderToShow{"/t", "No photo folder exists yet for \"Ben %1\"."}));
}

TEST(FolderToShow, IsNoneWithoutATargetFolder) {
  EXPECT_EQ(folderOfSelectedRow(kBen, ""), FolderToShow());
  EXPECT_EQ(folderOfMenuRow(kBen, ""), (FolderToShow{"", "No photo folder exists yet for \"Ben %1\"."}));
  EXPECT_EQ(folderOfSelectedRow(std::nullopt, ""), FolderToShow());
}

TEST(FolderToShow, WithoutAPersonTheButtonOpensTheTargetFolderAndTheMenuNothing) {
  EXPECT_EQ(folderOfSelectedRow(std::nullopt, "/t"), FolderToShow{"/t"});
  EXPECT_EQ(folderOfMenuRow(std::nullopt, "/t"), FolderToShow());
}

}  // namespace
}  // namespace ambrel
