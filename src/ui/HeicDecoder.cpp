// SPDX-License-Identifier: Apache-2.0
#include "ui/HeicDecoder.h"

#include <QFile>
#include <libheif/heif.h>
#include <memory>
#include <optional>

#include "ui/NamedLibrary.h"
#include "ui/PhotoScaling.h"

namespace ambrel::ui {
namespace {

constexpr int kLibraryVersion = 1;  // of its binary interface

// The functions used of libheif: the codecs that it brings with it take longer to be loaded than the window
// takes to be painted.
struct Heif {
  decltype(&heif_context_alloc) context_alloc = nullptr;
  decltype(&heif_context_free) context_free = nullptr;
  decltype(&heif_context_read_from_file) context_read_from_file = nullptr;
  decltype(&heif_context_get_primary_image_handle) context_get_primary_image_handle = nullptr;
  decltype(&heif_image_handle_release) image_handle_release = nullptr;
  decltype(&heif_image_handle_get_width) image_handle_get_width = nullptr;
  decltype(&heif_image_handle_get_height) image_handle_get_height = nullptr;
  decltype(&heif_decode_image) decode_image = nullptr;
  decltype(&heif_image_release) image_release = nullptr;
  decltype(&heif_image_get_plane_readonly) image_get_plane_readonly = nullptr;
  decltype(&heif_image_get_width) image_get_width = nullptr;
  decltype(&heif_image_get_height) image_get_height = nullptr;
};

// None where the library is missing or lacks one of them.
std::optional<Heif> loadHeif() {
  NamedLibrary library(QStringLiteral("heif"), kLibraryVersion);
  Heif heif;
  library.find(heif.context_alloc, "heif_context_alloc");
  library.find(heif.context_free, "heif_context_free");
  library.find(heif.context_read_from_file, "heif_context_read_from_file");
  library.find(heif.context_get_primary_image_handle, "heif_context_get_primary_image_handle");
  library.find(heif.image_handle_release, "heif_image_handle_release");
  library.find(heif.image_handle_get_width, "heif_image_handle_get_width");
  library.find(heif.image_handle_get_height, "heif_image_handle_get_height");
  library.find(heif.decode_image, "heif_decode_image");
  library.find(heif.image_release, "heif_image_release");
  library.find(heif.image_get_plane_readonly, "heif_image_get_plane_readonly");
  library.find(heif.image_get_width, "heif_image_get_width");
  library.find(heif.image_get_height, "heif_image_get_height");
  return library.isWhole() ? std::optional(heif) : std::nullopt;
}

using Context = std::unique_ptr<heif_context, decltype(&heif_context_free)>;
using Handle = std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)>;
using Picture = std::unique_ptr<heif_image, decltype(&heif_image_release)>;

Failure failureOf(const heif_error& error) {
  return {QStringLiteral("The HEIC file cannot be decoded: ") + QString::fromUtf8(error.message)};
}

}  // namespace

Result<QImage> decodeHeic(const QString& path, QSize fit) {
  const std::optional<Heif> heif = loadHeif();
  if (!heif) return Failure{QStringLiteral("HEIC files cannot be shown: libheif is not installed.")};
  const Context context(heif->context_alloc(), heif->context_free);
  heif_error error =
      heif->context_read_from_file(context.get(), QFile::encodeName(path).constData(), nullptr);
  if (error.code != heif_error_Ok) return failureOf(error);

  heif_image_handle* found = nullptr;
  error = heif->context_get_primary_image_handle(context.get(), &found);
  if (error.code != heif_error_Ok) return failureOf(error);
  const Handle handle(found, heif->image_handle_release);
  const QSize full(heif->image_handle_get_width(handle.get()), heif->image_handle_get_height(handle.get()));
  if (!fitsIntoMemory(full)) return Failure{QStringLiteral("The picture is too large to be shown.")};

  heif_image* decoded = nullptr;
  // The library turns the picture upright itself.
  error =
      heif->decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr);
  if (error.code != heif_error_Ok) return failureOf(error);
  const Picture picture(decoded, heif->image_release);
  int stride = 0;
  const uint8_t* pixels = heif->image_get_plane_readonly(picture.get(), heif_channel_interleaved, &stride);
  const QSize size(heif->image_get_width(picture.get(), heif_channel_interleaved),
                   heif->image_get_height(picture.get(), heif_channel_interleaved));
  if (!pixels || size.isEmpty()) return Failure{QStringLiteral("The HEIC file holds no picture.")};
  const QImage whole(pixels, size.width(), size.height(), stride, QImage::Format_RGBA8888);
  return whole.scaled(shrunkInto(size, fit), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
      .convertToFormat(QImage::Format_RGB32);
}

}  // namespace ambrel::ui
