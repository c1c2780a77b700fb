// SPDX-License-Identifier: Apache-2.0
#include "JpegReader.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>
#include <string_view>

namespace ambrel::simulator {

namespace {

struct Errors {
  jpeg_error_mgr manager;
  std::jmp_buf back;
};

void leave(j_common_ptr info) {
  std::longjmp(reinterpret_cast<Errors*>(info->err)->back, 1);
}

void noOutput(j_common_ptr) {}

// Trivial types only here: the library leaves by longjmp.
bool decode(jpeg_decompress_struct& info, Errors& errors, ByteView jpeg, Picture& picture) {
  if (setjmp(errors.back) != 0) return false;
  jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
  jpeg_read_header(&info, TRUE);
  info.out_color_space = JCS_RGB;
  jpeg_start_decompress(&info);
  picture.width = static_cast<int>(info.output_width);
  picture.height = static_cast<int>(info.output_height);
  const std::size_t stride = 3 * static_cast<std::size_t>(info.output_width);
  picture.pixels.resize(stride * info.output_height);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = picture.pixels.data() + info.output_scanline * stride;
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  return errors.manager.num_warnings == 0;
}

}  // namespace

std::optional<Picture> read_jpeg(ByteView jpeg) {
  jpeg_decompress_struct info{};
  Errors errors{};
  info.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = leave;
  errors.manager.output_message = noOutput;
  jpeg_create_decompress(&info);
  Picture picture;
  const bool decoded = decode(info, errors, jpeg, picture);
  jpeg_destroy_decompress(&info);
  return decoded ? std::optional(std::move(picture)) : std::nullopt;
}

ByteView exif_of(ByteView jpeg) {
  constexpr std::string_view kMark("Exif\0\0", 6);
  constexpr std::size_t kHeader = 6;  // SOI, the marker and the length
  if (jpeg.size() < kHeader + kMark.size() || jpeg[2] != 0xFF || jpeg[3] != 0xE1) return {};
  const std::size_t length = static_cast<std::size_t>(jpeg[4]) << 8 | jpeg[5];
  const ByteView content = jpeg.subspan(kHeader, length - 2);
  if (!std::equal(kMark.begin(), kMark.end(), content.begin())) return {};
  return content.subspan(kMark.size());
}

}  // namespace ambrel::simulator
