// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>

#include "JpegReader.h"
#include "simulator/PhotoMaker.h"

namespace ambrel::simulator {
namespace {

PhotoSpec spec(std::uint32_t shot, FileKind kind = FileKind::jpeg, std::size_t size = 0) {
  PhotoSpec wanted;
  wanted.seed = 7;
  wanted.shot = shot;
  wanted.kind = kind;
  wanted.width = 320;
  wanted.height = 240;
  wanted.size = size;
  return wanted;
}

Bytes made(const PhotoSpec& wanted) {
  return make_photo(wanted).value();
}

std::string boxType(ByteView file) {
  return {file.begin() + 4, file.begin() + 8};
}

std::size_t boxSize(ByteView file) {
  return static_cast<std::size_t>(file[0]) << 24 | static_cast<std::size_t>(file[1]) << 16 |
         static_cast<std::size_t>(file[2]) << 8 | file[3];
}

TEST(PhotoMaker, MakesAJpegThatDecodes) {
  const Bytes jpeg = made(spec(1));
  const auto picture = read_jpeg(jpeg);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width, 320);
  EXPECT_EQ(picture->height, 240);
  EXPECT_EQ(Bytes(jpeg.end() - 2, jpeg.end()), (Bytes{0xFF, 0xD9}));
}

TEST(PhotoMaker, PadsAJpegToExactlyTheSizeAskedFor) {
  const std::size_t plain = made(spec(1)).size();
  const auto expected = read_jpeg(made(spec(1)));
  // Around one and two segments of padding, where what is left would be too small for another one.
  for (const std::size_t size :
       {plain, plain + 4, plain + 5, plain + 65'537, plain + 65'538, plain + 65'540, plain + 65'541,
        plain + 2 * 65'537 + 1, std::size_t{1'000'000}, std::size_t{3'000'001}}) {
    const Bytes jpeg = made(spec(1, FileKind::jpeg, size));
    EXPECT_EQ(jpeg.size(), size);
    const auto picture = read_jpeg(jpeg);
    ASSERT_TRUE(picture) << size;
    EXPECT_EQ(picture->pixels, expected->pixels) << size;
    EXPECT_EQ(Bytes(jpeg.end() - 2, jpeg.end()), (Bytes{0xFF, 0xD9})) << size;
    EXPECT_FALSE(exif_of(jpeg).empty()) << size;
  }
}

TEST(PhotoMaker, RefusesASizeThatIsTooSmall) {
  const std::size_t plain = made(spec(1)).size();
  for (const std::size_t size : {std::size_t{1}, plain - 1, plain + 1, plain + 3}) {
    EXPECT_FALSE(make_photo(spec(1, FileKind::jpeg, size))) << size;
  }
  EXPECT_FALSE(make_photo(spec(1, FileKind::raw, 1000)));
}

TEST(PhotoMaker, EmbedsAThumbnailThatDecodes) {
  const Bytes jpeg = made(spec(3));
  const Bytes thumbnail = make_thumbnail(spec(3));
  const ByteView exif = exif_of(jpeg);
  ASSERT_GT(exif.size(), thumbnail.size());
  const ByteView embedded = exif.last(thumbnail.size());
  EXPECT_EQ(Bytes(embedded.begin(), embedded.end()), thumbnail);
  const auto picture = read_jpeg(embedded);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width, 160);
  EXPECT_EQ(picture->height, 120);
}

TEST(PhotoMaker, GivesTheSameBytesForTheSameSpecificationAndOnlyForIt) {
  for (const FileKind kind : {FileKind::jpeg, FileKind::raw}) {
    const Bytes photo = made(spec(5, kind, 700'000));
    EXPECT_EQ(photo, made(spec(5, kind, 700'000)));
    EXPECT_NE(photo, made(spec(6, kind, 700'000)));
    PhotoSpec otherSeed = spec(5, kind, 700'000);
    otherSeed.seed = 8;
    EXPECT_NE(photo, made(otherSeed));
  }
}

TEST(PhotoMaker, MakesARawFileOfWholeBoxes) {
  const Bytes raw = made(spec(2, FileKind::raw));
  EXPECT_EQ(raw.size(), kDefaultRawBytes);
  EXPECT_EQ(std::string(raw.begin() + 4, raw.begin() + 12), "ftypcrx ");
  std::string types;
  std::size_t at = 0;
  while (at < raw.size()) {
    const ByteView box = ByteView(raw).subspan(at);
    types += boxType(box) + " ";
    ASSERT_GE(boxSize(box), 8U);
    at += boxSize(box);
  }
  EXPECT_EQ(at, raw.size());
  EXPECT_EQ(types, "ftyp moov uuid mdat ");
}

TEST(PhotoMaker, PutsAPreviewThatDecodesIntoARawFile) {
  const Bytes raw = made(spec(2, FileKind::raw));
  ByteView box = raw;
  box = box.subspan(boxSize(box));  // behind ftyp
  box = box.subspan(boxSize(box));  // behind moov
  const ByteView preview = box.subspan(8 + 16 + 8);
  ASSERT_EQ(boxType(preview), "PRVW");
  const ByteView jpeg = preview.subspan(24, boxSize(preview.subspan(20)));
  const auto picture = read_jpeg(jpeg);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width, 320);
}

TEST(PhotoMaker, MakesARawFileOfExactlyTheSizeAskedFor) {
  EXPECT_EQ(made(spec(2, FileKind::raw, 2'000'003)).size(), 2'000'003U);
}

TEST(ShotTime, CountsSecondsFromTheFirstShot) {
  EXPECT_EQ(shot_time(1).exif, "2026:01:01 10:00:01");
  EXPECT_EQ(shot_time(1).ptp, "20260101T100001");
  EXPECT_EQ(shot_time(3600).exif, "2026:01:01 11:00:00");
  EXPECT_EQ(shot_time(61).seconds - shot_time(1).seconds, 60U);
}

}  // namespace
}  // namespace ambrel::simulator
