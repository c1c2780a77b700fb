// SPDX-License-Identifier: Apache-2.0
#include "ui/HeicDecoder.h"

#include <QFile>
#include <libheif/heif.h>
#include <memory>

#include "ui/NamedLibrary.h"
#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

constexpr int kLibraryVersion = 1;  // of its binary interface

// The functions used of libheif: the codecs that it brings with it take longer to be loaded than the window
// takes to be painted.
struct Heif : NamedLibrary {
  Heif() : NamedLibrary(QStringLiteral("heif"), kLibraryVersion) {}
  const decltype(&heif_context_alloc) context_alloc = find("heif_context_alloc");
  const decltype(&heif_context_free) context_free = find("heif_context_free");
  const decltype(&heif_context_read_from_file) context_read_from_file = find("heif_context_read_from_file");
  const decltype(&heif_context_get_primary_image_handle) context_get_primary_image_handle =
      find("heif_context_get_primary_image_handle");
  const decltype(&heif_image_handle_release) image_handle_release = find("heif_image_handle_release");
  const decltype(&heif_image_handle_get_width) image_handle_get_width = find("heif_image_handle_get_width");
  const decltype(&heif_image_handle_get_height) image_handle_get_height =
      find("heif_image_handle_get_height");
  const decltype(&heif_decode_image) decode_image = find("heif_decode_image");
  const decltype(&heif_image_release) image_release = find("heif_image_release");
  const decltype(&heif_image_get_plane_readonly) image_get_plane_readonly =
      find("heif_image_get_plane_readonly");
  const decltype(&heif_image_get_width) image_get_width = find("heif_image_get_width");
  const decltype(&heif_image_get_height) image_get_height = find("heif_image_get_height");
};

using Context = std::unique_ptr<heif_context, decltype(&heif_context_free)>;
using Handle = std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)>;
using Picture = std::unique_ptr<heif_image, decltype(&heif_image_release)>;

Failure failureOf(const heif_error& error) {
  return {QStringLiteral("The HEIC file cannot be decoded: ") + QString::fromUtf8(error.message)};
}

}  // namespace

Result<QImage> decodeHeic(const QString& path, QSize fit) {
  const Heif heif;
  if (!heif.isWhole())
    return Failure{QStringLiteral("HEIC files cannot be shown: libheif is not installed.")};
  const Context context(heif.context_alloc(), heif.context_free);
  heif_error error = heif.context_read_from_file(context.get(), QFile::encodeName(path).constData(), nullptr);
  if (error.code != heif_error_Ok) return failureOf(error);

  heif_image_handle* found = nullptr;
  error = heif.context_get_primary_image_handle(context.get(), &found);
  if (error.code != heif_error_Ok) return failureOf(error);
  const Handle handle(found, heif.image_handle_release);
  const QSize full(heif.image_handle_get_width(handle.get()), heif.image_handle_get_height(handle.get()));
  if (!fitsIntoMemory(full)) return Failure{QStringLiteral("The picture is too large to be shown.")};

  heif_image* decoded = nullptr;
  // The library turns the picture upright itself.
  error =
      heif.decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr);
  if (error.code != heif_error_Ok) return failureOf(error);
  const Picture picture(decoded, heif.image_release);
  int stride = 0;
  const uint8_t* pixels = heif.image_get_plane_readonly(picture.get(), heif_channel_interleaved, &stride);
  const QSize size(heif.image_get_width(picture.get(), heif_channel_interleaved),
                   heif.image_get_height(picture.get(), heif_channel_interleaved));
  if (!pixels || size.isEmpty()) return Failure{QStringLiteral("The HEIC file holds no picture.")};
  const QImage whole(pixels, size.width(), size.height(), stride, QImage::Format_RGBA8888);
  return whole.scaled(shrunkInto(size, fit), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
      .convertToFormat(QImage::Format_RGB32);
}

}  // namespace ambrel::ui
