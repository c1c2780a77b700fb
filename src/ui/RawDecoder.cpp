// SPDX-License-Identifier: Apache-2.0
#include "ui/RawDecoder.h"

#include <QFile>
#include <QFileInfo>
#include <libraw/libraw.h>
#include <memory>

#include "ui/JpegDecoder.h"
#include "ui/NamedLibrary.h"
#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

// The functions used of LibRaw.
struct RawLibrary : NamedLibrary {
  RawLibrary() : NamedLibrary(QStringLiteral("raw_r"), LIBRAW_SHLIB_CURRENT) {}
  const decltype(&libraw_init) init = find("libraw_init");
  const decltype(&libraw_close) close = find("libraw_close");
  const decltype(&libraw_open_file) open_file = find("libraw_open_file");
  const decltype(&libraw_unpack_thumb) unpack_thumb = find("libraw_unpack_thumb");
  const decltype(&libraw_strerror) strerror = find("libraw_strerror");
};

using RawFile = std::unique_ptr<libraw_data_t, decltype(&libraw_close)>;

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

// The library reads beyond the end of a cut file and leaves the rest of the preview to chance. It is not
// linked, so nothing can check the type of its object.
[[gnu::no_sanitize("vptr")]] bool holdsWholePreview(const libraw_data_t& raw, const QString& path) {
  auto* reader = static_cast<LibRaw*>(raw.parent_class);
  const qint64 start = reader->get_internal_data_pointer()->internal_data.toffset;
  return start + qint64{raw.thumbnail.tlength} <= QFileInfo(path).size();
}

Failure failureOf(const char* reason) {
  return {QStringLiteral("The raw file has no preview that can be shown: ") + QString::fromUtf8(reason)};
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
  const RawLibrary library;
  if (!library.isWhole())
    return Failure{QStringLiteral("Raw files cannot be shown: LibRaw is not installed.")};
  const RawFile raw(library.init(LIBRAW_OPTIONS_NONE), library.close);
  if (!raw) return failureOf("Out of memory");
  int error = library.open_file(raw.get(), QFile::encodeName(path).constData());
  if (error == LIBRAW_SUCCESS && !holdsWholePreview(*raw, path)) error = LIBRAW_IO_ERROR;
  if (error == LIBRAW_SUCCESS) error = library.unpack_thumb(raw.get());
  if (error != LIBRAW_SUCCESS) return failureOf(library.strerror(error));

  const libraw_thumbnail_t& preview = raw->thumbnail;
  const QImageIOHandler::Transformations held = transformationOf(raw->sizes.flip);
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
