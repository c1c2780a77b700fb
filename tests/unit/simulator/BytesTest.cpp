// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>

#include "simulator/Bytes.h"

namespace ambrel::simulator {
namespace {

TEST(ByteWriter, WritesNumbersLowByteFirst) {
  const Bytes bytes = ByteWriter().u8(1).u16(0x0302).u32(0x07060504).u64(0x0F0E0D0C0B0A0908).take();
  EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(ByteWriter, WritesAPtpStringWithItsCountAndNul) {
  EXPECT_EQ(ByteWriter().ptpString("SD").take(), (Bytes{3, 'S', 0, 'D', 0, 0, 0}));
}

TEST(ByteWriter, WritesAnEmptyPtpStringAsOneZero) {
  EXPECT_EQ(ByteWriter().ptpString("").take(), (Bytes{0}));
}

TEST(ByteWriter, LeavesOffWhatAPtpStringCannotHold) {
  const Bytes bytes = ByteWriter().ptpString(std::string(300, 'x')).take();
  EXPECT_EQ(bytes[0], 255);
  EXPECT_EQ(bytes.size(), 1U + 2 * 255);
}

TEST(ByteWriter, WritesAPtpIpNameWithoutACount) {
  EXPECT_EQ(ByteWriter().utf16z("ab").take(), (Bytes{'a', 0, 'b', 0, 0, 0}));
}

TEST(ByteWriter, WritesArraysWithTheirCounts) {
  const std::uint16_t small[] = {0x1001, 0x1002};
  const std::uint32_t large[] = {0x00010001};
  EXPECT_EQ(ByteWriter().array16(small).take(), (Bytes{2, 0, 0, 0, 0x01, 0x10, 0x02, 0x10}));
  EXPECT_EQ(ByteWriter().array32(large).take(), (Bytes{1, 0, 0, 0, 1, 0, 1, 0}));
  EXPECT_EQ(ByteWriter().array32({}).take(), (Bytes{0, 0, 0, 0}));
}

TEST(ByteWriter, WritesATextWithAndWithoutItsEnd) {
  EXPECT_EQ(ByteWriter().cString("a").chars("b").take(), (Bytes{'a', 0, 'b'}));
}

TEST(ByteReader, ReadsBackWhatWasWritten) {
  const Bytes bytes = ByteWriter().u16(0x1234).u32(0x89ABCDEF).u64(0x1122334455667788).u8(9).take();
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u16(), 0x1234);
  EXPECT_EQ(reader.u32(), 0x89ABCDEF);
  EXPECT_EQ(reader.u64(), 0x1122334455667788U);
  EXPECT_EQ(reader.rest().size(), 1U);
  EXPECT_TRUE(reader.ok());
}

TEST(ByteReader, GivesZerosPastTheEndAndSaysSo) {
  const Bytes bytes = {1, 2, 3};
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u32(), 0U);
  EXPECT_FALSE(reader.ok());
  EXPECT_EQ(reader.u16(), 0U);
  EXPECT_FALSE(reader.ok());
  EXPECT_TRUE(reader.rest().empty());
}

}  // namespace
}  // namespace ambrel::simulator
