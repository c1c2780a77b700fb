// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

#include "FoldersFixture.h"
#include "core/base/PathText.h"
#include "core/capture/PreviewWalk.h"

namespace ambrel {
namespace {

class PreviewWalkTest : public FoldersFixture {
 protected:
  // A photo whose content changed `age` seconds after an arbitrary time.
  void makePhoto(const std::string& name, long seconds, long nanoseconds = 0) const {
    makeFile(name);
    const timespec date{1'000'000'000 + seconds, nanoseconds};
    const timespec times[] = {date, date};
    ASSERT_EQ(::utimensat(AT_FDCWD, inTarget(name).c_str(), times, 0), 0);
  }
  Names found() const {
    Names names;
    for (const QString& path : previewablePhotosBelow(target, [] { return false; }))
      names.push_back(ns_to_path(path).substr(target.size() + 1));
    return names;
  }
};

TEST_F(PreviewWalkTest, FindsPhotosAtEveryDepthOldestFirst) {
  makePhoto("Ann/b.jpg", 30);
  makePhoto("Ann/deep/er/a.JPEG", 10);
  makePhoto("loose.png", 20);
  makePhoto(".hidden/.c.tif", 40);
  EXPECT_EQ(found(), (Names{"Ann/deep/er/a.JPEG", "loose.png", "Ann/b.jpg", ".hidden/.c.tif"}));
}

TEST_F(PreviewWalkTest, TellsPhotosOfTheSameSecondApart) {
  makePhoto("b.jpg", 5, 2000);
  makePhoto("a.jpg", 5, 3000);
  makePhoto("c.jpg", 5, 1000);
  EXPECT_EQ(found(), (Names{"c.jpg", "b.jpg", "a.jpg"}));
}

TEST_F(PreviewWalkTest, LeavesOutWhatThePreviewCannotShow) {
  for (const char* name : {"a.CR3", "b.heif", "c.xmp", "d", ".jpg", "e.jpg.part"})
    makePhoto(name, 1);
  makeFolder("folder.jpg");
  ASSERT_EQ(::mkfifo(inTarget("pipe.jpg").c_str(), 0600), 0);
  EXPECT_EQ(found(), Names());
}

TEST_F(PreviewWalkTest, TakesALinkToAPhotoButGoesThroughNoLinkToAFolder) {
  makePhoto("Ann/a.jpg", 1);
  std::filesystem::create_symlink("Ann", inTarget("again"));
  std::filesystem::create_symlink(".", inTarget("Ann/self"));
  std::filesystem::create_symlink("missing.jpg", inTarget("nowhere.jpg"));
  std::filesystem::create_symlink("Ann", inTarget("folder.jpg"));
  EXPECT_EQ(found(), Names{"Ann/a.jpg"});
  std::filesystem::create_symlink("Ann/a.jpg", inTarget("link.jpg"));
  EXPECT_EQ(found().size(), 2u);
}

TEST_F(PreviewWalkTest, KeepsNamesThatAreNotText) {
  makePhoto("\xff/\xfe.jpg", 1);
  EXPECT_EQ(found(), Names{"\xff/\xfe.jpg"});
}

TEST_F(PreviewWalkTest, AFolderThatIsGoneHoldsNoPhotos) {
  std::filesystem::remove_all(target);
  EXPECT_EQ(found(), Names());
}

TEST_F(PreviewWalkTest, EndsAtTheNextFolderWhenItIsToldToStop) {
  makePhoto("Ann/a.jpg", 1);
  makePhoto("Ben/a.jpg", 2);
  int asked = 0;
  EXPECT_EQ(previewablePhotosBelow(target, [&] { return ++asked > 2; }), QStringList());
  EXPECT_EQ(asked, 3);
}

TEST_F(PreviewWalkTest, FindsWhatStaysWhileOtherFoldersComeAndGo) {
  for (int i = 0; i < 20; ++i)
    makePhoto("Person " + std::to_string(i) + "/1.jpg", i);
  std::atomic<bool> stop = false;
  std::thread other([&] {
    for (int i = 0; !stop; i = (i + 1) % 10) {
      const std::string name = "Guest " + std::to_string(i);
      makeFile(name + "/x/1.jpg");
      std::filesystem::remove_all(inTarget(name));
    }
  });
  for (int round = 0; round < 200; ++round) {
    const Names names = found();
    EXPECT_EQ(std::count_if(names.begin(), names.end(),
                            [](const std::string& name) { return name.starts_with("Person "); }),
              20);
  }
  stop = true;
  other.join();
}

}  // namespace
}  // namespace ambrel
