// SPDX-License-Identifier: Apache-2.0
#include "FoldersFixture.h"
#include "core/capture/FolderMoves.h"
#include "support/BrokenFiles.h"

namespace ambrel {
namespace {

using Moves = std::vector<FileMove>;

TEST(MovesOfMerge, NumberThePhotosAfterTheHighestOneInListingOrder) {
  const ListedFolder ann{"/t/Ann", {"Ann_0002.CR3", "notes.txt", "Ann_0001.JPG", "sub.jpg"}};
  const ListedFolder bea{"/t/Bea", {"Bea_0001.JPG", "Bea_0004.xmp", "Ann_0900.JPG"}};
  EXPECT_EQ(movesOfMerge(ann, bea, "Bea"), (Moves{{"/t/Ann/Ann_0002.CR3", "/t/Bea/Bea_0005.CR3"},
                                                  {"/t/Ann/Ann_0001.JPG", "/t/Bea/Bea_0006.JPG"},
                                                  {"/t/Ann/sub.jpg", "/t/Bea/Bea_0007.jpg"}}));
}

TEST(MovesOfMerge, StartAtOneInAFolderWithoutNumbers) {
  EXPECT_EQ(movesOfMerge({"/t/Ann", {"x.Jpg"}}, {"/t/Bea", {}}, "Bea"),
            (Moves{{"/t/Ann/x.Jpg", "/t/Bea/Bea_0001.Jpg"}}));
}

TEST(MovesOfMerge, LetTheNumberGrowWiderThanFourDigits) {
  EXPECT_EQ(movesOfMerge({"/t/A", {"x.jpg"}}, {"/t/B", {"B_9999.jpg"}}, "B")[0].to, "/t/B/B_10000.jpg");
}

TEST(MovesOfRename, GiveNamesThatBeginWithTheOldNameTheNewOne) {
  const ListedFolder folder{"/t/Bea", {"Ann_0003.JPG", "IMG_1.JPG", "Ann.CR3", "Annabel.png", "Ann_1.xmp"}};
  EXPECT_EQ(movesOfRename(folder, "Ann", "Bea"), (Moves{{"/t/Bea/Ann_0003.JPG", "/t/Bea/Bea_0003.JPG"},
                                                        {"/t/Bea/Ann.CR3", "/t/Bea/Bea.CR3"},
                                                        {"/t/Bea/Annabel.png", "/t/Bea/Beaabel.png"}}));
}

TEST(CheckedFolderName, IsTheSanitisedFormOfWhatWasTyped) {
  EXPECT_EQ(checkedFolderName("/t/Ann", "  a/b ").value(), "a-b");
  EXPECT_EQ(checkedFolderName("/t/Ann", "   ").value(), "untitled");
  EXPECT_EQ(checkedFolderName("/t/Ann", "ann").value(), "ann");
}

TEST(CheckedFolderName, RefusesTheFoldersOwnNameAndWhatIsNoText) {
  EXPECT_EQ(checkedFolderName("/t/Ann", " Ann ").error(), "That is already the folder's name.");
  EXPECT_EQ(checkedFolderName("/t/untitled", "").error(), "That is already the folder's name.");
  EXPECT_EQ(checkedFolderName("/t/Ann", QString(QChar(0xD800))).error(), "Please enter a valid name.");
}

class RenameFolderTest : public FoldersFixture {
 protected:
  RenameOutcome rename(const std::string& folder, const std::string& newName) {
    return renameFolderFSAt(broken, inTarget(folder), newName, {[] { return false; }});
  }

  BrokenFiles broken{files};
};

// ---- The new name is free

TEST_F(RenameFolderTest, RenamesTheFolderAndThePhotosNamedAfterIt) {
  makeFiles(
      {"Ann/Ann_0001.JPG", "Ann/Ann_0007.cr3", "Ann/IMG_1.JPG", "Ann/Ann_notes.txt", "Ann/sub/Ann_1.JPG"});
  const RenameOutcome outcome = rename("Ann", "Bea");
  EXPECT_EQ(outcome.photos, 3);
  EXPECT_EQ(outcome.message, "");
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Ann_notes.txt", "Bea/Bea_0001.JPG", "Bea/Bea_0007.cr3",
                                  "Bea/IMG_1.JPG", "Bea/sub/", "Bea/sub/Ann_1.JPG"}));
  EXPECT_EQ(bytesOf(inTarget("Bea/Bea_0001.JPG")), "Ann/Ann_0001.JPG");
}

TEST_F(RenameFolderTest, TellsWhatHasMovedAndBeforehandWhatAPhotoMayBeCalled) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Ann_0002.JPG", "Ann/Bea_0001.JPG", "Ann/notes.txt"});
  QStringList announced;
  Names whenAnnounced;
  const RenameOutcome outcome = renameFolderFSAt(broken, inTarget("Ann"), "Bea",
                                                 {.stop = [] { return false; },
                                                  .willTake =
                                                      [&](const QStringList& paths) {
                                                        announced = paths;
                                                        whenAnnounced = allInTarget();
                                                      }});
  EXPECT_EQ(whenAnnounced.front(), "Ann/");
  EXPECT_EQ(outcome.moved.folders, (Moves{{inTarget("Ann"), inTarget("Bea")}}));
  EXPECT_EQ(outcome.moved.files, (Moves{{inTarget("Bea/Ann_0002.JPG"), inTarget("Bea/Bea_0002.JPG")}}));
  for (const std::string name : {"Ann_0001.JPG", "Ann_0002.JPG", "Bea_0001.JPG", "Bea_0002.JPG"})
    EXPECT_TRUE(announced.contains(QString::fromStdString(inTarget("Bea/" + name)))) << name;
  EXPECT_FALSE(announced.contains(QString::fromStdString(inTarget("Bea/notes.txt"))));
}

TEST_F(RenameFolderTest, APhotoWhoseNewNameIsTakenKeepsItsNameAndCounts) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Bea_0001.JPG"});
  EXPECT_EQ(rename("Ann", "Bea").photos, 2);
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Ann_0001.JPG", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(bytesOf(inTarget("Bea/Bea_0001.JPG")), "Ann/Bea_0001.JPG");
}

TEST_F(RenameFolderTest, AFolderThatCannotBeMovedStaysAndTheSystemSaysWhy) {
  makeFile("Ann/Ann_0001.JPG");
  broken.failCall(BrokenFiles::Operation::Move, 1, "Read-only file system");
  broken.failCall(BrokenFiles::Operation::Move, 2, "");
  EXPECT_EQ(rename("Ann", "Bea").message, "Read-only file system");
  const RenameOutcome outcome = rename("Ann", "Bea");
  EXPECT_EQ(outcome.message, "Could not rename the folder.");
  EXPECT_EQ(outcome.photos, 0);
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
}

TEST_F(RenameFolderTest, AFolderThatIsGoneIsAFailure) {
  EXPECT_NE(rename("Ann", "Bea").message, "");
  EXPECT_EQ(allInTarget(), Names());
}

TEST_F(RenameFolderTest, ANameTooLongForTheVolumeLeavesTheFolderAsItIs) {
  makeFile("Ann/Ann_0001.JPG");
  EXPECT_NE(rename("Ann", std::string(256, 'n')).message, "");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
}

TEST_F(RenameFolderTest, AFileNameTooLongKeepsTheOldNameInTheRenamedFolder) {
  makeFile("Ann/Ann_0001.JPG");
  const std::string longest(255, 'n');
  EXPECT_EQ(rename("Ann", longest).photos, 1);
  EXPECT_EQ(allInTarget(), (Names{longest + "/", longest + "/Ann_0001.JPG"}));
}

TEST_F(RenameFolderTest, ALinkThatLeadsNowhereIsNotOverwritten) {
  makeFile("Ann/Ann_0001.JPG");
  std::filesystem::create_symlink("missing", inTarget("Bea"));
  EXPECT_NE(rename("Ann", "Bea").message, "");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG", "Bea"}));
}

// ---- The new name is taken

TEST_F(RenameFolderTest, MergesIntoAFolderThatExistsAndRemovesTheEmptyOne) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Ann_0002.JPG"});
  makeFiles({"Bea/Bea_0001.JPG", "Bea/Bea_0002.JPG", "Bea/Bea_0003.JPG", "Bea/Bea_0004.JPG"});
  const RenameOutcome outcome = rename("Ann", "Bea");
  EXPECT_EQ(outcome.photos, 2);
  EXPECT_EQ(outcome.message, "");
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Bea_0001.JPG", "Bea/Bea_0002.JPG", "Bea/Bea_0003.JPG",
                                  "Bea/Bea_0004.JPG", "Bea/Bea_0005.JPG", "Bea/Bea_0006.JPG"}));
  EXPECT_EQ(bytesOf(inTarget("Bea/Bea_0004.JPG")), "Bea/Bea_0004.JPG");
  const std::string fifth = bytesOf(inTarget("Bea/Bea_0005.JPG"));
  const std::string sixth = bytesOf(inTarget("Bea/Bea_0006.JPG"));
  EXPECT_EQ(std::min(fifth, sixth), "Ann/Ann_0001.JPG");
  EXPECT_EQ(std::max(fifth, sixth), "Ann/Ann_0002.JPG");
}

TEST_F(RenameFolderTest, ASideCarStaysInTheFolderAndKeepsIt) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Ann_0001.xmp", "Bea/x.txt"});
  EXPECT_EQ(rename("Ann", "Bea").photos, 1);
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.xmp", "Bea/", "Bea/Bea_0001.JPG", "Bea/x.txt"}));
}

TEST_F(RenameFolderTest, ARefusedPhotoStaysCountsAndUsesUpItsNumber) {
  makeFiles({"Ann/1.JPG", "Ann/2.JPG", "Ann/3.JPG"});
  makeFolder("Bea");
  broken.failCall(BrokenFiles::Operation::Move, 2, "Input/output error");
  const RenameOutcome outcome = rename("Ann", "Bea");
  EXPECT_EQ(outcome.photos, 3);
  EXPECT_EQ(outcome.message, "");
  const Names all = allInTarget();
  EXPECT_EQ(all.size(), 5u);
  EXPECT_EQ(std::count(all.begin(), all.end(), "Ann/"), 1);
  EXPECT_EQ(std::count(all.begin(), all.end(), "Bea/Bea_0001.JPG"), 1);
  EXPECT_EQ(std::count(all.begin(), all.end(), "Bea/Bea_0003.JPG"), 1);
}

TEST_F(RenameFolderTest, ANumberTakenMeanwhileIsNotOverwritten) {
  makeFile("Ann/1.JPG");
  makeFolder("Bea");
  broken.callBefore(BrokenFiles::Operation::Move, [this](const QString&, const QString&) {
    makeFile("Bea/Bea_0001.JPG", "somebody else's");
  });
  EXPECT_EQ(rename("Ann", "Bea").photos, 1);
  EXPECT_EQ(bytesOf(inTarget("Bea/Bea_0001.JPG")), "somebody else's");
  EXPECT_EQ(bytesOf(inTarget("Ann/1.JPG")), "Ann/1.JPG");
}

TEST_F(RenameFolderTest, ANameTakenByAFileChangesNothing) {
  makeFiles({"Ann/Ann_0001.JPG", "Bea"});
  const RenameOutcome outcome = rename("Ann", "Bea");
  EXPECT_EQ(outcome.photos, 1);
  EXPECT_EQ(outcome.message, "");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG", "Bea"}));
  EXPECT_EQ(bytesOf(inTarget("Bea")), "Bea");
}

TEST_F(RenameFolderTest, MovesPhotosWhoseNamesAreNotText) {
  makeFiles({"Ann/\xff\xfe.jpg", "Ann/\xe9.jpg"});
  makeFolder("Bea");
  EXPECT_EQ(rename("Ann", "Bea").photos, 2);
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Bea_0001.jpg", "Bea/Bea_0002.jpg"}));
}

TEST_F(RenameFolderTest, TellsOfAMergeOnlyWhatHasMoved) {
  makeFiles({"Ann/1.JPG", "Ann/2.JPG", "Bea/Bea_0003.JPG"});
  broken.failCall(BrokenFiles::Operation::Move, 1, "busy");
  QStringList announced;
  const RenameOutcome outcome = renameFolderFSAt(
      broken, inTarget("Ann"), "Bea",
      {.stop = [] { return false; }, .willTake = [&](const QStringList& paths) { announced = paths; }});
  EXPECT_EQ(outcome.photos, 2);
  EXPECT_TRUE(outcome.moved.folders.empty());
  ASSERT_EQ(outcome.moved.files.size(), 1u);
  EXPECT_EQ(outcome.moved.files[0].to, inTarget("Bea/Bea_0005.JPG"));
  EXPECT_EQ(announced.size(), 2);
}

TEST_F(RenameFolderTest, AFolderThatIsALinkGivesItsPhotosAndStays) {
  makeFile("../elsewhere/1.JPG");
  std::filesystem::create_symlink("../elsewhere", inTarget("Ann"));
  makeFolder("Bea");
  EXPECT_EQ(rename("Ann", "Bea").photos, 1);
  EXPECT_EQ(allInTarget(), (Names{"Ann", "Bea/", "Bea/Bea_0001.JPG"}));
}

TEST_F(RenameFolderTest, StopsBetweenTwoPhotosWhenNobodyWaitsForItAnyMore) {
  makeFiles({"Ann/1.JPG", "Ann/2.JPG", "Ann/3.JPG"});
  makeFolder("Bea");
  int asked = 0;
  renameFolderFSAt(broken, inTarget("Ann"), "Bea", {[&] { return ++asked > 2; }});
  EXPECT_EQ(broken.calls(BrokenFiles::Operation::Move), 2);
  EXPECT_EQ(allInTarget().size(), 5u);
}

TEST_F(RenameFolderTest, AHundredThousandEntriesInOneFolderAreMergedWithoutAListingForEach) {
  makeFolder("Ann");
  makeFolder("Bea");
  makeFile("one");
  constexpr int kPhotos = 100'000;
  for (int i = 0; i < kPhotos; ++i) {
    // Files of the same bytes under many names; a file has room for so many.
    const std::string bytes = "one" + std::to_string(i / 50'000);
    if (i % 50'000 == 0) makeFile(bytes);
    std::filesystem::create_hard_link(inTarget(bytes), inTarget("Ann/" + std::to_string(i) + ".jpg"));
  }
  EXPECT_EQ(rename("Ann", "Bea").photos, kPhotos);
  EXPECT_FALSE(std::filesystem::exists(inTarget("Ann")));
  EXPECT_EQ(imageCountInFolder(inTarget("Bea")), kPhotos);
  EXPECT_EQ(maxNumberedIndexInFolder(inTarget("Bea"), "Bea"), kPhotos);
}

}  // namespace
}  // namespace ambrel
