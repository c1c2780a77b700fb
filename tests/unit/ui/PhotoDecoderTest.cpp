// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "SampleDng.h"
#include "SamplePhotos.h"
#include "ui/PhotoDecoder.h"

namespace ambrel::ui {
namespace {

constexpr QSize kFit{120, 90};

class PhotoDecoderTest : public ::testing::Test {
 protected:
  PhotoDecoderTest() { allowLargePhotos(); }
  Result<QImage> decode(const QString& name, const QByteArray& bytes) {
    QFile file(_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    return decodePhoto(file.fileName(), kFit);
  }

  QTemporaryDir _folder;
};

TEST_F(PhotoDecoderTest, DecodesEveryKindByItsExtensionInAnyLetterCase) {
  const QImage photo = redAndBlue({600, 400});
  const QByteArray jpeg = encoded(photo, "jpeg");
  const QByteArray tiff = encoded(photo, "tiff");
  const std::pair<const char*, QByteArray> files[] = {
      {"a.jpg", jpeg}, {"b.JPEG", jpeg}, {"c.png", encoded(photo, "png")},
      {"d.tif", tiff}, {"e.TIFF", tiff}, {"f.Dng", SampleDng(jpeg, 600, 400).bytes()}};
  for (const auto& [name, bytes] : files) {
    ASSERT_FALSE(bytes.isEmpty()) << name;
    const Result<QImage> image = decode(QLatin1String(name), bytes);
    ASSERT_TRUE(image) << name << ": " << image.error().toStdString();
    EXPECT_EQ(image.value().size(), QSize(120, 80)) << name;
    EXPECT_TRUE(isRed(image.value(), 0.2, 0.5)) << name;
  }
}

TEST_F(PhotoDecoderTest, NeverTakesAFileForAnotherKindThanItsExtensionSays) {
  const QByteArray jpeg = encoded(redAndBlue({60, 40}), "jpeg");
  const QByteArray png = encoded(redAndBlue({60, 40}), "png");
  const QByteArray svg("<svg xmlns='http://www.w3.org/2000/svg' width='60' height='40'/>");
  EXPECT_FALSE(decode(QStringLiteral("a.jpg"), svg));
  EXPECT_FALSE(decode(QStringLiteral("a.jpg"), png));
  EXPECT_FALSE(decode(QStringLiteral("a.png"), jpeg));
  EXPECT_FALSE(decode(QStringLiteral("a.tif"), svg));
  EXPECT_FALSE(decode(QStringLiteral("a.cr2"), png));
  EXPECT_FALSE(decode(QStringLiteral("a.heic"), jpeg));
  EXPECT_FALSE(decode(QStringLiteral("a.svg"), svg));
  EXPECT_FALSE(decode(QStringLiteral("a"), jpeg));
}

TEST_F(PhotoDecoderTest, DecodesAPngOf45Megapixels) {
  QImage large(8192, 5464, QImage::Format_RGB32);
  large.fill(Qt::red);
  const Result<QImage> image = decode(QStringLiteral("large.png"), encoded(large, "png"));
  ASSERT_TRUE(image) << image.error().toStdString();
  EXPECT_EQ(image.value().size(), QSize(120, 80));
}

TEST_F(PhotoDecoderTest, TurnsATiffUpright) {
  const Result<QImage> image =
      decode(QStringLiteral("held.tif"),
             encoded(redAndBlue({600, 400}), "tiff", QImageIOHandler::TransformationRotate90));
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value().size(), QSize(60, 90));
  EXPECT_TRUE(isRed(image.value(), 0.5, 0.2));
}

TEST_F(PhotoDecoderTest, RefusesAPhotoUntilItsLastByteHasArrived) {
  const std::pair<const char*, QByteArray> files[] = {{"a.jpg", encoded(redAndBlue({600, 400}), "jpeg")},
                                                      {"a.png", encoded(redAndBlue({600, 400}), "png")},
                                                      {"a.tif", encoded(redAndBlue({600, 400}), "tiff")}};
  for (const auto& [name, bytes] : files) {
    for (const double share : {0.0, 0.1, 0.5, 0.9})
      EXPECT_FALSE(decode(QLatin1String(name),
                          bytes.left(static_cast<qsizetype>(share * static_cast<double>(bytes.size())))))
          << name << " " << share;
    EXPECT_TRUE(decode(QLatin1String(name), bytes)) << name;
  }
}

TEST_F(PhotoDecoderTest, RefusesAPngHeaderOfFourGigapixels) {
  QByteArray bytes = encoded(redAndBlue({60, 40}), "png");
  // Width and height in the first chunk, and the checksum that goes with them.
  bytes.replace(16, 8, QByteArray::fromHex("0000ffdc0000ffdc"));
  EXPECT_FALSE(decode(QStringLiteral("bomb.png"), bytes));
}

TEST_F(PhotoDecoderTest, ComesToAnEndOfTiffDirectoriesWithoutEnd) {
  QByteArray bytes = encoded(redAndBlue({60, 40}), "tiff");
  const auto* head = reinterpret_cast<const uchar*>(bytes.constData());
  ASSERT_EQ(bytes.left(2), "II");
  const auto directory = qFromLittleEndian<quint32>(head + 4);
  const auto entries = qFromLittleEndian<quint16>(head + directory);
  qToLittleEndian<quint32>(directory, bytes.data() + directory + 2 + entries * 12);
  const Result<QImage> image = decode(QStringLiteral("endless.tif"), bytes);
  if (image) {
    EXPECT_EQ(image.value().size(), QSize(60, 40));
  }
}

TEST_F(PhotoDecoderTest, NeverWaitsForAPipeAndRefusesAFolder) {
  const QString pipe = _folder.filePath(QStringLiteral("pipe.jpg"));
  ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  EXPECT_FALSE(decodePhoto(pipe, kFit));
  ASSERT_TRUE(QDir(_folder.path()).mkdir(QStringLiteral("folder.jpg")));
  EXPECT_FALSE(decodePhoto(_folder.filePath(QStringLiteral("folder.jpg")), kFit));
  EXPECT_FALSE(decodePhoto(_folder.filePath(QStringLiteral("missing.jpg")), kFit));
}

}  // namespace
}  // namespace ambrel::ui
