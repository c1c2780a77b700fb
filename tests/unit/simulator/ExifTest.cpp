// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <map>

#include "simulator/Exif.h"

namespace ambrel::simulator {
namespace {

struct Value {
  std::uint16_t type = 0;
  std::uint32_t count = 0;
  std::uint32_t number = 0;  // or the offset
};

struct Directory {
  std::map<std::uint16_t, Value> values;
  std::vector<std::uint16_t> order;
  std::uint32_t next = 0;
};

Directory readDirectory(ByteView tiff, std::uint32_t offset) {
  Directory directory;
  ByteReader reader(tiff.subspan(offset));
  const std::uint16_t count = reader.u16();
  for (std::uint16_t i = 0; i < count; ++i) {
    const std::uint16_t tag = reader.u16();
    Value value;
    value.type = reader.u16();
    value.count = reader.u32();
    value.number = reader.u32();
    directory.values[tag] = value;
    directory.order.push_back(tag);
  }
  directory.next = reader.u32();
  EXPECT_TRUE(reader.ok());
  return directory;
}

std::string textAt(ByteView tiff, const Value& value) {
  const ByteView text = tiff.subspan(value.number, value.count);
  return {text.begin(), text.end() - 1};
}

ExifFacts facts() {
  return {42, 1200, 800, "2026:01:01 10:00:42"};
}

TEST(Exif, NamesTheCameraAndTheDate) {
  const Bytes tiff = encode_exif(facts(), {});
  EXPECT_EQ(Bytes(tiff.begin(), tiff.begin() + 8), (Bytes{'I', 'I', 42, 0, 8, 0, 0, 0}));
  const Directory camera = readDirectory(tiff, 8);
  EXPECT_EQ(textAt(tiff, camera.values.at(0x010F)), "Canon");
  EXPECT_EQ(textAt(tiff, camera.values.at(0x0110)), "Canon EOS R6");
  EXPECT_EQ(textAt(tiff, camera.values.at(0x0132)), "2026:01:01 10:00:42");
  EXPECT_EQ(camera.values.at(0x0112).number, 1U) << "upright";
}

TEST(Exif, DescribesTheExposure) {
  const Bytes tiff = encode_exif(facts(), {});
  const Directory exposure = readDirectory(tiff, readDirectory(tiff, 8).values.at(0x8769).number);
  EXPECT_EQ(exposure.values.at(0x8827).number, 100U);
  EXPECT_EQ(exposure.values.at(0xA002).number, 1200U);
  EXPECT_EQ(exposure.values.at(0xA003).number, 800U);
  EXPECT_EQ(textAt(tiff, exposure.values.at(0x9003)), "2026:01:01 10:00:42");
  EXPECT_EQ(textAt(tiff, exposure.values.at(0xA420)), "00000000000000000000000000000042");
  ByteReader time(ByteView(tiff).subspan(exposure.values.at(0x829A).number));
  EXPECT_EQ(time.u32(), 1U);
  EXPECT_EQ(time.u32(), 125U);
}

TEST(Exif, SortsTheTags) {
  const Bytes tiff = encode_exif(facts(), Bytes(10));
  const Directory camera = readDirectory(tiff, 8);
  const Directory exposure = readDirectory(tiff, camera.values.at(0x8769).number);
  const Directory thumbnail = readDirectory(tiff, camera.next);
  for (const Directory& directory : {camera, exposure, thumbnail}) {
    EXPECT_TRUE(std::is_sorted(directory.order.begin(), directory.order.end()));
  }
}

TEST(Exif, PointsToTheThumbnail) {
  const Bytes thumbnail = {0xFF, 0xD8, 1, 2, 3, 0xFF, 0xD9};
  const Bytes tiff = encode_exif(facts(), thumbnail);
  const Directory directory = readDirectory(tiff, readDirectory(tiff, 8).next);
  EXPECT_EQ(directory.values.at(0x0103).number, 6U) << "a JPEG";
  const std::uint32_t offset = directory.values.at(0x0201).number;
  const std::uint32_t length = directory.values.at(0x0202).number;
  ASSERT_EQ(length, thumbnail.size());
  ASSERT_EQ(offset + length, tiff.size());
  EXPECT_EQ(Bytes(tiff.begin() + offset, tiff.end()), thumbnail);
}

TEST(Exif, EndsAfterTheFirstDirectoryWithoutAThumbnail) {
  const Bytes tiff = encode_exif(facts(), {});
  EXPECT_EQ(readDirectory(tiff, 8).next, 0U);
}

TEST(Ifd, TakesAsManyBytesAsItSays) {
  Ifd ifd;
  ifd.ascii(2, "odd");
  ifd.ascii(3, "longer");
  ifd.u16(1, 7);
  ifd.rational(4, 1, 3);
  const Bytes bytes = ifd.encode(100, 0);
  EXPECT_EQ(bytes.size(), ifd.size());
  EXPECT_EQ(bytes.size() % 2, 0U);
}

}  // namespace
}  // namespace ambrel::simulator
