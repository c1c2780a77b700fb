// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/base/Locations.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

class LocationsTest : public ::testing::Test {
 protected:
  ~LocationsTest() override { qunsetenv("AMBREL_HOME"); }

  QTemporaryDir folder;
};

TEST_F(LocationsTest, LieBelowOneFolderWhenTheEnvironmentNamesIt) {
  const QString home = folder.filePath("a home");
  qputenv("AMBREL_HOME", home.toUtf8());
  const Locations locations = Locations::forThisUser();
  for (const QString& path : {locations.applicationSupport, locations.preferencesFile, locations.temporary}) {
    EXPECT_TRUE(path.startsWith(home + "/")) << path.toStdString();
  }
  EXPECT_EQ(locations.desktop, home);
  EXPECT_TRUE(QFileInfo(locations.applicationSupport).isDir());
  EXPECT_TRUE(QFileInfo(locations.temporary).isDir());
}

TEST_F(LocationsTest, AreAbsoluteForARelativeHome) {
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(folder.path()));
  qputenv("AMBREL_HOME", "here");
  const Locations locations = Locations::forThisUser();
  QDir::setCurrent(before);
  EXPECT_TRUE(QDir::isAbsolutePath(locations.preferencesFile));
  EXPECT_TRUE(QFileInfo(locations.temporary).isDir()) << "still found from another folder";
}

TEST_F(LocationsTest, AreTheUsersOwnFoldersOtherwise) {
  qputenv("AMBREL_HOME", "");
  const Locations locations = Locations::forThisUser();
  EXPECT_TRUE(QDir::isAbsolutePath(locations.applicationSupport));
  EXPECT_TRUE(locations.preferencesFile.endsWith("/Ambrel Tether/preferences.ini"));
  EXPECT_EQ(locations.temporary, QDir::tempPath());
}

TEST_F(LocationsTest, MakeTheDataFolderWhenAFileInItIsNamed) {
  const Locations locations = Locations::below(folder.path());
  const QString file = locations.dataFile("ambrel_grid.csv");
  EXPECT_EQ(file, locations.applicationSupport + "/Ambrel Tether/ambrel_grid.csv");
  EXPECT_TRUE(QFileInfo(QFileInfo(file).path()).isDir());
  EXPECT_FALSE(QFileInfo::exists(file));
}

TEST_F(LocationsTest, NameADataFileWhoseFolderCannotBeMade) {
  Locations locations;
  locations.applicationSupport = "/proc/nowhere";
  EXPECT_EQ(locations.dataFile("x"), "/proc/nowhere/Ambrel Tether/x");
}

}  // namespace
}  // namespace ambrel
