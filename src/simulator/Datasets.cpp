// SPDX-License-Identifier: Apache-2.0
#include "simulator/Datasets.h"

#include <algorithm>
#include <iterator>

#include "simulator/CameraIdentity.h"
#include "simulator/PhotoMaker.h"

namespace ambrel::simulator {

namespace {

constexpr std::uint32_t kCanonVendorExtension = 0x0000000B;
constexpr std::uint16_t kStandardVersion = 100;
constexpr std::uint16_t kAssociationFolder = 1;
constexpr std::uint32_t kFlagFolder = 0x10;
constexpr std::uint32_t kFlagNew = 0x20;

constexpr std::uint16_t kEvents[] = {0x4002, 0x4003, 0x4004, 0x4005, 0x4006, 0x4008, 0x4009};
constexpr std::uint16_t kStandardProperties[] = {0xD402, 0xD407, 0xD406, 0xD303, 0x5001};
constexpr std::uint16_t kCaptureFormats[] = {static_cast<std::uint16_t>(ObjectFormat::jpeg)};
constexpr std::uint16_t kImageFormats[] = {static_cast<std::uint16_t>(ObjectFormat::jpeg),
                                           static_cast<std::uint16_t>(ObjectFormat::folder),
                                           static_cast<std::uint16_t>(ObjectFormat::cr3)};

constexpr Operation kOperations[] = {
    Operation::getDeviceInfo,
    Operation::openSession,
    Operation::closeSession,
    Operation::getStorageIds,
    Operation::getStorageInfo,
    Operation::getObjectHandles,
    Operation::getObjectInfo,
    Operation::getObject,
    Operation::getThumb,
    Operation::deleteObject,
    Operation::getDevicePropDesc,
    Operation::getPartialObject,
    Operation::eosGetStorageIds,
    Operation::eosGetStorageInfo,
    Operation::eosGetDeviceInfoEx,
    Operation::eosGetObjectInfoEx,
    Operation::eosSetObjectAttributes,
    Operation::eosRemoteRelease,
    Operation::eosSetDevicePropValueEx,
    Operation::eosSetRemoteMode,
    Operation::eosSetEventMode,
    Operation::eosGetEvent,
    Operation::eosTransferComplete,
    Operation::eosPcHddCapacity,
    Operation::eosSetUiLock,
    Operation::eosResetUiLock,
    Operation::eosKeepDeviceOn,
    Operation::eosRequestDevicePropValue,
    Operation::eosRemoteReleaseOn,
    Operation::eosRemoteReleaseOff,
    Operation::eosSetRequestOlcInfoGroup,
    Operation::eosSetLiveAfFrame,
    Operation::eosAfCancel,
};

template <typename Number>
std::uint32_t code(Number number) {
  return static_cast<std::uint32_t>(number);
}

std::vector<std::uint16_t> operationCodes() {
  std::vector<std::uint16_t> codes;
  std::transform(std::begin(kOperations), std::end(kOperations), std::back_inserter(codes),
                 [](Operation operation) { return static_cast<std::uint16_t>(operation); });
  return codes;
}

Bytes encodeRecord(RecordType type, ByteView body) {
  return ByteWriter().u32(code(body.size() + 8)).u32(code(type)).raw(body).take();
}

void writeValue(ByteWriter& out, const PropertyValue& value) {
  if (const auto* number = std::get_if<std::uint32_t>(&value)) {
    out.u32(*number);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    out.cString(*text);
  } else {
    out.raw(std::get<Bytes>(value));
  }
}

}  // namespace

Bytes encode_device_info() {
  return ByteWriter()
      .u16(kStandardVersion)
      .u32(kCanonVendorExtension)
      .u16(kStandardVersion)
      .ptpString("")
      .u16(0)
      .array16(operationCodes())
      .array16(kEvents)
      .array16(kStandardProperties)
      .array16(kCaptureFormats)
      .array16(kImageFormats)
      .ptpString(kCameraMaker)
      .ptpString(kCameraModel)
      .ptpString(kCameraFirmware)
      .ptpString(kCameraSerial)
      .take();
}

Bytes encode_device_info_ex() {
  constexpr RecordType kRecords[] = {RecordType::objectAdded, RecordType::objectRemoved,
                                     RecordType::requestTransfer, RecordType::propertyChanged,
                                     RecordType::cameraStatus};
  constexpr Property kProperties[] = {Property::aperture, Property::shutterSpeed, Property::iso,
                                      Property::availableShots, Property::captureDestination};
  ByteWriter arrays;
  arrays.u32(code(std::size(kRecords)));
  for (const RecordType record : kRecords) {
    arrays.u32(code(record));
  }
  arrays.u32(code(std::size(kProperties)));
  for (const Property property : kProperties) {
    arrays.u32(code(property));
  }
  // Hosts refuse an empty array, and nobody has said what this third one holds.
  arrays.u32(1).u32(1);
  return ByteWriter().u32(code(arrays.size() + 4)).raw(arrays.bytes()).take();
}

Bytes encode_storage_info(std::uint64_t capacity, std::uint64_t free) {
  constexpr std::uint16_t kRemovableRam = 4;
  constexpr std::uint16_t kDcfFileSystem = 3;
  return ByteWriter()
      .u16(kRemovableRam)
      .u16(kDcfFileSystem)
      .u16(0)
      .u64(capacity)
      .u64(free)
      .u32(0xFFFFFFFF)
      .ptpString("SD1")
      .ptpString("")
      .take();
}

Bytes encode_object_info(const StoredObject& object) {
  const bool folder = object.format == ObjectFormat::folder;
  const std::string date = shot_time(object.shot).ptp;
  return ByteWriter()
      .u32(object.storage)
      .u16(static_cast<std::uint16_t>(object.format))
      .u16(0)
      .u32(object.size)
      .u16(0x3808)
      .u32(0)
      .u32(folder ? 0 : 160)
      .u32(folder ? 0 : 120)
      .u32(code(object.width))
      .u32(code(object.height))
      .u32(folder ? 0 : 24)
      .u32(object.parent)
      .u16(folder ? kAssociationFolder : 0)
      .u32(0)
      .u32(0)
      .ptpString(object.name)
      .ptpString(date)
      .ptpString(date)
      .ptpString("")
      .take();
}

Bytes encode_object_info_ex(const std::vector<const StoredObject*>& objects) {
  constexpr std::uint32_t kEntryBytes = 56;
  constexpr std::size_t kNameBytes = 16;
  ByteWriter out;
  out.u32(code(objects.size()));
  for (const StoredObject* object : objects) {
    const bool folder = object->format == ObjectFormat::folder;
    Bytes name(object->name.begin(), object->name.end());
    name.resize(kNameBytes - 1);
    name.push_back(0);
    out.u32(kEntryBytes).u32(object->handle).u32(object->storage).u32(code(object->format)).u32(0);
    out.u32(folder ? kFlagFolder : kFlagNew).u32(object->size).u32(object->parent).u32(object->handle);
    out.raw(name).u32(shot_time(object->shot).seconds);
  }
  return out.take();
}

Bytes encode_device_prop_desc(std::uint16_t property) {
  constexpr std::uint16_t kTypeU8 = 0x0002;
  constexpr std::uint16_t kTypeU32 = 0x0006;
  constexpr std::uint16_t kTypeString = 0xFFFF;
  ByteWriter out;
  out.u16(property);
  switch (property) {
    case 0x5001:  // battery level in percent, one of the listed ones
      return out.u16(kTypeU8).u8(0).u8(100).u8(75).u8(2).u16(4).u8(100).u8(75).u8(50).u8(25).take();
    case 0xD402:  // device friendly name
      return out.u16(kTypeString).u8(0).ptpString(kCameraModel).ptpString(kCameraModel).u8(0).take();
    case 0xD406:  // session initiator
      return out.u16(kTypeString).u8(1).ptpString("Unknown").ptpString("Unknown").u8(0).take();
    case 0xD407:  // perceived device type: a still camera
      return out.u16(kTypeU32).u8(0).u32(1).u32(1).u8(0).take();
    case 0xD303:
      return out.u16(kTypeU8).u8(0).u8(1).u8(1).u8(0).take();
    default:
      return {};
  }
}

Bytes encode_property_record(const CameraProperty& property) {
  ByteWriter body;
  body.u32(code(property.code));
  writeValue(body, property.value);
  return encodeRecord(RecordType::propertyChanged, body.bytes());
}

Bytes encode_available_record(const CameraProperty& property) {
  constexpr std::uint32_t kListOfNumbers = 3;
  const Bytes body =
      ByteWriter().u32(code(property.code)).u32(kListOfNumbers).array32(property.available).take();
  return encodeRecord(RecordType::availableListChanged, body);
}

Bytes encode_object_added_record(const StoredObject& object) {
  const bool folder = object.format == ObjectFormat::folder;
  ByteWriter body;
  body.u32(object.handle).u32(object.storage).u32(code(object.format)).u32(0);
  body.u32(folder ? kFlagFolder : kFlagNew).u32(object.size).u32(object.parent).u32(object.handle);
  body.cString(object.name);
  return encodeRecord(RecordType::objectAdded, body.bytes());
}

Bytes encode_request_transfer_record(const StoredObject& object) {
  ByteWriter body;
  body.u32(object.handle).u32(code(object.format)).u32(0).u32(object.size).u32(0).cString(object.name);
  return encodeRecord(RecordType::requestTransfer, body.bytes());
}

Bytes encode_number_record(RecordType type, std::uint32_t number) {
  return encodeRecord(type, ByteWriter().u32(number).bytes());
}

Bytes end_of_records() {
  return ByteWriter().u32(8).u32(0).take();
}

}  // namespace ambrel::simulator
