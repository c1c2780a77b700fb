// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/backup/FolderIdentity.h"

using namespace ambrel;

namespace {

class FolderIdentityTest : public ::testing::Test {
 protected:
  FolderIdentityTest() { QDir().mkpath(at("Shots/a/b")); }
  QString at(const QString& name) const { return folder.filePath(name); }
  FolderRelation relation(const QString& first, const QString& second) const {
    return relationOf(at(first), at(second));
  }
  QTemporaryDir folder;
};

}  // namespace

TEST_F(FolderIdentityTest, KnowsAFolderHoweverItsPathIsSpelled) {
  EXPECT_EQ(relation("Shots", "Shots"), FolderRelation::Same);
  EXPECT_EQ(relation("Shots/", "Shots/a/../../Shots/."), FolderRelation::Same);
  ASSERT_TRUE(QFile::link("Shots", at("Pictures")));
  EXPECT_EQ(relation("Pictures", "Shots"), FolderRelation::Same);
}

TEST_F(FolderIdentityTest, FindsAFolderInsideAnotherAtAnyDepth) {
  EXPECT_EQ(relation("Shots/a", "Shots"), FolderRelation::Inside);
  EXPECT_EQ(relation("Shots/a/b", "Shots"), FolderRelation::Inside);
  EXPECT_EQ(relation("Shots", "Shots/a/b"), FolderRelation::Around);
  EXPECT_EQ(relationOf("/", at("Shots")), FolderRelation::Around);
}

TEST_F(FolderIdentityTest, SeesThroughLinksToWhereAFolderReallyLies) {
  ASSERT_TRUE(QFile::link(at("Shots/a/b"), at("far away")));
  EXPECT_EQ(relation("far away", "Shots"), FolderRelation::Inside);
  EXPECT_EQ(relation("Shots", "far away"), FolderRelation::Around);
}

TEST_F(FolderIdentityTest, IsNotFooledByNamesThatBeginAlike) {
  QDir().mkpath(at("Shots2"));
  EXPECT_EQ(relation("Shots2", "Shots"), FolderRelation::Apart);
}

TEST_F(FolderIdentityTest, CallsFoldersApartThatCannotBeRead) {
  EXPECT_EQ(relation("gone", "Shots"), FolderRelation::Apart);
  EXPECT_EQ(relation("Shots", "gone"), FolderRelation::Apart);
  EXPECT_EQ(relationOf(QString(), QString()), FolderRelation::Apart);
}
