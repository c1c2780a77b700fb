// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

#include "camera/DownloadFolder.h"
#include "support/TemporaryFolder.h"

namespace ambrel::camera {
namespace {

const std::string kJpeg = std::string("\xFF\xD8\xFF\xE1") + "picture" + "\xFF\xD9";

std::span<const unsigned char> asBytes(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

class DownloadFolder : public ::testing::Test {
 protected:
  DownloadFolder() { target.use(folder.path()); }

  // The path, or the reason why there is none.
  std::string save(const CameraFile& photo, const std::string& content) {
    auto part = target.begin(photo);
    if (!part) return part.failure().reason;
    part.value()->write(asBytes(content));
    const auto path = part.value()->finish(photo);
    return path ? path.value() : path.failure().reason;
  }
  std::string saveJpeg(const std::string& name) { return save({"/", name, kJpeg.size()}, kJpeg); }

  test::TemporaryFolder folder;
  camera::DownloadFolder target;
};

TEST_F(DownloadFolder, StoresAPhotoUnderTheNameOfTheCamera) {
  EXPECT_EQ(saveJpeg("IMG_0001.JPG"), folder.file("IMG_0001.JPG"));
  EXPECT_EQ(folder.read("IMG_0001.JPG"), kJpeg);
  EXPECT_EQ(folder.names().size(), 1u);
}

TEST_F(DownloadFolder, TakesAFreeNameWhenTheNameIsTaken) {
  folder.write("IMG_0001.JPG", "older");
  folder.write("IMG_0001-2.JPG", "older still");
  EXPECT_EQ(saveJpeg("IMG_0001.JPG"), folder.file("IMG_0001-3.JPG"));
  EXPECT_EQ(folder.read("IMG_0001.JPG"), "older");
  EXPECT_EQ(folder.read("IMG_0001-2.JPG"), "older still");
}

TEST_F(DownloadFolder, CorrectsTheExtensionByTheContent) {
  EXPECT_EQ(saveJpeg("capt0001.cr2"), folder.file("capt0001.jpg"));
}

TEST_F(DownloadFolder, ShowsNoPhotoUnderItsNameBeforeItIsWhole) {
  auto part = target.begin({"/", "IMG_0001.JPG", kJpeg.size()});
  ASSERT_TRUE(part);
  part.value()->write(asBytes(kJpeg));
  ASSERT_EQ(folder.names().size(), 1u);
  EXPECT_TRUE(isPartFileName(folder.names().front()));
}

TEST_F(DownloadFolder, LeavesNothingOfATransferThatWasBrokenOff) {
  {
    auto part = target.begin({"/", "IMG_0001.JPG", 100});
    ASSERT_TRUE(part);
    part.value()->write(asBytes("half"));
  }
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(DownloadFolder, RefusesAnEmptyFile) {
  EXPECT_EQ(save({"/", "IMG_0001.JPG", 0}, ""), "the camera sent an empty file");
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(DownloadFolder, RefusesAFileThatIsShorterOrLongerThanAnnounced) {
  EXPECT_EQ(save({"/", "IMG_0001.CR3", 10}, "four"), "the camera sent 4 of 10 bytes");
  EXPECT_EQ(save({"/", "IMG_0001.CR3", 2}, "four"), "the camera sent 4 of 2 bytes");
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(DownloadFolder, TakesAFileOfUnknownSize) {
  EXPECT_EQ(save({"/", "IMG_0001.CR3", 0}, "four"), folder.file("IMG_0001.CR3"));
}

TEST_F(DownloadFolder, RefusesAJpegWithoutItsEnd) {
  const std::string cut = kJpeg.substr(0, kJpeg.size() - 1);
  EXPECT_EQ(save({"/", "IMG_0001.JPG", cut.size()}, cut), "the camera sent a picture without an end");
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(DownloadFolder, FindsTheEndOfALongJpeg) {
  const std::string longOne = std::string("\xFF\xD8\xFF") + std::string(5 * 1024 * 1024, 'x') + "\xFF\xD9";
  EXPECT_EQ(save({"/", "IMG_0001.JPG", longOne.size()}, longOne), folder.file("IMG_0001.JPG"));
  EXPECT_EQ(folder.read("IMG_0001.JPG"), longOne);
}

TEST_F(DownloadFolder, ForgetsTheBytesOfAnEarlierAttempt) {
  const CameraFile photo{"/", "IMG_0001.JPG", kJpeg.size()};
  auto part = target.begin(photo);
  ASSERT_TRUE(part);
  part.value()->write(asBytes("half of something else"));
  ASSERT_TRUE(part.value()->restart());
  part.value()->write(asBytes(kJpeg));
  ASSERT_TRUE(part.value()->finish(photo));
  EXPECT_EQ(folder.read("IMG_0001.JPG"), kJpeg);
}

TEST_F(DownloadFolder, NeverLeavesTheFolderWhateverTheNameOfTheCamera) {
  EXPECT_EQ(saveJpeg("../../evil.JPG"), folder.file("_._.._evil.JPG"));
}

TEST_F(DownloadFolder, SaysThatTheFolderIsGoneAndDoesNotMakeIt) {
  std::filesystem::remove(folder.path());
  EXPECT_EQ(saveJpeg("IMG_0001.JPG"), "the download folder is gone");
  EXPECT_FALSE(std::filesystem::exists(folder.path()));
}

TEST_F(DownloadFolder, WorksAgainWhenTheFolderIsBack) {
  std::filesystem::remove(folder.path());
  saveJpeg("IMG_0001.JPG");
  std::filesystem::create_directory(folder.path());
  EXPECT_EQ(saveJpeg("IMG_0002.JPG"), folder.file("IMG_0002.JPG"));
}

TEST_F(DownloadFolder, RefusesAPhotoThatHasNoRoomBeforeItIsFetched) {
  // No disk has this much.
  auto part = target.begin({"/", "IMG_0001.JPG", std::uint64_t{1} << 60});
  ASSERT_FALSE(part);
  EXPECT_EQ(part.failure().kind, Failure::Kind::Local);
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(DownloadFolder, EndsATransferInOrderWhenTheDiskTakesNoMore) {
  // Opened for reading only, as a disk that fails every write.
  folder.write("part", "");
  PartFile part(open(folder.file("part").c_str(), O_RDONLY), folder.file("part"), folder.path());
  EXPECT_TRUE(part.write(asBytes(kJpeg)));
  EXPECT_TRUE(part.write(asBytes(kJpeg)));
  const auto path = part.finish({"/", "IMG_0001.JPG", 2 * kJpeg.size()});
  ASSERT_FALSE(path);
  EXPECT_EQ(path.failure().reason, "Bad file descriptor");
}

TEST_F(DownloadFolder, RemovesOnlyWhatADeadWorkerLeft) {
  folder.write(".ambrel-4711-1.part", "left by a worker that was killed");
  folder.write(".ambrel-4711-2.part", "being written by another worker");
  folder.write(".ambrel-backup.part", "not ours");
  folder.write("IMG_0001.JPG", "a photo");
  const int held = open(folder.file(".ambrel-4711-2.part").c_str(), O_RDWR);
  flock(held, LOCK_EX);
  target.use(folder.path() + "/");
  EXPECT_EQ(folder.names(),
            (std::vector<std::string>{".ambrel-4711-2.part", ".ambrel-backup.part", "IMG_0001.JPG"}));
  close(held);
}

TEST_F(DownloadFolder, DoesNotFollowALinkPlantedAsATemporaryFile) {
  folder.write("precious", "keep");
  ASSERT_EQ(symlink(folder.file("precious").c_str(), folder.file(".ambrel-1-1.part").c_str()), 0);
  target.use(folder.path());
  EXPECT_EQ(folder.read("precious"), "keep");
}

TEST(PartFileName, IsRecognisedByItsWholePattern) {
  EXPECT_TRUE(isPartFileName(".ambrel-12-3.part"));
  EXPECT_FALSE(isPartFileName(".ambrel-12.part"));
  EXPECT_FALSE(isPartFileName(".ambrel--3.part"));
  EXPECT_FALSE(isPartFileName(".ambrel-12-.part"));
  EXPECT_FALSE(isPartFileName(".ambrel-12-3x.part"));
  EXPECT_FALSE(isPartFileName(".ambrel-12-3.JPG"));
  EXPECT_FALSE(isPartFileName("ambrel-12-3.part"));
  EXPECT_FALSE(isPartFileName(""));
}

}  // namespace
}  // namespace ambrel::camera
