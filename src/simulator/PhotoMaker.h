// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/Bytes.h"

namespace ambrel::simulator {

enum class FileKind { jpeg, raw };

// Which photo to make. Equal orders give equal bytes.
struct PhotoSpec {
  std::uint64_t seed = 0;
  std::uint32_t shot = 1;
  FileKind kind = FileKind::jpeg;
  int width = 1200;  // pixels of the picture, or of the preview in a raw file
  int height = 800;
  std::size_t size = 0;  // bytes of the whole file; 0 lets the picture decide
};

// What a raw file takes where no size is asked for.
inline constexpr std::size_t kDefaultRawBytes = 600'000;

// When the shot was taken, for the photo and for what the camera says of it: the shots of a camera are one
// second apart, whatever the clock says, so that a photo's bytes depend on nothing but its order.
struct ShotTime {
  std::string exif;           // "YYYY:MM:DD hh:mm:ss"
  std::string ptp;            // "YYYYMMDDThhmmss"
  std::uint32_t seconds = 0;  // since 1970
};
ShotTime shot_time(std::uint32_t shot);

// The file of the photo: a JPEG with its number painted on it, EXIF and a thumbnail, padded to its size by
// APP15 segments; or a CR3-like raw file with the same picture as its preview. Nothing if the size asked for
// is too small to hold it.
std::optional<Bytes> make_photo(const PhotoSpec& spec);

// The small JPEG that the photo carries: 160 x 120 pixels.
Bytes make_thumbnail(const PhotoSpec& spec);

}  // namespace ambrel::simulator
