// SPDX-License-Identifier: Apache-2.0
#include "ui/RawDecoder.h"

#include <QFile>
#include <QFileInfo>
#include <libraw/libraw.h>
#include <memory>

#include "ui/JpegDecoder.h"
#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

// How the library says that the camera was held.
QImageIOHandler::Transformations transformationOf(int flip) {
  switch (flip) {
    case 3:
      return QImageIOHandler::TransformationRotate180;
    case 5:
      return QImageIOHandler::TransformationRotate270;
    case 6:
      return QImageIOHandler::TransformationRotate90;
    default:
      return QImageIOHandler::TransformationNone;
  }
}

// The library reads beyond the end of a cut file and leaves the rest of the preview to chance.
bool holdsWholePreview(LibRaw& raw, const QString& path) {
  const qint64 start = raw.get_internal_data_pointer()->internal_data.toffset;
  return start + qint64{raw.imgdata.thumbnail.tlength} <= QFileInfo(path).size();
}

Failure failureOf(int error) {
  return {QStringLiteral("The raw file has no preview that can be shown: ") +
          QString::fromUtf8(libraw_strerror(error))};
}

Result<QImage> bitmapPreview(const libraw_thumbnail_t& preview, QSize fit) {
  const QSize size(preview.twidth, preview.theight);
  const qint64 bytesPerLine = qint64{3} * size.width();
  if (!fitsIntoMemory(size) || preview.tcolors != 3 || preview.tlength < bytesPerLine * size.height())
    return Failure{QStringLiteral("The raw file's preview is damaged.")};
  const QImage whole(reinterpret_cast<const uchar*>(preview.thumb), size.width(), size.height(),
                     static_cast<qsizetype>(bytesPerLine), QImage::Format_RGB888);
  return whole.convertToFormat(QImage::Format_RGB32)
      .scaled(shrunkInto(size, fit), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

Result<QImage> decodeRawPreview(const QString& path, QSize fit) {
  const auto raw = std::make_unique<LibRaw>();  // far too large for the stack
  int error = raw->open_file(QFile::encodeName(path).constData());
  if (error == LIBRAW_SUCCESS && !holdsWholePreview(*raw, path)) error = LIBRAW_IO_ERROR;
  if (error == LIBRAW_SUCCESS) error = raw->unpack_thumb();
  if (error != LIBRAW_SUCCESS) return failureOf(error);

  const libraw_thumbnail_t& preview = raw->imgdata.thumbnail;
  const QImageIOHandler::Transformations held = transformationOf(raw->imgdata.sizes.flip);
  const QSize fitLying = liesOnItsSide(held) ? fit.transposed() : fit;
  const bool isJpeg = preview.tformat == LIBRAW_THUMBNAIL_JPEG;
  const Result<QImage> lying =
      isJpeg ? decodeJpeg(QByteArray::fromRawData(preview.thumb, static_cast<qsizetype>(preview.tlength)),
                          fitLying)
             : bitmapPreview(preview, fitLying);
  if (!lying) return lying;
  return upright(lying.value(), held);
}

}  // namespace ambrel::ui
