// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "SampleDng.h"
#include "SamplePhotos.h"
#include "ui/RawDecoder.h"

namespace ambrel::ui {
namespace {

class RawDecoderTest : public ::testing::Test {
 protected:
  Result<QImage> decode(const QByteArray& bytes) {
    QFile file(_folder.filePath(QStringLiteral("photo.dng")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    return decodeRawPreview(file.fileName(), {120, 90});
  }
  static SampleDng dng(quint16 orientation = 1) {
    return {encoded(redAndBlue({600, 400}), "jpeg"), 600, 400, orientation};
  }

  QTemporaryDir _folder;
};

TEST_F(RawDecoderTest, ShowsThePreviewThatTheCameraPutIn) {
  const Result<QImage> image = decode(dng().bytes());
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(120, 80));
  EXPECT_TRUE(isRed(image.value(), 0.2, 0.5));
  EXPECT_TRUE(isBlue(image.value(), 0.8, 0.5));
}

TEST_F(RawDecoderTest, TurnsThePreviewUpright) {
  const Result<QImage> image = decode(dng(6).bytes());
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(60, 90));
  EXPECT_TRUE(isRed(image.value(), 0.5, 0.2));
}

TEST_F(RawDecoderTest, RefusesFilesThatAreCutZeroedOrEmpty) {
  const QByteArray whole = dng().bytes();
  EXPECT_FALSE(decode({}));
  EXPECT_FALSE(decode(QByteArray(whole.size(), '\0')));
  EXPECT_FALSE(decode(whole.left(1000)));
  EXPECT_FALSE(decode(whole.left(100)));
}

TEST_F(RawDecoderTest, ComesToAnEndOfDirectoriesWithoutEnd) {
  const Result<QImage> image = decode(dng().endless());
  if (image) {
    EXPECT_EQ(image.value().size(), QSize(120, 80));
  }
}

TEST_F(RawDecoderTest, RefusesAFileThatIsNotThere) {
  EXPECT_FALSE(decodeRawPreview(_folder.filePath(QStringLiteral("none.cr3")), {120, 90}));
}

}  // namespace
}  // namespace ambrel::ui
