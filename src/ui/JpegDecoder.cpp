// SPDX-License-Identifier: Apache-2.0
#include "ui/JpegDecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <memory>
#include <turbojpeg.h>

#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

struct TurboCloser {
  void operator()(void* decoder) const { tjDestroy(decoder); }
};
using Turbo = std::unique_ptr<void, TurboCloser>;

QImageIOHandler::Transformations orientationOf(const QByteArray& bytes) {
  QBuffer buffer;
  buffer.setData(bytes);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer, "jpeg");
  reader.setDecideFormatFromContent(false);
  return reader.transformation();
}

// The fractions that the decoder has fast code for.
QSize decodedSize(QSize full, QSize wanted) {
  for (const int part : {8, 4, 2}) {
    const tjscalingfactor fraction{1, part};
    const QSize size(TJSCALED(full.width(), fraction), TJSCALED(full.height(), fraction));
    if (size.width() >= wanted.width() && size.height() >= wanted.height()) return size;
  }
  return full;
}

Failure damaged(const Turbo& decoder) {
  return {QStringLiteral("The JPEG is damaged: ") + QString::fromLocal8Bit(tjGetErrorStr2(decoder.get()))};
}

}  // namespace

Result<QImage> decodeJpeg(const QByteArray& bytes, QSize fit) {
  const Turbo decoder(tjInitDecompress());
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
  const auto length = static_cast<unsigned long>(bytes.size());
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colorspace = 0;
  if (tjDecompressHeader3(decoder.get(), data, length, &width, &height, &subsampling, &colorspace) != 0)
    return damaged(decoder);
  const QSize full(width, height);
  if (!fitsIntoMemory(full)) return Failure{QStringLiteral("The picture is too large to be shown.")};

  const QImageIOHandler::Transformations orientation = orientationOf(bytes);
  const QSize wanted = shrunkInto(full, liesOnItsSide(orientation) ? fit.transposed() : fit);
  QImage image(decodedSize(full, wanted), QImage::Format_RGB32);
  if (image.isNull()) return Failure{QStringLiteral("There is not enough memory for the picture.")};
  // Warnings count: what was lost in the middle of a photo is grey or shifted from there on.
  if (tjDecompress2(decoder.get(), data, length, image.bits(), image.width(),
                    static_cast<int>(image.bytesPerLine()), image.height(), TJPF_BGRX,
                    TJFLAG_LIMITSCANS) != 0)
    return damaged(decoder);
  if (image.size() != wanted) image = image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return upright(image, orientation);
}

}  // namespace ambrel::ui
