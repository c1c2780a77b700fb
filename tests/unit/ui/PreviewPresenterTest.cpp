// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <gtest/gtest.h>

#include "SamplePhotos.h"
#include "support/EventLoop.h"
#include "support/TestClock.h"
#include "ui/PhotoDecoder.h"
#include "ui/PreviewPresenter.h"

namespace ambrel::ui {
namespace {

class PreviewPresenterTest : public ::testing::Test {
 protected:
  PreviewPresenterTest() {
    _pane.resize(620, 600);
    _pane.show();
  }
  // A photo that is older than those written after it.
  QString write(const QString& name, const QByteArray& bytes) {
    QFile file(_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    EXPECT_TRUE(
        file.setFileTime(QDateTime::fromSecsSinceEpoch(++_written), QFileDevice::FileModificationTime));
    return file.fileName();
  }
  QString writePhoto(const QString& name, QSize size = {60, 40}) {
    return write(name, encoded(redAndBlue(size), "jpeg"));
  }
  bool waitForLabel(const QString& label) {
    return runEventsUntil([&] { return _pane.label() == label; });
  }

  QTemporaryDir _folder;
  TestClock _clock;
  qint64 _written = 1000;
  std::atomic<int> _decodings = 0;
  PreviewPane _pane{nullptr};
  PreviewList _list{_clock, [this] { return _folder.path(); }};
  PreviewPresenter _presenter{_list, _pane, [this](const QString& path, QSize fit) {
                                ++_decodings;
                                return decodePhoto(path, fit);
                              }};
};

TEST_F(PreviewPresenterTest, ShowsThePhotoJustFiledWithItsPlaceAmongAll) {
  writePhoto(QStringLiteral("a.jpg"));
  _list.scheduleLatestCapturePreviewAtPath(writePhoto(QStringLiteral("b.jpg")));
  _clock.advance(PreviewList::kDebounce);
  ASSERT_TRUE(waitForLabel(QStringLiteral("b.jpg  (2/2)"))) << _pane.label().toStdString();
  EXPECT_TRUE(_pane.preview()->hasPhoto());
  EXPECT_TRUE(_pane.previousButton()->isEnabled());
  EXPECT_FALSE(_pane.nextButton()->isEnabled());
}

TEST_F(PreviewPresenterTest, DecodesOnlyTheLastPhotoOfABurst) {
  using namespace std::chrono_literals;
  for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
    _list.scheduleLatestCapturePreviewAtPath(writePhoto(QLatin1String(name)));
    _clock.advance(200ms);
  }
  _clock.advance(PreviewList::kDebounce);
  ASSERT_TRUE(waitForLabel(QStringLiteral("c.jpg  (3/3)")));
  EXPECT_EQ(_decodings, 1);
}

TEST_F(PreviewPresenterTest, ItsButtonsStepThroughThePhotosAndStopAtTheEnds) {
  writePhoto(QStringLiteral("a.jpg"));
  writePhoto(QStringLiteral("b.jpg"));
  _list.showPreviewPath(writePhoto(QStringLiteral("c.jpg")), PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(waitForLabel(QStringLiteral("c.jpg  (3/3)")));
  QTest::mouseClick(_pane.previousButton(), Qt::LeftButton);
  ASSERT_TRUE(waitForLabel(QStringLiteral("b.jpg  (2/3)")));
  QTest::mouseClick(_pane.previousButton(), Qt::LeftButton);
  ASSERT_TRUE(waitForLabel(QStringLiteral("a.jpg  (1/3)")));
  EXPECT_FALSE(_pane.previousButton()->isEnabled());
  QTest::mouseClick(_pane.nextButton(), Qt::LeftButton);
  EXPECT_TRUE(waitForLabel(QStringLiteral("b.jpg  (2/3)")));
}

TEST_F(PreviewPresenterTest, ADamagedPhotoLeavesThePictureAndItsName) {
  _list.showPreviewPath(writePhoto(QStringLiteral("a.jpg")), PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(waitForLabel(QStringLiteral("a.jpg  (1/1)")));
  const QImage before = _pane.preview()->grab().toImage();
  const QByteArray whole = encoded(redAndBlue({60, 40}), "jpeg");
  _list.showPreviewPath(write(QStringLiteral("cut.jpg"), whole.left(whole.size() / 2)),
                        PreviewList::ListRefresh::No);
  ASSERT_TRUE(runEventsUntil([this] { return _decodings == 2; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(_pane.preview()->grab().toImage(), before);
  EXPECT_TRUE(_pane.label().startsWith(QStringLiteral("a.jpg")));
}

TEST_F(PreviewPresenterTest, PhotosPassByWhileTheOperatorStepsFasterThanTheyAreDecoded) {
  constexpr int kPhotos = 40;
  for (int i = 1; i < kPhotos; ++i)
    writePhoto(QStringLiteral("%1.jpg").arg(i));
  _list.showPreviewPath(writePhoto(QStringLiteral("40.jpg")), PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(waitForLabel(QStringLiteral("40.jpg  (40/40)")));
  // Every photo is still being decoded when the operator is two further on.
  QStringList seen;
  QObject::connect(&_list, &PreviewList::filenameLabelChanged, [&] { seen << _list.filenameLabel(); });
  while (_list.hasPrevious()) {
    const int begun = _decodings;
    _list.previewPreviousImage();
    ASSERT_TRUE(runEventsUntil([&] { return _decodings > begun; }));
    if (_list.hasPrevious()) _list.previewPreviousImage();
  }
  ASSERT_TRUE(waitForLabel(QStringLiteral("1.jpg  (1/40)"))) << _pane.label().toStdString();
  EXPECT_GT(seen.size(), 10);
}

TEST_F(PreviewPresenterTest, GrowingTheWindowDoesNotGiveUpThePhotoOnItsWay) {
  _pane.resize(360, 400);
  const QString first = writePhoto(QStringLiteral("a.jpg"), {900, 600});
  _list.showPreviewPath(first, PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(waitForLabel(QStringLiteral("a.jpg  (1/1)")));
  _list.showPreviewPath(writePhoto(QStringLiteral("b.jpg"), {900, 600}), PreviewList::ListRefresh::Yes);
  _pane.resize(760, 700);
  EXPECT_TRUE(waitForLabel(QStringLiteral("b.jpg  (2/2)"))) << _pane.label().toStdString();
}

TEST_F(PreviewPresenterTest, DecodesThePhotoAgainOnceThereIsRoomForMoreOfIt) {
  _pane.resize(360, 400);
  _list.showPreviewPath(writePhoto(QStringLiteral("a.jpg"), {900, 600}), PreviewList::ListRefresh::Yes);
  ASSERT_TRUE(waitForLabel(QStringLiteral("a.jpg  (1/1)")));
  const double before = _pane.preview()->photoPlace().width();
  _pane.resize(760, 700);
  EXPECT_TRUE(runEventsUntil([&] { return _pane.preview()->photoPlace().width() > before; }));
}

}  // namespace
}  // namespace ambrel::ui
