// SPDX-License-Identifier: Apache-2.0
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <semaphore>
#include <thread>

#include "support/EventLoop.h"
#include "ui/ImageLoader.h"

namespace ambrel::ui {
namespace {

QImage picture(int width) {
  QImage image(width, 1, QImage::Format_RGB32);
  image.fill(Qt::red);
  return image;
}

TEST(ImageLoader, DecodesOnAThreadOfItsOwnAndAnswersOnTheCallers) {
  std::thread::id decodedOn;
  ImageLoader loader([&](const QString&, QSize fit) -> Result<QImage> {
    decodedOn = std::this_thread::get_id();
    return picture(fit.width());
  });
  std::thread::id answeredOn;
  QImage shown;
  QObject::connect(&loader, &ImageLoader::loaded, [&](const QString&, const QImage& image) {
    answeredOn = std::this_thread::get_id();
    shown = image;
  });
  loader.load(QStringLiteral("/a.jpg"), {7, 5});
  ASSERT_TRUE(runEventsUntil([&] { return !shown.isNull(); }));
  EXPECT_EQ(shown.width(), 7);
  EXPECT_EQ(answeredOn, std::this_thread::get_id());
  EXPECT_NE(decodedOn, answeredOn);
}

TEST(ImageLoader, DropsWhatWasAskedForBeforeTheNewestAndHasNotBegun) {
  std::counting_semaphore<> begun(0);
  std::counting_semaphore<> goOn(0);
  QStringList decoded;
  ImageLoader loader([&](const QString& path, QSize) -> Result<QImage> {
    decoded << path;
    begun.release();
    goOn.acquire();
    return picture(1);
  });
  QStringList shown;
  QObject::connect(&loader, &ImageLoader::loaded, [&](const QString& path, const QImage&) { shown << path; });
  loader.load(QStringLiteral("/1.jpg"), {1, 1});
  begun.acquire();
  for (int photo = 2; photo <= 5; ++photo)
    loader.load(QStringLiteral("/%1.jpg").arg(photo), {1, 1});
  goOn.release(2);
  ASSERT_TRUE(runEventsUntil([&] { return shown.size() == 2; }));
  EXPECT_EQ(shown, QStringList({QStringLiteral("/1.jpg"), QStringLiteral("/5.jpg")}));
  EXPECT_EQ(decoded, shown);
}

TEST(ImageLoader, SaysWhyAPhotoCannotBeShown) {
  ImageLoader loader([](const QString&, QSize) -> Result<QImage> { return Failure{QStringLiteral("cut")}; });
  QSignalSpy failures(&loader, &ImageLoader::failed);
  loader.load(QStringLiteral("/a.jpg"), {1, 1});
  ASSERT_TRUE(runEventsUntil([&] { return failures.count() == 1; }));
  EXPECT_EQ(failures[0], QVariantList({QStringLiteral("/a.jpg"), QStringLiteral("cut")}));
}

TEST(ImageLoader, EndsWithoutWaitingForADecoderThatHangs) {
  // Outlives the loader, as a drive that is gone outlives the application.
  auto hang = std::make_shared<std::counting_semaphore<>>(0);
  auto begun = std::make_shared<std::counting_semaphore<>>(0);
  {
    ImageLoader loader([hang, begun](const QString&, QSize) -> Result<QImage> {
      begun->release();
      hang->acquire();
      return picture(1);
    });
    loader.load(QStringLiteral("/a.jpg"), {1, 1});
    begun->acquire();
  }
  hang->release();
}

}  // namespace
}  // namespace ambrel::ui
