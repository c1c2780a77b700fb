// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

#include "FoldersFixture.h"
#include "core/capture/PreviewList.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

using namespace std::chrono_literals;
using ListRefresh = PreviewList::ListRefresh;

// The view's part is played by the test: every photo asked for is loaded at once, unless it is told
// otherwise.
class PreviewListTest : public FoldersFixture {
 protected:
  PreviewListTest() {
    QObject::connect(&preview, &PreviewList::imageWanted, [this](const QString& path) {
      wanted << path;
      if (!loads) return;
      preview.imageLoaded(path);
    });
    QObject::connect(&preview, &PreviewList::controlsStale, [this] { ++controlRefreshes; });
  }

  // Photos named a.jpg, b.jpg and so on, each newer than the one before.
  void makePhotos(int count) {
    for (int i = 0; i < count; ++i)
      makePhoto(std::string(1, static_cast<char>('a' + i)) + ".jpg", i);
  }
  void makePhoto(const std::string& name, long seconds) {
    makeFile(name);
    const timespec date{1'000'000'000 + seconds, 0};
    const timespec times[] = {date, date};
    ASSERT_EQ(::utimensat(AT_FDCWD, inTarget(name).c_str(), times, 0), 0);
  }
  QString photo(const QString& name) const { return targetDir + '/' + name; }
  void show(const QString& name) {
    preview.showPreviewPath(photo(name), ListRefresh::Yes);
    serveWalk();
  }
  void serveWalk() { ASSERT_TRUE(preview.finishRefresh(kLongEnough)); }

  PreviewList preview{clock, [this] { return targetDir; }};
  bool loads = true;
  QStringList wanted;
  int controlRefreshes = 0;
};

TEST_F(PreviewListTest, ShowsNothingBeforeTheFirstPhoto) {
  EXPECT_EQ(preview.previewIndex(), -1);
  EXPECT_EQ(preview.currentPreviewPath(), "");
  EXPECT_EQ(preview.filenameLabel(), "");
  EXPECT_FALSE(preview.hasPrevious());
  EXPECT_FALSE(preview.hasNext());
}

TEST_F(PreviewListTest, OfABurstOnlyTheLastPhotoIsShown) {
  makePhotos(3);
  preview.scheduleLatestCapturePreviewAtPath(photo("a.jpg"));
  clock.advance(200ms);
  preview.scheduleLatestCapturePreviewAtPath(photo("b.jpg"));
  clock.advance(200ms);
  preview.scheduleLatestCapturePreviewAtPath(photo("c.jpg"));
  clock.advance(449ms);
  EXPECT_EQ(wanted, QStringList());
  clock.advance(1ms);
  serveWalk();
  clock.advance(10s);
  EXPECT_EQ(wanted, QStringList{photo("c.jpg")});
  EXPECT_EQ(preview.filenameLabel(), "c.jpg  (3/3)");
  EXPECT_EQ(preview.currentPreviewPath(), photo("c.jpg"));
}

TEST_F(PreviewListTest, AnEmptyPathIsNeitherScheduledNorShown) {
  makePhotos(1);
  preview.scheduleLatestCapturePreviewAtPath(photo("a.jpg"));
  preview.scheduleLatestCapturePreviewAtPath("");
  preview.showPreviewPath("", ListRefresh::Yes);
  clock.advance(450ms);
  EXPECT_EQ(wanted, QStringList{photo("a.jpg")});
}

TEST_F(PreviewListTest, WithoutAPendingPhotoThereIsNothingToShow) {
  preview.showPendingLatestCapturePreview();
  EXPECT_EQ(wanted, QStringList());
}

TEST_F(PreviewListTest, ThePendingPhotoCanBeShownOnceMore) {
  makePhotos(1);
  preview.scheduleLatestCapturePreviewAtPath(photo("a.jpg"));
  clock.advance(450ms);
  preview.showPendingLatestCapturePreview();
  EXPECT_EQ(wanted.size(), 2);
}

TEST_F(PreviewListTest, StepsThroughThePhotosAndStopsAtEitherEnd) {
  makePhotos(3);
  show("b.jpg");
  wanted.clear();
  preview.previewPreviousImage();
  EXPECT_FALSE(preview.hasPrevious());
  preview.previewPreviousImage();
  EXPECT_EQ(preview.filenameLabel(), "a.jpg  (1/3)");
  preview.previewNextImage();
  preview.previewNextImage();
  EXPECT_FALSE(preview.hasNext());
  preview.previewNextImage();
  EXPECT_EQ(preview.filenameLabel(), "c.jpg  (3/3)");
  EXPECT_EQ(wanted, (QStringList{photo("a.jpg"), photo("b.jpg"), photo("c.jpg")}));
}

TEST_F(PreviewListTest, SteppingDoesNotRefreshTheList) {
  makePhotos(2);
  show("b.jpg");
  makePhotos(4);
  preview.previewPreviousImage();
  serveWalk();
  EXPECT_EQ(preview.previewImagePaths().size(), 2);
  show("d.jpg");
  EXPECT_EQ(preview.previewImagePaths().size(), 4);
}

TEST_F(PreviewListTest, ARawPhotoIsHandedOverWithThePlaceOfTheLastOneThatIsListed) {
  makePhotos(2);
  makePhoto("raw.CR3", 9);
  show("raw.CR3");
  EXPECT_EQ(wanted, QStringList{photo("raw.CR3")});
  EXPECT_EQ(preview.previewImagePaths().size(), 2);
  EXPECT_EQ(preview.previewIndex(), 1);
  EXPECT_EQ(preview.filenameLabel(), "raw.CR3  (2/2)");
}

TEST_F(PreviewListTest, APhotoThatDoesNotLoadLeavesTheOneBefore) {
  makePhotos(2);
  show("a.jpg");
  loads = false;
  controlRefreshes = 0;
  preview.previewNextImage();
  preview.imageFailed(photo("b.jpg"));
  EXPECT_EQ(preview.currentPreviewPath(), photo("a.jpg"));
  EXPECT_EQ(preview.filenameLabel(), "a.jpg  (1/2)");
  EXPECT_EQ(preview.previewIndex(), 1);
  EXPECT_EQ(controlRefreshes, 1);
}

TEST_F(PreviewListTest, ATargetFolderWithoutPreviewablePhotosHasNoPlaceToStepFrom) {
  makePhoto("raw.CR3", 1);
  loads = false;
  show("raw.CR3");
  EXPECT_EQ(preview.previewIndex(), -1);
  wanted.clear();
  preview.previewNextImage();
  preview.previewPreviousImage();
  EXPECT_EQ(wanted, QStringList());
}

TEST_F(PreviewListTest, WithoutATargetFolderThePhotosBesideItAreListed) {
  makePhotos(2);
  makePhoto("Ann/x.jpg", 5);
  const QString path = photo("Ann/x.jpg");
  targetDir.clear();
  preview.showPreviewPath(path, ListRefresh::Yes);
  serveWalk();
  EXPECT_EQ(preview.filenameLabel(), "x.jpg  (1/1)");
}

TEST_F(PreviewListTest, WithoutAnyFolderTheListIsEmpty) {
  makePhotos(2);
  show("b.jpg");
  targetDir.clear();
  preview.showPreviewPath("b.jpg", ListRefresh::Yes);
  EXPECT_TRUE(preview.previewImagePaths().isEmpty());
  EXPECT_EQ(preview.previewIndex(), -1);
}

TEST_F(PreviewListTest, TheNewestRequestWins) {
  makePhotos(3);
  const QString other = path("Other");
  preview.showPreviewPath(photo("a.jpg"), ListRefresh::Yes);
  targetDir = other;
  preview.showPreviewPath(photo("b.jpg"), ListRefresh::Yes);
  serveWalk();
  EXPECT_TRUE(preview.previewImagePaths().isEmpty()) << "the list of the first request was taken";
  EXPECT_EQ(preview.currentPreviewPath().section('/', -1), "b.jpg");
}

TEST_F(PreviewListTest, APhotoSteppedPastWhileItLoadedIsShownWithItsOwnPlace) {
  makePhotos(4);
  show("a.jpg");
  loads = false;
  preview.previewNextImage();
  preview.previewNextImage();
  preview.previewNextImage();
  preview.imageLoaded(photo("b.jpg"));
  EXPECT_EQ(preview.currentPreviewPath(), photo("b.jpg"));
  EXPECT_EQ(preview.filenameLabel(), "b.jpg  (2/4)");
  EXPECT_EQ(preview.previewIndex(), 3);
  preview.imageLoaded(photo("d.jpg"));
  EXPECT_EQ(preview.filenameLabel(), "d.jpg  (4/4)");
}

TEST_F(PreviewListTest, AListThatArrivesAfterAStepFindsThePlaceOfThePhotoSteppedTo) {
  makePhotos(3);
  show("b.jpg");
  preview.showPreviewPath(photo("c.jpg"), ListRefresh::Yes);
  preview.previewPreviousImage();  // in the list as it still is
  serveWalk();
  EXPECT_EQ(preview.currentPreviewPath(), photo("a.jpg"));
  EXPECT_EQ(preview.filenameLabel(), "a.jpg  (1/3)");
}

TEST_F(PreviewListTest, APhotoMayBeAskedForFromAnyThread) {
  makePhotos(1);
  std::thread other([this] { preview.previewImageAtPath(photo("a.jpg")); });
  other.join();
  EXPECT_EQ(wanted, QStringList());
  QCoreApplication::processEvents();
  EXPECT_EQ(wanted, QStringList{photo("a.jpg")});
}

TEST_F(PreviewListTest, WalkingManyPhotosLeavesTheMainThreadFree) {
  constexpr int kPhotos = 20'000;
  makePhotos(1);
  makeFile("b.jpg");
  for (int i = 2; i < kPhotos; ++i)
    std::filesystem::create_hard_link(inTarget("b.jpg"), inTarget(std::to_string(i) + ".jpg"));
  Heartbeat heartbeat;
  preview.showPreviewPath(photo("a.jpg"), ListRefresh::Yes);
  ASSERT_TRUE(runEventsUntil([&] { return preview.previewImagePaths().size() == kPhotos; }));
  EXPECT_LT(heartbeat.longestGap(), 100ms);
  EXPECT_EQ(preview.previewIndex(), 0);
}

}  // namespace
}  // namespace ambrel
