// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <gtest/gtest.h>

#include "Records.h"
#include "simulator/Datasets.h"

namespace ambrel::simulator {
namespace {

StoredObject photo() {
  StoredObject object;
  object.handle = 0x91900001;
  object.storage = 0x00010001;
  object.parent = 0x90000010;
  object.format = ObjectFormat::jpeg;
  object.size = 12345;
  object.width = 1200;
  object.height = 800;
  object.shot = 1;
  object.name = "IMG_0001.JPG";
  return object;
}

std::vector<std::uint16_t> readArray16(ByteReader& reader) {
  std::vector<std::uint16_t> items(reader.u32());
  for (std::uint16_t& item : items) {
    item = reader.u16();
  }
  return items;
}

std::string readPtpString(ByteReader& reader) {
  const ByteView rest = reader.rest();
  std::string text;
  for (std::size_t i = 0; i + 1 < rest[0]; ++i) {
    text += static_cast<char>(rest[1 + 2 * i]);
  }
  reader = ByteReader(rest.subspan(1 + 2 * static_cast<std::size_t>(rest[0])));
  return text;
}

TEST(Datasets, TellWhoTheCameraIs) {
  const Bytes bytes = encode_device_info();
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u16(), 100);
  EXPECT_EQ(reader.u32(), 0x0000000BU);
  EXPECT_EQ(reader.u16(), 100);
  EXPECT_EQ(readPtpString(reader), "");
  EXPECT_EQ(reader.u16(), 0);
  const std::vector<std::uint16_t> operations = readArray16(reader);
  for (const int needed : {0x1001, 0x101B, 0x9110, 0x9116, 0x9117, 0x911A, 0x9128}) {
    EXPECT_NE(std::find(operations.begin(), operations.end(), needed), operations.end()) << needed;
  }
  EXPECT_FALSE(readArray16(reader).empty());
  EXPECT_EQ(readArray16(reader).size(), 5U);
  EXPECT_EQ(readArray16(reader), std::vector<std::uint16_t>{0x3801});
  EXPECT_FALSE(readArray16(reader).empty());
  EXPECT_EQ(readPtpString(reader), "Canon.Inc");
  EXPECT_EQ(readPtpString(reader), "Canon EOS R6");
  EXPECT_EQ(readPtpString(reader), "3-1.0.0");
  EXPECT_EQ(readPtpString(reader), "012345678901");
  EXPECT_TRUE(reader.rest().empty());
}

TEST(Datasets, NeverSendAnEmptyArrayInDeviceInfoEx) {
  const Bytes bytes = encode_device_info_ex();
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u32(), bytes.size());
  for (int array = 0; array < 3; ++array) {
    const std::uint32_t count = reader.u32();
    EXPECT_GT(count, 0U);
    for (std::uint32_t i = 0; i < count; ++i) {
      reader.u32();
    }
  }
  EXPECT_TRUE(reader.ok());
  EXPECT_TRUE(reader.rest().empty());
}

TEST(Datasets, TellTheRoomOnACard) {
  const Bytes bytes = encode_storage_info(1000, 400);
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u16(), 4);
  EXPECT_EQ(reader.u16(), 3);
  EXPECT_EQ(reader.u16(), 0);
  EXPECT_EQ(reader.u64(), 1000U);
  EXPECT_EQ(reader.u64(), 400U);
  EXPECT_EQ(reader.u32(), 0xFFFFFFFF);
  EXPECT_EQ(readPtpString(reader), "SD1");
  EXPECT_EQ(readPtpString(reader), "");
  EXPECT_TRUE(reader.rest().empty());
}

TEST(Datasets, DescribeAPhoto) {
  const Bytes bytes = encode_object_info(photo());
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u32(), 0x00010001U);
  EXPECT_EQ(reader.u16(), 0x3801);
  EXPECT_EQ(reader.u16(), 0);
  EXPECT_EQ(reader.u32(), 12345U);
  EXPECT_EQ(reader.u16(), 0x3808);
  reader.u32();
  EXPECT_EQ(reader.u32(), 160U);
  EXPECT_EQ(reader.u32(), 120U);
  EXPECT_EQ(reader.u32(), 1200U);
  EXPECT_EQ(reader.u32(), 800U);
  EXPECT_EQ(reader.u32(), 24U);
  EXPECT_EQ(reader.u32(), 0x90000010U);
  EXPECT_EQ(reader.u16(), 0);
  reader.u32();
  reader.u32();
  EXPECT_EQ(readPtpString(reader), "IMG_0001.JPG");
  EXPECT_EQ(readPtpString(reader), "20260101T100001");
  EXPECT_EQ(readPtpString(reader), "20260101T100001");
  EXPECT_EQ(readPtpString(reader), "");
  EXPECT_TRUE(reader.rest().empty());
}

TEST(Datasets, DescribeAFolderAsAnAssociation) {
  StoredObject folder = photo();
  folder.format = ObjectFormat::folder;
  const Bytes bytes = encode_object_info(folder);
  EXPECT_EQ(bytes[4], 0x01);
  EXPECT_EQ(bytes[5], 0x30);
  EXPECT_EQ(bytes[42], 1);
}

TEST(Datasets, ListAFolderInEntriesOfFixedSize) {
  const StoredObject one = photo();
  StoredObject two = photo();
  two.handle = 2;
  two.name = "A name that is far too long for an entry";
  const Bytes bytes = encode_object_info_ex({&one, &two});
  ASSERT_EQ(bytes.size(), 4U + 2 * 56);
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u32(), 2U);
  EXPECT_EQ(reader.u32(), 56U);
  EXPECT_EQ(reader.u32(), 0x91900001U);
  EXPECT_EQ(reader.u32(), 0x00010001U);
  EXPECT_EQ(reader.u32(), 0x3801U);
  EXPECT_EQ(reader.u32(), 0U);
  EXPECT_EQ(reader.u32(), 0x20U);
  EXPECT_EQ(reader.u32(), 12345U);
  EXPECT_EQ(reader.u32(), 0x90000010U);
  EXPECT_EQ(reader.u32(), 0x91900001U);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(reader.rest().data())), "IMG_0001.JPG");
  EXPECT_EQ(bytes[4 + 56 + 51], 0) << "the name is closed";
}

TEST(Datasets, AnnounceAPhotoOnTheCard) {
  Bytes dataset = encode_object_added_record(photo());
  const Bytes end = end_of_records();
  dataset.insert(dataset.end(), end.begin(), end.end());
  const auto records = read_records(dataset);
  ASSERT_TRUE(records);
  ASSERT_EQ(records->size(), 1U);
  const Record& record = records->front();
  EXPECT_EQ(record.type, RecordType::objectAdded);
  EXPECT_EQ(record.number(0), 0x91900001U);
  EXPECT_EQ(record.number(1), 0x00010001U);
  EXPECT_EQ(record.number(2), 0x3801U);
  EXPECT_EQ(record.number(5), 12345U);
  EXPECT_EQ(record.number(6), 0x90000010U);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(record.body.data()) + 32), "IMG_0001.JPG");
}

TEST(Datasets, OfferAPhotoOfTheHostsMemory) {
  const Bytes bytes = encode_request_transfer_record(photo());
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u32(), bytes.size());
  EXPECT_EQ(reader.u32(), 0xC186U);
  EXPECT_EQ(reader.u32(), 0x91900001U);
  EXPECT_EQ(reader.u32(), 0x3801U);
  reader.u32();
  EXPECT_EQ(reader.u32(), 12345U);
  reader.u32();
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(reader.rest().data())), "IMG_0001.JPG");
}

TEST(Datasets, TellNumbersTextsAndStructuresOfProperties) {
  const CameraProperty number{Property::iso, 0x48U, {}};
  EXPECT_EQ(encode_property_record(number), ByteWriter().u32(16).u32(0xC189).u32(0xD103).u32(0x48).take());
  const CameraProperty text{Property::owner, std::string("Jo"), {}};
  EXPECT_EQ(encode_property_record(text), ByteWriter().u32(15).u32(0xC189).u32(0xD115).cString("Jo").take());
  const CameraProperty raw{Property::imageFormat, Bytes{1, 2, 3, 4}, {}};
  EXPECT_EQ(encode_property_record(raw), ByteWriter().u32(16).u32(0xC189).u32(0xD120).u32(0x04030201).take());
}

TEST(Datasets, TellWhatAPropertyMayBecome) {
  const CameraProperty property{Property::captureDestination, 1U, {1, 4}};
  EXPECT_EQ(encode_available_record(property),
            ByteWriter().u32(28).u32(0xC18A).u32(0xD11C).u32(3).u32(2).u32(1).u32(4).take());
}

TEST(Datasets, CloseAnEmptyAnswerToo) {
  EXPECT_EQ(end_of_records(), (Bytes{8, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Datasets, DescribeTheStandardPropertiesAndNoOther) {
  for (const std::uint16_t known :
       std::initializer_list<std::uint16_t>{0x5001, 0xD402, 0xD406, 0xD407, 0xD303}) {
    const Bytes bytes = encode_device_prop_desc(known);
    ASSERT_GE(bytes.size(), 5U) << known;
    EXPECT_EQ(ByteReader(bytes).u16(), known);
  }
  EXPECT_TRUE(encode_device_prop_desc(0x5002).empty());
}

}  // namespace
}  // namespace ambrel::simulator
