// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <libheif/heif.h>

#include "SamplePhotos.h"
#include "ui/HeicDecoder.h"

namespace ambrel::ui {
namespace {

// Writes a picture as HEIC the way a phone does.
bool writeHeic(const QImage& picture, const QString& path) {
  const QImage source = picture.convertToFormat(QImage::Format_RGB888);
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  heif_image* image = nullptr;
  bool ok =
      heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code == heif_error_Ok &&
      heif_image_create(source.width(), source.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB,
                        &image)
              .code == heif_error_Ok &&
      heif_image_add_plane(image, heif_channel_interleaved, source.width(), source.height(), 8).code ==
          heif_error_Ok;
  if (ok) {
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < source.height(); ++y)
      std::copy_n(source.constScanLine(y), 3 * source.width(), plane + qsizetype{y} * stride);
    ok = heif_context_encode_image(context, image, encoder, nullptr, nullptr).code == heif_error_Ok &&
         heif_context_write_to_file(context, QFile::encodeName(path).constData()).code == heif_error_Ok;
  }
  heif_image_release(image);
  heif_encoder_release(encoder);
  heif_context_free(context);
  return ok;
}

class HeicDecoderTest : public ::testing::Test {
 protected:
  HeicDecoderTest() { EXPECT_TRUE(writeHeic(redAndBlue({600, 400}), path())); }
  QString path() const { return _folder.filePath(QStringLiteral("photo.heic")); }

  QTemporaryDir _folder;
};

TEST_F(HeicDecoderTest, DecodesAtTheSizeOfTheView) {
  const Result<QImage> image = decodeHeic(path(), {120, 90});
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(120, 80));
  EXPECT_TRUE(isRed(image.value(), 0.2, 0.5));
  EXPECT_TRUE(isBlue(image.value(), 0.8, 0.5));
}

TEST_F(HeicDecoderTest, RefusesACutFileAndOneThatIsNotThere) {
  QFile file(path());
  ASSERT_TRUE(file.resize(file.size() / 2));
  EXPECT_FALSE(decodeHeic(path(), {120, 90}));
  ASSERT_TRUE(file.resize(0));
  EXPECT_FALSE(decodeHeic(path(), {120, 90}));
  ASSERT_TRUE(file.remove());
  EXPECT_FALSE(decodeHeic(path(), {120, 90}));
}

}  // namespace
}  // namespace ambrel::ui
