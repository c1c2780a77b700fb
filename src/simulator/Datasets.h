// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/PtpCodes.h"

// The data blocks of PTP and of its EOS dialect, as bytes. All are little-endian; texts are ASCII.
namespace ambrel::simulator {

// A file or folder that the camera lets a host see.
struct StoredObject {
  std::uint32_t handle = 0;
  std::uint32_t storage = 0;
  std::uint32_t parent = 0;  // handle of the folder, 0 in the root
  ObjectFormat format = ObjectFormat::jpeg;
  std::uint32_t size = 0;  // bytes
  int width = 0;
  int height = 0;
  std::uint32_t shot = 0;
  std::string name;  // at most 12 characters, as on a FAT card
};

// A number, a text, or a structure as its raw bytes.
using PropertyValue = std::variant<std::uint32_t, std::string, Bytes>;

struct CameraProperty {
  Property code{};
  PropertyValue value;
  std::vector<std::uint32_t> available;  // the numbers it may take; empty if it has no list
};

Bytes encode_device_info();
Bytes encode_device_info_ex();
Bytes encode_storage_info(std::uint64_t capacity, std::uint64_t free);
Bytes encode_object_info(const StoredObject& object);
Bytes encode_object_info_ex(const std::vector<const StoredObject*>& objects);
// The standard properties that DeviceInfo names; empty for any other code.
Bytes encode_device_prop_desc(std::uint16_t code);

// Records of the event dataset. end_of_records() closes every answer, the empty one too.
Bytes encode_property_record(const CameraProperty& property);
Bytes encode_available_record(const CameraProperty& property);
Bytes encode_object_added_record(const StoredObject& object);
Bytes encode_request_transfer_record(const StoredObject& object);
// A record with one number: an object, a storage or a status.
Bytes encode_number_record(RecordType type, std::uint32_t number);
Bytes end_of_records();

}  // namespace ambrel::simulator
