// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "simulator/Bytes.h"

namespace ambrel::simulator {

// A picture in memory: rows of red, green, blue, top row first.
struct Picture {
  int width = 0;
  int height = 0;
  Bytes pixels;
};

// A colour gradient that belongs to `seed` and `shot`, with the number of the shot across its middle in white
// digits outlined in black. The same arguments give the same pixels.
Picture paint_shot(std::uint64_t seed, std::uint32_t shot, int width, int height);

// The picture as a baseline JPEG (quality 85, 4:2:0) without a JFIF header. `exif`, if not empty, is written
// as an APP1 segment in front; it must not exceed 65,527 bytes.
Bytes encode_jpeg(const Picture& picture, ByteView exif);

}  // namespace ambrel::simulator
