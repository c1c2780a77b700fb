// SPDX-License-Identifier: Apache-2.0
#include "simulator/Painting.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <string>

#include "simulator/Random.h"

namespace ambrel::simulator {

namespace {

constexpr int kJpegQuality = 85;

constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 7;
constexpr int kGlyphAdvance = kGlyphWidth + 1;

// Ten digits of 5 x 7 dots; the highest of five bits is the leftmost dot.
constexpr std::array<std::array<std::uint8_t, kGlyphHeight>, 10> kDigits = {{
    {0b01110, 0b10001, 0b10011, 0b10101, 0b11001, 0b10001, 0b01110},
    {0b00100, 0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110},
    {0b01110, 0b10001, 0b00001, 0b00110, 0b01000, 0b10000, 0b11111},
    {0b11111, 0b00010, 0b00100, 0b00010, 0b00001, 0b10001, 0b01110},
    {0b00010, 0b00110, 0b01010, 0b10010, 0b11111, 0b00010, 0b00010},
    {0b11111, 0b10000, 0b11110, 0b00001, 0b00001, 0b10001, 0b01110},
    {0b00110, 0b01000, 0b10000, 0b11110, 0b10001, 0b10001, 0b01110},
    {0b11111, 0b00001, 0b00010, 0b00100, 0b01000, 0b01000, 0b01000},
    {0b01110, 0b10001, 0b10001, 0b01110, 0b10001, 0b10001, 0b01110},
    {0b01110, 0b10001, 0b10001, 0b01111, 0b00001, 0b00010, 0b01100},
}};

struct Colour {
  int red;
  int green;
  int blue;
};

// Dark enough that white digits stand out.
Colour darkColour(Random& random) {
  const std::uint64_t value = random.next();
  return {static_cast<int>(value % 160), static_cast<int>(value / 160 % 160),
          static_cast<int>(value / 25600 % 160)};
}

std::uint8_t between(int from, int to, int part, int whole) {
  return static_cast<std::uint8_t>(from + (to - from) * part / whole);
}

void paintGradient(Picture& picture, Colour from, Colour to) {
  const int whole = picture.width + picture.height;
  std::uint8_t* pixel = picture.pixels.data();
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      *pixel++ = between(from.red, to.red, x + y, whole);
      *pixel++ = between(from.green, to.green, x + y, whole);
      *pixel++ = between(from.blue, to.blue, x + y, whole);
    }
  }
}

void fillRect(Picture& picture, int left, int top, int size, std::uint8_t grey) {
  const int right = std::min(left + size, picture.width);
  const int bottom = std::min(top + size, picture.height);
  for (int y = std::max(top, 0); y < bottom; ++y) {
    for (int x = std::max(left, 0); x < right; ++x) {
      const auto at = 3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                           static_cast<std::size_t>(x));
      std::fill_n(picture.pixels.begin() + static_cast<std::ptrdiff_t>(at), 3, grey);
    }
  }
}

// Every dot of the number as a square, grown by `margin` on each side.
void paintNumber(Picture& picture, const std::string& number, int margin, std::uint8_t grey) {
  const int columns = static_cast<int>(number.size()) * kGlyphAdvance - 1;
  const int dot =
      std::max(1, std::min(picture.width * 8 / 10 / columns, picture.height * 6 / 10 / kGlyphHeight));
  const int left = (picture.width - columns * dot) / 2;
  const int top = (picture.height - kGlyphHeight * dot) / 2;
  for (int column = 0; column < columns; ++column) {
    const int digit = number[static_cast<std::size_t>(column / kGlyphAdvance)] - '0';
    const int bit = kGlyphWidth - 1 - column % kGlyphAdvance;
    for (int row = 0; bit >= 0 && row < kGlyphHeight; ++row) {
      const int dots = kDigits[static_cast<std::size_t>(digit)][static_cast<std::size_t>(row)];
      if ((dots >> bit & 1) == 0) continue;
      fillRect(picture, left + column * dot - margin, top + row * dot - margin, dot + 2 * margin, grey);
    }
  }
}

}  // namespace

Picture paint_shot(std::uint64_t seed, std::uint32_t shot, int width, int height) {
  Picture picture{width, height,
                  Bytes(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
  Random random(seed ^ (static_cast<std::uint64_t>(shot) << 32));
  const Colour from = darkColour(random);
  paintGradient(picture, from, darkColour(random));
  const std::string number = std::to_string(shot);
  paintNumber(picture, number, 1 + height / 100, 0x00);
  paintNumber(picture, number, 0, 0xFF);
  return picture;
}

Bytes encode_jpeg(const Picture& picture, ByteView exif) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &buffer, &size);
  info.image_width = static_cast<JDIMENSION>(picture.width);
  info.image_height = static_cast<JDIMENSION>(picture.height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, kJpegQuality, TRUE);
  info.write_JFIF_header = FALSE;
  jpeg_start_compress(&info, TRUE);
  if (!exif.empty()) {
    const Bytes segment = ByteWriter().chars("Exif").u16(0).raw(exif).take();
    jpeg_write_marker(&info, JPEG_APP0 + 1, segment.data(), static_cast<unsigned>(segment.size()));
  }
  const std::size_t stride = 3 * static_cast<std::size_t>(picture.width);
  while (info.next_scanline < info.image_height) {
    // libjpeg only reads the row, although its interface has no const.
    auto* row = const_cast<JSAMPROW>(picture.pixels.data() + info.next_scanline * stride);
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes jpeg(buffer, buffer + size);
  std::free(buffer);
  return jpeg;
}

}  // namespace ambrel::simulator
