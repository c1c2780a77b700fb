// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include "FoldersFixture.h"
#include "core/capture/FolderScan.h"

namespace ambrel {
namespace {

using std::chrono::system_clock;
using namespace std::chrono_literals;

class FolderScanTest : public FoldersFixture {
 protected:
  using Folders = std::vector<PhotoCounts::Folder>;

  Folders scanned() { return scan.scan(target, system_clock::now()).folders(); }
  // As if the folders had last been changed long ago.
  Folders scannedMuchLater() { return scan.scan(target, system_clock::now() + 1h).folders(); }

  FolderScan scan;
};

TEST_F(FolderScanTest, CountsPhotosInTheDirectSubfoldersOnly) {
  makeFiles({"Ann/1.JPG", "Ann/2.cr3", "Ann/deeper/3.jpg", "loose.jpg", "Ben/notes.txt", "Cat/x.xmp"});
  EXPECT_EQ(scanned(), (Folders{{"Ann", 2}, {"Ben", 0}, {"Cat", 0}}));
}

TEST_F(FolderScanTest, CountsHiddenPhotosAndFoldersNamedLikePhotos) {
  makeFiles({"Ann/.hidden.jpg", "Ann/folder.jpg/x.txt", "Ann/IMG.JPG", "Ann/.jpg"});
  EXPECT_EQ(scanned(), (Folders{{"Ann", 3}}));
  EXPECT_EQ(imageCountInFolder(inTarget("Ann")), 3);
}

TEST_F(FolderScanTest, CountsPhotosWhoseNamesAreNotText) {
  makeFiles({"Ann/\xff\xfe.jpg", "\xe9t\xe9/1.jpg"});
  EXPECT_EQ(scanned(), (Folders{{"Ann", 1}, {"\xe9t\xe9", 1}}));
}

TEST_F(FolderScanTest, FollowsALinkToAFolderElsewhere) {
  std::filesystem::create_directory(home.path().toStdString() + "/elsewhere");
  makeFile("../elsewhere/1.jpg");
  std::filesystem::create_symlink("../elsewhere", inTarget("Ann"));
  std::filesystem::create_symlink("../missing", inTarget("Ben"));
  std::filesystem::create_symlink("..", inTarget("Cat"));
  EXPECT_EQ(scanned(), (Folders{{"Ann", 1}, {"Cat", 0}}));
}

TEST_F(FolderScanTest, AFolderThatCannotBeReadCountsNothing) {
  makeFile("file");
  EXPECT_EQ(imageCountInFolder(inTarget("missing")), 0);
  EXPECT_EQ(imageCountInFolder(inTarget("file")), 0);
  EXPECT_EQ(scan.scan(inTarget("missing"), system_clock::now()).folders(), Folders());
  EXPECT_EQ(scan.scan(inTarget("file"), system_clock::now()).folders(), Folders());
}

TEST_F(FolderScanTest, ReadsOnlyTheFolderThatHasChanged) {
  for (int i = 0; i < 20; ++i)
    makeFile("Person " + std::to_string(i) + "/1.jpg");
  scannedMuchLater();
  EXPECT_EQ(scan.foldersRead(), 20u);
  makeFile("Person 7/2.jpg");
  const Folders after = scannedMuchLater();
  EXPECT_EQ(scan.foldersRead(), 1u);
  EXPECT_EQ(std::count(after.begin(), after.end(), PhotoCounts::Folder{"Person 7", 2}), 1);
  EXPECT_EQ(std::count_if(after.begin(), after.end(), [](const auto& folder) { return folder.photos == 1; }),
            19);
}

TEST_F(FolderScanTest, ReadsAFolderAgainThatChangedAMomentAgo) {
  makeFile("Ann/1.jpg");
  scanned();
  // A second change within the same tick of the file system's clock would not show.
  EXPECT_EQ(scanned(), (Folders{{"Ann", 1}}));
  EXPECT_EQ(scan.foldersRead(), 1u);
}

TEST_F(FolderScanTest, NoticesAPhotoThatWasRenamedToSomethingElse) {
  makeFiles({"Ann/1.jpg", "Ann/2.jpg"});
  scannedMuchLater();
  std::filesystem::rename(inTarget("Ann/2.jpg"), inTarget("Ann/2.txt"));
  EXPECT_EQ(scannedMuchLater(), (Folders{{"Ann", 1}}));
}

TEST_F(FolderScanTest, NoticesAChangeThatSomebodySetTheClockBackFor) {
  makeFile("Ann/1.jpg");
  struct stat before = {};
  ASSERT_EQ(::stat(inTarget("Ann").c_str(), &before), 0);
  scannedMuchLater();
  makeFile("Ann/2.jpg");
  const timespec times[] = {before.st_atim, before.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, inTarget("Ann").c_str(), times, 0), 0);
  EXPECT_EQ(scannedMuchLater(), (Folders{{"Ann", 2}}));
}

TEST_F(FolderScanTest, NoticesAnotherFolderOfTheSameName) {
  makeFile("Ann/1.jpg");
  makeFiles({"Ben/1.jpg", "Ben/2.jpg"});
  scannedMuchLater();
  std::filesystem::rename(inTarget("Ann"), inTarget("Cat"));
  std::filesystem::rename(inTarget("Ben"), inTarget("Ann"));
  EXPECT_EQ(scannedMuchLater(), (Folders{{"Ann", 2}, {"Cat", 1}}));
}

TEST_F(FolderScanTest, GivesEachOfManyFoldersItsOwnCountAndReadsItOnce) {
  constexpr int kMany = 1000;
  for (int i = 0; i < kMany; ++i) {
    const std::string folder = "Person " + std::to_string(i);
    std::filesystem::create_directory(inTarget(folder));
    for (int photo = 0; photo < i % 4; ++photo)
      makeFile(folder + '/' + std::to_string(photo) + ".jpg");
  }
  const Folders found = scannedMuchLater();
  ASSERT_EQ(found.size(), std::size_t{kMany});
  for (const PhotoCounts::Folder& folder : found)
    EXPECT_EQ(folder.photos, std::stoi(folder.name.substr(7)) % 4) << folder.name;
  EXPECT_EQ(scan.foldersRead(), std::size_t{kMany});
  EXPECT_EQ(scannedMuchLater(), found);
  EXPECT_EQ(scan.foldersRead(), 0U);
}

TEST_F(FolderScanTest, RemembersNothingOfAnotherTargetFolder) {
  makeFile("Ann/1.jpg");
  makeFile("../Other/Ann/1.jpg");
  scannedMuchLater();
  EXPECT_EQ(scan.scan(target + "/../Other", system_clock::now() + 1h).folders(), (Folders{{"Ann", 1}}));
  EXPECT_EQ(scan.foldersRead(), 1u);
}

TEST_F(FolderScanTest, ForgetsAFolderThatIsGone) {
  makeFile("Ann/1.jpg");
  scannedMuchLater();
  std::filesystem::remove_all(inTarget("Ann"));
  EXPECT_EQ(scannedMuchLater(), Folders());
  std::filesystem::remove_all(target);
  EXPECT_EQ(scannedMuchLater(), Folders());
}

TEST_F(FolderScanTest, CountsWhatStaysWhileOtherFoldersComeAndGo) {
  for (int i = 0; i < 50; ++i)
    makeFile("Person " + std::to_string(i) + "/1.jpg");
  std::atomic<bool> stop = false;
  std::thread other([&] {
    for (int i = 0; !stop; i = (i + 1) % 30) {
      const std::string name = "Guest " + std::to_string(i);
      makeFile(name + "/1.jpg");
      std::filesystem::remove_all(inTarget(name));
    }
  });
  for (int round = 0; round < 300; ++round) {
    const Folders found = scanned();
    const auto people = std::count_if(found.begin(), found.end(), [](const PhotoCounts::Folder& folder) {
      return folder.name.starts_with("Person ") && folder.photos == 1;
    });
    EXPECT_EQ(people, 50);
  }
  stop = true;
  other.join();
}

}  // namespace
}  // namespace ambrel
