// SPDX-License-Identifier: Apache-2.0
#include "simulator/PtpResponder.h"

#include <algorithm>

namespace ambrel::simulator {

namespace {

constexpr std::uint32_t kRoot = 0xFFFFFFFF;
constexpr std::uint32_t kEveryStorage = 0xFFFFFFFF;

PtpReply withData(Bytes data) {
  return {Response::ok, {}, std::move(data)};
}

PtpReply okUnless(bool failed, Response code) {
  return {failed ? code : Response::ok, {}, std::nullopt};
}

Bytes arrayOf(std::initializer_list<std::uint32_t> items) {
  return ByteWriter().array32(std::vector<std::uint32_t>(items)).take();
}

}  // namespace

PtpReply PtpResponder::perform(const PtpRequest& request) {
  const auto operation = static_cast<Operation>(request.operation);
  if (_camera.takeBusy(operation)) return {Response::deviceBusy, {}, {}};
  const bool withoutSession = operation == Operation::getDeviceInfo || operation == Operation::openSession;
  if (!_open && !withoutSession) return {Response::sessionNotOpen, {}, {}};
  return dispatch(request);
}

PtpReply PtpResponder::dispatch(const PtpRequest& request) {
  const std::uint32_t first = request.parameters[0];
  switch (static_cast<Operation>(request.operation)) {
    case Operation::getDeviceInfo:
      return withData(encode_device_info());
    case Operation::openSession:
      return openSession();
    case Operation::closeSession:
      return closeSession();
    case Operation::getStorageIds:
    case Operation::eosGetStorageIds:
      return withData(arrayOf({_camera.storage()}));
    case Operation::getStorageInfo:
    case Operation::eosGetStorageInfo:
      return storageInfo(first);
    case Operation::getObjectHandles:
      return objectHandles(request);
    case Operation::getObjectInfo:
      return objectInfo(first);
    case Operation::getObject:
      return wholeObject(first);
    case Operation::getThumb:
      return thumbnail(first);
    case Operation::deleteObject:
      return okUnless(!_camera.remove(first), Response::invalidHandle);
    case Operation::getDevicePropDesc: {
      Bytes description = encode_device_prop_desc(static_cast<std::uint16_t>(first));
      if (description.empty()) return {Response::propertyNotSupported, {}, {}};
      return withData(std::move(description));
    }
    case Operation::getPartialObject:
      return partOfObject(request);
    case Operation::eosGetDeviceInfoEx:
      return withData(encode_device_info_ex());
    case Operation::eosGetObjectInfoEx:
      return objectInfoEx(request);
    case Operation::eosSetDevicePropValueEx:
      return setProperty(request.data);
    case Operation::eosSetEventMode:
      _camera.setEventMode(first != 0);
      return {};
    case Operation::eosGetEvent:
      return withData(_camera.takeEvents());
    case Operation::eosTransferComplete:
      return okUnless(!_camera.completeTransfer(first), Response::invalidHandle);
    case Operation::eosPcHddCapacity:
      _camera.setHostCapacity();
      return {};
    case Operation::eosRequestDevicePropValue:
      return okUnless(!_camera.announceProperty(first), Response::propertyNotSupported);
    case Operation::eosRemoteRelease:
      return release();
    case Operation::eosRemoteReleaseOn:
      // Bit 0 presses half, bit 1 through.
      return (first & 2) != 0 ? release() : PtpReply{};
    case Operation::eosSetObjectAttributes:
      return okUnless(_camera.object(first) == nullptr, Response::invalidHandle);
    case Operation::eosSetRemoteMode:
    case Operation::eosSetUiLock:
    case Operation::eosResetUiLock:
    case Operation::eosKeepDeviceOn:
    case Operation::eosRemoteReleaseOff:
    case Operation::eosSetRequestOlcInfoGroup:
    case Operation::eosSetLiveAfFrame:
    case Operation::eosAfCancel:
      return {};
  }
  return {Response::operationNotSupported, {}, {}};
}

PtpReply PtpResponder::openSession() {
  if (_open) return {Response::sessionAlreadyOpen, {}, {}};
  _open = true;
  return {};
}

PtpReply PtpResponder::closeSession() {
  _open = false;
  _camera.endSession();
  return {};
}

PtpReply PtpResponder::storageInfo(std::uint32_t storage) const {
  if (storage != _camera.storage()) return {Response::invalidStorage, {}, {}};
  return withData(encode_storage_info(_camera.cardCapacity(), _camera.cardFree()));
}

PtpReply PtpResponder::objectHandles(const PtpRequest& request) const {
  const auto [storage, format, parent, unused1, unused2] = request.parameters;
  if (!_camera.card()) return {Response::storeNotAvailable, {}, {}};
  if (storage != _camera.storage() && storage != kEveryStorage) return {Response::invalidStorage, {}, {}};
  std::vector<std::uint32_t> handles;
  for (const StoredObject* object : _camera.children(parent == kRoot ? 0 : parent)) {
    if (format == 0 || format == static_cast<std::uint32_t>(object->format))
      handles.push_back(object->handle);
  }
  return withData(ByteWriter().array32(handles).take());
}

PtpReply PtpResponder::objectInfo(std::uint32_t handle) const {
  const StoredObject* object = _camera.object(handle);
  if (object == nullptr) return {Response::invalidHandle, {}, {}};
  return withData(encode_object_info(*object));
}

PtpReply PtpResponder::objectInfoEx(const PtpRequest& request) const {
  const std::uint32_t storage = request.parameters[0];
  const std::uint32_t parent = request.parameters[1];
  if (!_camera.card()) return {Response::storeNotAvailable, {}, {}};
  if (storage != _camera.storage()) return {Response::invalidStorage, {}, {}};
  return withData(encode_object_info_ex(_camera.children(parent == kRoot ? 0 : parent)));
}

PtpReply PtpResponder::wholeObject(std::uint32_t handle) {
  const std::shared_ptr<const Bytes> bytes = _camera.bytes(handle);
  if (bytes == nullptr) return {Response::invalidHandle, {}, {}};
  _camera.noteAsked(handle);
  return withData(*bytes);
}

PtpReply PtpResponder::partOfObject(const PtpRequest& request) {
  constexpr std::size_t kLargestPart = 4 << 20;
  const std::uint32_t handle = request.parameters[0];
  const std::size_t offset = request.parameters[1];
  const std::shared_ptr<const Bytes> bytes = _camera.bytes(handle);
  if (bytes == nullptr) return {Response::invalidHandle, {}, {}};
  // An answer of no bytes makes a host ask for ever.
  if (offset >= bytes->size() || request.parameters[2] == 0) return {Response::invalidParameter, {}, {}};
  const std::size_t wanted = std::min<std::size_t>(request.parameters[2], kLargestPart);
  const ByteView part = ByteView(*bytes).subspan(offset, std::min(wanted, bytes->size() - offset));
  if (offset + part.size() == bytes->size()) _camera.noteAsked(handle);
  return {Response::ok, {static_cast<std::uint32_t>(part.size())}, Bytes(part.begin(), part.end())};
}

PtpReply PtpResponder::thumbnail(std::uint32_t handle) const {
  std::optional<Bytes> bytes = _camera.thumbnail(handle);
  if (!bytes) return {Response::noThumbnail, {}, {}};
  return withData(std::move(*bytes));
}

PtpReply PtpResponder::setProperty(const Bytes& data) {
  ByteReader reader(data);
  reader.u32();  // the size of the block once more
  const std::uint32_t code = reader.u32();
  return okUnless(!reader.ok() || !_camera.setProperty(code, reader.rest()), Response::propertyNotSupported);
}

PtpReply PtpResponder::release() {
  return okUnless(!_camera.shoot({}).empty(), Response::generalError);
}

}  // namespace ambrel::simulator
