// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "simulator/Painting.h"

namespace ambrel::simulator {

// Decodes a JPEG with libjpeg; nothing if the library has an error or as much as a warning about it.
std::optional<Picture> read_jpeg(ByteView jpeg);

// The TIFF block of the EXIF segment, which is to be the first one; empty if it is not.
ByteView exif_of(ByteView jpeg);

}  // namespace ambrel::simulator
