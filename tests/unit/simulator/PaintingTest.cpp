// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "JpegReader.h"
#include "simulator/Painting.h"

namespace ambrel::simulator {
namespace {

// The share of pixels, of the middle of the picture, that are as bright as the digits.
double whiteShare(const Picture& picture) {
  int white = 0;
  int all = 0;
  for (int y = picture.height / 4; y < picture.height * 3 / 4; ++y) {
    for (int x = picture.width / 4; x < picture.width * 3 / 4; ++x) {
      const auto at = 3 * static_cast<std::size_t>(y * picture.width + x);
      ++all;
      if (picture.pixels[at] > 200 && picture.pixels[at + 1] > 200 && picture.pixels[at + 2] > 200) ++white;
    }
  }
  return static_cast<double>(white) / all;
}

TEST(Painting, ShowsALargeNumber) {
  for (const std::uint32_t shot : {1U, 8U, 77U, 1234U, 4'294'967'295U}) {
    const double share = whiteShare(paint_shot(1, shot, 1200, 800));
    EXPECT_GT(share, 0.03) << shot;
    EXPECT_LT(share, 0.8) << shot;
  }
}

TEST(Painting, IsTheSameForTheSameShotAndOnlyForIt) {
  const Picture picture = paint_shot(1, 5, 60, 40);
  EXPECT_EQ(picture.pixels, paint_shot(1, 5, 60, 40).pixels);
  EXPECT_NE(picture.pixels, paint_shot(1, 6, 60, 40).pixels);
  EXPECT_NE(picture.pixels, paint_shot(2, 5, 60, 40).pixels);
}

TEST(Painting, KeepsInsideTheSmallestPicture) {
  const Picture picture = paint_shot(1, 1234567, 1, 1);
  EXPECT_EQ(picture.pixels.size(), 3U);
}

TEST(Painting, BecomesAJpegThatDecodesToTheSameNumber) {
  const Picture painted = paint_shot(3, 42, 301, 199);
  const std::optional<Picture> decoded = read_jpeg(encode_jpeg(painted, {}));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->width, 301);
  EXPECT_EQ(decoded->height, 199);
  EXPECT_NEAR(whiteShare(*decoded), whiteShare(painted), 0.02);
}

TEST(Painting, PutsTheExifFirstInTheJpeg) {
  const Bytes exif = {'I', 'I', 42, 0, 8, 0, 0, 0};
  const Bytes jpeg = encode_jpeg(paint_shot(1, 1, 16, 16), exif);
  const ByteView found = exif_of(jpeg);
  EXPECT_EQ(Bytes(found.begin(), found.end()), exif);
  EXPECT_TRUE(read_jpeg(jpeg));
}

}  // namespace
}  // namespace ambrel::simulator
