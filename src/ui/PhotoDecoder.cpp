// SPDX-License-Identifier: Apache-2.0
#include "ui/PhotoDecoder.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include "ui/HeicDecoder.h"
#include "ui/JpegDecoder.h"
#include "ui/PhotoScaling.h"
#include "ui/RawDecoder.h"

namespace ambrel::ui {
namespace {

enum class PhotoKind { Unknown, Jpeg, Png, Tiff, Heic, Raw };

PhotoKind kindByExtension(const QString& path) {
  struct Extension {
    const char* letters;
    PhotoKind kind;
  };
  constexpr Extension kExtensions[] = {
      {"jpg", PhotoKind::Jpeg},  {"jpeg", PhotoKind::Jpeg}, {"png", PhotoKind::Png}, {"tif", PhotoKind::Tiff},
      {"tiff", PhotoKind::Tiff}, {"heic", PhotoKind::Heic}, {"cr2", PhotoKind::Raw}, {"cr3", PhotoKind::Raw},
      {"crw", PhotoKind::Raw},   {"dng", PhotoKind::Raw},   {"nef", PhotoKind::Raw}, {"arw", PhotoKind::Raw},
  };
  const QString extension = QFileInfo(path).suffix().toLower();
  for (const Extension& known : kExtensions)
    if (extension == QLatin1String(known.letters)) return known.kind;
  return PhotoKind::Unknown;
}

Result<QImage> decodeJpegFile(const QString& path, QSize fit) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return Failure{file.errorString()};
  if (file.size() > kPhotoMemoryLimit) return Failure{QStringLiteral("The file is too large to be shown.")};
  return decodeJpeg(file.readAll(), fit);
}

Result<QImage> decodeByToolkit(const QString& path, const QByteArray& format, QSize fit) {
  QImageReader reader(path, format);
  reader.setDecideFormatFromContent(false);
  reader.setAutoDetectImageFormat(false);
  reader.setAutoTransform(true);
  if (!fitsIntoMemory(reader.size())) return Failure{QStringLiteral("The picture cannot be shown.")};
  const bool onItsSide = liesOnItsSide(reader.transformation());
  reader.setScaledSize(shrunkInto(reader.size(), onItsSide ? fit.transposed() : fit));
  QImage image;
  if (!reader.read(&image)) return Failure{reader.errorString()};
  return image;
}

}  // namespace

Result<QImage> decodePhoto(const QString& path, QSize fit) {
  // A pipe would be waited on for ever.
  if (!QFileInfo(path).isFile()) return Failure{QStringLiteral("There is no such file.")};
  switch (kindByExtension(path)) {
    case PhotoKind::Jpeg:
      return decodeJpegFile(path, fit);
    case PhotoKind::Png:
      return decodeByToolkit(path, "png", fit);
    case PhotoKind::Tiff:
      return decodeByToolkit(path, "tiff", fit);
    case PhotoKind::Heic:
      return decodeHeic(path, fit);
    case PhotoKind::Raw:
      return decodeRawPreview(path, fit);
    case PhotoKind::Unknown:
      break;
  }
  return Failure{QStringLiteral("Files of this kind cannot be shown.")};
}

void allowLargePhotos() {
  QImageReader::setAllocationLimit(static_cast<int>(kPhotoMemoryLimit / (1024 * 1024)));
}

}  // namespace ambrel::ui
