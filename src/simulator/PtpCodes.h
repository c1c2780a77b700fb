// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

// The numbers of PTP (ISO 15740), of PTP/IP (CIPA DC-005) and of the EOS dialect that this camera speaks.
namespace ambrel::simulator {

enum class PacketType : std::uint32_t {
  initCommandRequest = 1,
  initCommandAck = 2,
  initEventRequest = 3,
  initEventAck = 4,
  initFail = 5,
  commandRequest = 6,
  commandResponse = 7,
  event = 8,
  startData = 9,
  data = 10,
  cancel = 11,
  endData = 12,
  ping = 13,
  pong = 14,
};

enum class Operation : std::uint16_t {
  getDeviceInfo = 0x1001,
  openSession = 0x1002,
  closeSession = 0x1003,
  getStorageIds = 0x1004,
  getStorageInfo = 0x1005,
  getObjectHandles = 0x1007,
  getObjectInfo = 0x1008,
  getObject = 0x1009,
  getThumb = 0x100A,
  deleteObject = 0x100B,
  getDevicePropDesc = 0x1014,
  getPartialObject = 0x101B,
  eosGetStorageIds = 0x9101,
  eosGetStorageInfo = 0x9102,
  eosGetDeviceInfoEx = 0x9108,
  eosGetObjectInfoEx = 0x9109,
  eosSetObjectAttributes = 0x910C,
  eosRemoteRelease = 0x910F,
  eosSetDevicePropValueEx = 0x9110,
  eosSetRemoteMode = 0x9114,
  eosSetEventMode = 0x9115,
  eosGetEvent = 0x9116,
  eosTransferComplete = 0x9117,
  eosPcHddCapacity = 0x911A,
  eosSetUiLock = 0x911B,
  eosResetUiLock = 0x911C,
  eosKeepDeviceOn = 0x911D,
  eosRequestDevicePropValue = 0x9127,
  eosRemoteReleaseOn = 0x9128,
  eosRemoteReleaseOff = 0x9129,
  eosSetRequestOlcInfoGroup = 0x913D,
  eosSetLiveAfFrame = 0x9153,
  eosAfCancel = 0x9160,
};

enum class Response : std::uint16_t {
  ok = 0x2001,
  generalError = 0x2002,
  sessionNotOpen = 0x2003,
  operationNotSupported = 0x2005,
  invalidStorage = 0x2008,
  invalidHandle = 0x2009,
  propertyNotSupported = 0x200A,
  storeNotAvailable = 0x2013,
  noThumbnail = 0x2010,
  deviceBusy = 0x2019,
  invalidParameter = 0x201D,
  sessionAlreadyOpen = 0x201E,
};

enum class InitFailure : std::uint32_t { rejected = 1, busy = 2 };

// What a record of the EOS event dataset tells.
enum class RecordType : std::uint32_t {
  objectAdded = 0xC181,
  objectRemoved = 0xC182,
  requestTransfer = 0xC186,
  propertyChanged = 0xC189,
  availableListChanged = 0xC18A,
  cameraStatus = 0xC18B,
  storeAdded = 0xC192,
  storeRemoved = 0xC193,
};

enum class Property : std::uint32_t {
  aperture = 0xD101,
  shutterSpeed = 0xD102,
  iso = 0xD103,
  exposureMode = 0xD105,
  batteryPower = 0xD111,
  owner = 0xD115,
  modelId = 0xD116,
  availableShots = 0xD11B,
  captureDestination = 0xD11C,
  currentStorage = 0xD11E,
  imageFormat = 0xD120,
  olcInfoVersion = 0xD199,
  shutterCount = 0xD1AC,
  serialNumber = 0xD1AF,
  evfOutput = 0xD1B0,
  artist = 0xD1D0,
  copyright = 0xD1D1,
  lensName = 0xD1D8,
};

enum class ObjectFormat : std::uint16_t { folder = 0x3001, jpeg = 0x3801, cr3 = 0xB108 };

// Values of Property::captureDestination. To both is offered, as an EOS R6 does; taken there, a photo is on
// the card only.
inline constexpr std::uint32_t kDestinationCard = 1;
inline constexpr std::uint32_t kDestinationBoth = 5;
inline constexpr std::uint32_t kDestinationHost = 4;

}  // namespace ambrel::simulator
