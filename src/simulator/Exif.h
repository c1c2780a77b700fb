// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/Bytes.h"

namespace ambrel::simulator {

// One image file directory of a little-endian TIFF block (TIFF 6.0, section 2; Exif 2.32, section 4.6).
class Ifd {
 public:
  void ascii(std::uint16_t tag, std::string_view text);
  void u16(std::uint16_t tag, std::uint16_t value);
  void u32(std::uint16_t tag, std::uint32_t value);
  void rational(std::uint16_t tag, std::uint32_t numerator, std::uint32_t denominator);
  void undefined(std::uint16_t tag, std::string_view bytes);

  // Bytes the directory takes, its long values included. Known before the values of pointers are.
  std::size_t size() const;
  // The directory as it stands at `offset` of the block, `next` being the offset of the next one or 0.
  Bytes encode(std::size_t offset, std::size_t next) const;

 private:
  struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    Bytes value;
  };
  void add(std::uint16_t tag, std::uint16_t type, std::uint32_t count, Bytes value);

  std::vector<Entry> _entries;  // by rising tag, as the format demands
};

// What the camera writes into a photo about itself and the exposure.
struct ExifFacts {
  std::uint32_t shot = 0;
  int width = 0;
  int height = 0;
  std::string date;  // "YYYY:MM:DD hh:mm:ss", local time
};

// A TIFF block with the camera's and the exposure's directory and, if `thumbnail` (a JPEG) is not empty, the
// thumbnail's.
Bytes encode_exif(const ExifFacts& facts, ByteView thumbnail);

}  // namespace ambrel::simulator
