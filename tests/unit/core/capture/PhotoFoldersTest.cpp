// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <random>

#include "FoldersFixture.h"
#include "core/base/FolderReader.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/PhotoFolders.h"

namespace ambrel {
namespace {

using Counts = std::vector<std::int64_t>;

class PhotoFoldersTest : public FoldersFixture {
 protected:
  PhotoFoldersTest() {
    QObject::connect(&folders, &PhotoFolders::pathLabelsStale, [this] { steps << "path labels"; });
  }

  void rescan() {
    folders.rescanOutputFolders([this] { steps << "done"; });
    serve();
  }
  Names foldersOf(const std::string& name) const {
    Names names;
    for (const std::string& path : folders.foldersForRowName(name)) {
      EXPECT_TRUE(path.starts_with(target + '/')) << path;
      names.push_back(path.substr(target.size() + 1));
    }
    return names;
  }
  bool holdsPhotos(const std::string& name) const {
    return folders.foldersWithImages().count(inTarget(name)) == 1;
  }
};

// ---- The folders of a name

TEST_F(PhotoFoldersTest, ThePlainFolderComesFirstAndVariantsFollowInTheOrderOfTheListing) {
  for (const char* name : {"Ann_FR", "Ann_A", "Ann", "Ann_Lee", "Anna", "ann", "AnnFR", "Ben"})
    makeFolder(name);
  Names inListingOrder = {"Ann"};
  for (const std::string& name : entriesOf(target)) {
    if (name.starts_with("Ann_")) inListingOrder.push_back(name);
  }
  EXPECT_EQ(inListingOrder.size(), 4u);
  EXPECT_EQ(foldersOf("Ann"), inListingOrder);
}

TEST_F(PhotoFoldersTest, AFileIsNoFolderOfAName) {
  makeFiles({"Ann", "Ann_FR"});
  EXPECT_EQ(foldersOf("Ann"), Names());
}

TEST_F(PhotoFoldersTest, ANameWithOnlyATaggedFolderHasThatOne) {
  makeFolder("Ann_FR");
  EXPECT_EQ(foldersOf("Ann"), Names{"Ann_FR"});
}

TEST_F(PhotoFoldersTest, WithoutATargetFolderOrANameThereAreNoFolders) {
  makeFolder("_FR");
  EXPECT_EQ(foldersOf(""), Names());
  targetDir.clear();
  EXPECT_EQ(foldersOf("Ann"), Names());
  targetDir = path("missing");
  EXPECT_EQ(folders.foldersForRowName("Ann"), Names());
}

// ---- Looking at the disk anew

TEST_F(PhotoFoldersTest, ARescanCountsEachRowsOwnFoldersAndThoseThatLookLikeVariants) {
  makeFiles({"Ann/1.JPG", "Ann/2.JPG", "Ann/3.JPG", "Ann_FR/1.CR3", "Ann_FR/2.CR3"});
  makeFiles({"Ann_Lee/1.jpg", "Ann_Lee/2.jpg", "Ann_Lee/3.jpg", "Ann_Lee/4.jpg"});
  startWith({{"Ann"}, {"Ann Lee", "note", "17"}});
  rescan();
  EXPECT_EQ(counts(), (Counts{9, 0}));
  EXPECT_EQ(folders.folderCount(), 3);
}

TEST_F(PhotoFoldersTest, AFolderOfSideCarsOrFilmsHoldsNoPhotos) {
  makeFiles({"Ann/1.xmp", "Ben/1.mov", "Cat/1.xmp", "Cat/1.ARW"});
  startWith({{"Ann", "", "2"}, {"Ben", "", "2"}, {"Cat", "", "2"}});
  rescan();
  EXPECT_EQ(counts(), (Counts{0, 0, 1}));
  EXPECT_EQ(folders.folderCount(), 1);
  EXPECT_TRUE(holdsPhotos("Cat"));
}

TEST_F(PhotoFoldersTest, CountsByTheFolderNameThatFilingGives) {
  makeFiles({"a-b-c/1.jpg", "untitled/1.jpg", "untitled/2.jpg", "-Bob/1.jpg"});
  startWith({{"  a/b:c  "}, {""}, {"   "}, {"\tBob"}, {".."}, {"."}, {std::string("a\0b", 3)}});
  rescan();
  EXPECT_EQ(counts(), (Counts{1, 2, 2, 1, 0, 0, 0}));
}

TEST_F(PhotoFoldersTest, ARowWithoutCellsIsLeftAlone) {
  makeFile("untitled/1.jpg");
  startWith({{}, {"", "note"}});
  rescan();
  EXPECT_EQ(list.grid().rows(), (std::vector<Row>{{}, {"", "note", "1"}}));
}

TEST_F(PhotoFoldersTest, ANameThatIsNotTextHasNoFolders) {
  makeFile("\xff/1.jpg");
  startWith({{"\xff", "", "1"}});
  rescan();
  EXPECT_EQ(counts(), Counts{0});
  EXPECT_TRUE(holdsPhotos("\xff"));
}

TEST_F(PhotoFoldersTest, ChangedCountsAreSavedAndShownWithoutFilteringAnew) {
  makeFile("Ann/1.jpg");
  startWith({{"Ann"}, {"Ben", "", "3"}});
  list.cycleCaptureFilter();  // those with photos: Ben alone
  steps.clear();
  rescan();
  EXPECT_EQ(shownNames(), QStringList{"Ben"});
  EXPECT_EQ(steps, (QStringList{"reload", "path labels", "done"}));
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nAnn,,1,\nBen,,0,");
}

TEST_F(PhotoFoldersTest, CountsThatAgreeWithTheDiskAreNeitherSavedNorShown) {
  makeFile("Ann/1.jpg");
  startWith({{"Ann", "", "1"}, {"Ben"}});
  rescan();
  EXPECT_EQ(steps, (QStringList{"path labels", "done"}));
  EXPECT_EQ(files.replacements, 0);
  EXPECT_EQ(list.grid().rows(), (std::vector<Row>{{"Ann", "", "1"}, {"Ben"}}));
}

TEST_F(PhotoFoldersTest, WithoutATargetFolderTheFoldersAreForgottenAndTheCountsStay) {
  makeFile("Ann/1.jpg");
  startWith({{"Ann", "", "7"}});
  folders.noteFolderWithImage(targetDir + "/Ann/1.jpg");
  targetDir.clear();
  steps.clear();
  rescan();
  EXPECT_EQ(folders.folderCount(), 0);
  EXPECT_EQ(counts(), Counts{7});
  EXPECT_EQ(steps, (QStringList{"path labels", "done"}));
}

TEST_F(PhotoFoldersTest, ATargetFolderThatIsGoneIsAnEmptyOne) {
  startWith({{"Ann", "front row", "7", "1"}});
  targetDir = path("missing");
  rescan();
  EXPECT_EQ(list.grid().rows(), (std::vector<Row>{{"Ann", "front row", "0", "1"}}));
}

TEST_F(PhotoFoldersTest, AListLoadedAfterTheRequestKeepsTheCountsItBrings) {
  makeFile("Ann/1.jpg");
  folders.rescanOutputFolders();
  startWith({{"Ann", "", "5"}});
  serve();
  EXPECT_EQ(counts(), Counts{5});
  EXPECT_EQ(folders.folderCount(), 1);
}

TEST_F(PhotoFoldersTest, ATargetFolderThatWasLeftMeanwhileTellsNothing) {
  makeFile("Ann/1.jpg");
  startWith({{"Ann", "", "5"}});
  folders.rescanOutputFolders();
  targetDir = path("other");
  serve();
  EXPECT_EQ(counts(), Counts{5});
  EXPECT_EQ(folders.folderCount(), 0);
}

TEST_F(PhotoFoldersTest, SynchronisingTouchesTheCountsAlone) {
  makeFile("Ann/1.jpg");
  startWith({{"Ann"}});
  folders.syncCapturedCountsFromDisk([this] { steps << "done"; });
  serve();
  EXPECT_EQ(counts(), Counts{1});
  EXPECT_EQ(folders.folderCount(), 0);
  EXPECT_EQ(steps, (QStringList{"reload", "done"}));
}

TEST_F(PhotoFoldersTest, SynchronisingAnEmptyListOrWithoutATargetFolderDoesNothing) {
  folders.syncCapturedCountsFromDisk([this] { steps << "done"; });
  EXPECT_EQ(steps, QStringList{"done"});
  startWith({{"Ann", "", "5"}});
  targetDir.clear();
  folders.syncCapturedCountsFromDisk([this] { steps << "done"; });
  serve();
  EXPECT_EQ(counts(), Counts{5});
  EXPECT_EQ(steps, QStringList{"done"});
}

TEST_F(PhotoFoldersTest, RowsEditedWhileTheDiskIsReadAreCountedAsTheyAreThen) {
  makeFiles({"Ann/1.jpg", "Ben/1.jpg", "Ben/2.jpg"});
  startWith({{"Ann"}});
  folders.rescanOutputFolders();
  list.editableGrid().insert(0, {"Ben"});
  serve();
  EXPECT_EQ(counts(), (Counts{2, 1}));
}

TEST_F(PhotoFoldersTest, AgreesWithTheRuleRowByRowForRandomFoldersAndRows) {
  std::mt19937 random(1234);
  const Names pieces = {"Ann", "Lee", "_", "_FR", " ", "\xc3\xa9", "b", "/", "untitled"};
  const auto anyName = [&] {
    std::string name;
    for (std::size_t n = random() % 4; n > 0; --n)
      name += pieces[random() % pieces.size()];
    return name;
  };
  std::int64_t found = 0;
  for (int round = 0; round < 25; ++round) {
    std::filesystem::remove_all(target);
    makeFolder(".");
    for (int i = 0; i < 12; ++i) {
      const std::string folder = sanitize_filename(anyName()) + (random() % 8 == 0 ? "_\xff" : "");
      makeFolder(folder);
      for (std::size_t n = random() % 4; n > 0; --n)
        makeFile(folder + '/' + std::to_string(n) + (random() % 3 == 0 ? ".xmp" : ".JPG"));
    }
    std::vector<Row> rows(20);
    for (Row& row : rows)
      row = {anyName(), "", std::to_string(random() % 3)};
    startWith(rows);
    rescan();
    for (std::int64_t row = 0; row < list.grid().rowCount(); ++row) {
      std::int64_t photos = 0;
      for (const std::string& path : folders.foldersForRowName(sanitize_filename(rows[std::size_t(row)][0])))
        photos += imageCountInFolder(path);
      ASSERT_EQ(list.grid().capturedForModelRow(row), photos) << rows[std::size_t(row)][0];
      found += photos;
    }
  }
  EXPECT_GT(found, 500) << "hardly a row had photos";
}

// ---- Noting and forgetting folders

TEST_F(PhotoFoldersTest, AFiledPhotosFolderIsNotedOnce) {
  folders.noteFolderWithImage(targetDir + "/Ann/Ann_0001.JPG");
  folders.noteFolderWithImage(targetDir + "/Ann/Ann_0002.JPG");
  EXPECT_EQ(folders.folderCount(), 1);
  EXPECT_TRUE(holdsPhotos("Ann"));
  EXPECT_EQ(steps, QStringList{"path labels"});
}

TEST_F(PhotoFoldersTest, APathWithoutAFolderIsNotNoted) {
  for (const char* path : {"", "photo.jpg", "/photo.jpg"})
    folders.noteFolderWithImage(QString::fromUtf8(path));
  EXPECT_EQ(folders.folderCount(), 0);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(PhotoFoldersTest, ARescanReplacesWhatWasNoted) {
  makeFile("Ben/1.jpg");
  folders.noteFolderWithImage(targetDir + "/Ann/Ann_0001.JPG");
  rescan();
  EXPECT_EQ(folders.folderCount(), 1);
  EXPECT_TRUE(holdsPhotos("Ben"));
}

TEST_F(PhotoFoldersTest, ForgetsItsFolders) {
  folders.noteFolderWithImage(targetDir + "/Ann/Ann_0001.JPG");
  folders.forgetFolders();
  EXPECT_EQ(folders.folderCount(), 0);
}

// ---- The highest number

TEST_F(PhotoFoldersTest, TheHighestNumberOfAPrefixCountsAnyFileType) {
  makeFiles(
      {"Bob/Bob_0003.JPG", "Bob/Bob_0010.CR3", "Bob/Bob_0011 copy.JPG", "Bob/Bob.JPG", "Bob/Rob_0900.JPG"});
  EXPECT_EQ(maxNumberedIndexInFolder(inTarget("Bob"), "Bob"), 10);
  makeFile("Bob/Bob_0012.txt");
  EXPECT_EQ(maxNumberedIndexInFolder(inTarget("Bob"), "Bob"), 12);
}

TEST_F(PhotoFoldersTest, TheHighestNumberOfAFolderThatCannotBeReadIsNone) {
  makeFile("file");
  EXPECT_EQ(maxNumberedIndexInFolder(inTarget("missing"), "Bob"), 0);
  EXPECT_EQ(maxNumberedIndexInFolder(inTarget("file"), "Bob"), 0);
}

TEST(MaxNumberedIndex, TakesTailsOfDecimalDigitsAlone) {
  EXPECT_EQ(
      maxNumberedIndex({"Bob_12a.jpg", "Bob_.jpg", "Bob_-3.jpg", "Bob_+4.jpg", "Bob_0x9", "Bob_ 5"}, "Bob"),
      0);
  EXPECT_EQ(maxNumberedIndex({"Bob_7"}, "Bob"), 7);
  EXPECT_EQ(maxNumberedIndex({"Bob_7.5.jpg"}, "Bob"), 0);
  EXPECT_EQ(maxNumberedIndex({"Bob_FR_0007.jpg", "Bob_2.jpg"}, "Bob"), 2);
  EXPECT_EQ(maxNumberedIndex({"Bob_FR_0007.jpg", "Bob_2.jpg"}, "Bob_FR"), 7);
  EXPECT_EQ(maxNumberedIndex({"bob_9.jpg"}, "Bob"), 0);
}

TEST(MaxNumberedIndex, APrefixMayHoldADot) {
  EXPECT_EQ(maxNumberedIndex({"Dr. Bob_3.jpg", "Dr. Bob_4"}, "Dr. Bob"), 3);
}

TEST(MaxNumberedIndex, ANumberThatLeavesNoRoomToCountOnIsNone) {
  EXPECT_EQ(
      maxNumberedIndex({"Bob_9223372036854775807.jpg", "Bob_99999999999999999999.jpg", "Bob_5.jpg"}, "Bob"),
      5);
  EXPECT_EQ(maxNumberedIndex({"Bob_0000000000000000000000000000042.jpg"}, "Bob"), 42);
}

}  // namespace
}  // namespace ambrel
