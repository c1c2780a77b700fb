// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "SamplePhotos.h"
#include "ui/JpegDecoder.h"

namespace ambrel::ui {
namespace {

constexpr QSize kFit{120, 90};

TEST(JpegDecoder, DecodesAtTheSizeOfTheView) {
  const Result<QImage> image = decodeJpeg(encoded(redAndBlue({600, 400}), "jpeg"), kFit);
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(120, 80));
  EXPECT_TRUE(isRed(image.value(), 0.2, 0.5));
  EXPECT_TRUE(isBlue(image.value(), 0.8, 0.5));
}

TEST(JpegDecoder, LeavesASmallPictureAtItsSize) {
  const Result<QImage> image = decodeJpeg(encoded(redAndBlue({60, 40}), "jpeg"), kFit);
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value().size(), QSize(60, 40));
}

TEST(JpegDecoder, TurnsThePictureUprightAndFitsItStanding) {
  const QByteArray held = encoded(redAndBlue({600, 400}), "jpeg", QImageIOHandler::TransformationRotate90);
  const Result<QImage> image = decodeJpeg(held, kFit);
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value().size(), QSize(60, 90));
  EXPECT_TRUE(isRed(image.value(), 0.5, 0.2));
  EXPECT_TRUE(isBlue(image.value(), 0.5, 0.8));
}

TEST(JpegDecoder, DecodesGreyPictures) {
  const Result<QImage> image =
      decodeJpeg(encoded(redAndBlue({60, 40}).convertToFormat(QImage::Format_Grayscale8), "jpeg"), kFit);
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value().size(), QSize(60, 40));
}

TEST(JpegDecoder, Decodes45Megapixels) {
  QImage large(8192, 5464, QImage::Format_Grayscale8);
  large.fill(128);
  const Result<QImage> image = decodeJpeg(encoded(large, "jpeg"), {1200, 900});
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(1200, 800));
}

TEST(JpegDecoder, RefusesAPictureCutAnywhere) {
  const QByteArray whole = encoded(redAndBlue({600, 400}), "jpeg");
  for (qsizetype length = 0; length < whole.size() - 2; length += whole.size() / 40)
    EXPECT_FALSE(decodeJpeg(whole.left(length), kFit)) << length;
}

TEST(JpegDecoder, RefusesAPictureThatIsZeroFromItsMiddleOn) {
  QByteArray bytes = encoded(redAndBlue({600, 400}), "jpeg");
  const qsizetype half = bytes.size() / 2;
  bytes.replace(half, bytes.size() - half, QByteArray(bytes.size() - half, '\0'));
  EXPECT_FALSE(decodeJpeg(bytes, kFit));
}

TEST(JpegDecoder, RefusesAHeaderOfFourGigapixelsWithoutTakingTheMemory) {
  const QByteArray bytes = withDimensions(encoded(redAndBlue({60, 40}), "jpeg"), 65500, 65500);
  const Result<QImage> image = decodeJpeg(bytes, kFit);
  EXPECT_EQ(image.error(), QStringLiteral("The picture is too large to be shown."));
}

TEST(JpegDecoder, ComesToAnEndOfExifDirectoriesWithoutEnd) {
  const Result<QImage> image = decodeJpeg(withEndlessExif(encoded(redAndBlue({60, 40}), "jpeg")), kFit);
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value().size(), QSize(60, 40));
}

TEST(JpegDecoder, RefusesWhatIsNoJpeg) {
  EXPECT_FALSE(decodeJpeg({}, kFit));
  EXPECT_FALSE(decodeJpeg("<svg xmlns='http://www.w3.org/2000/svg'/>", kFit));
  EXPECT_FALSE(decodeJpeg(encoded(redAndBlue({60, 40}), "png"), kFit));
}

}  // namespace
}  // namespace ambrel::ui
