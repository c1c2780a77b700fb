// SPDX-License-Identifier: Apache-2.0
#include "simulator/CameraModel.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "simulator/CameraIdentity.h"

namespace ambrel::simulator {

namespace {

constexpr std::uint32_t kCardStorage = 0x00010001;
// Without a card a storage is still named, its low half 0.
constexpr std::uint32_t kEmptyStorage = 0x00020000;
constexpr std::uint64_t kCardBytes = 64ULL << 30;
constexpr std::uint32_t kShotsOnCard = 9999;
constexpr std::uint32_t kShotsInHost = 1000;

constexpr std::uint32_t kImageFolder = 0x90000001;
constexpr std::uint32_t kFirstSubfolder = 0x90000010;
constexpr std::uint32_t kFirstCardFile = 0x91900001;
constexpr std::uint32_t kFirstHostFile = 0x01000001;

// File names and folders count as DCF wants it: 9999 files, then the next folder.
constexpr std::uint32_t kFilesInFolder = 9999;
constexpr std::uint32_t kFirstFolderNumber = 100;

// A host that never asks costs no more than this.
constexpr std::size_t kLargestEventQueue = 4 << 20;

constexpr std::uint32_t kStatusIdle = 0;
constexpr std::uint32_t kStatusBusy = 1;

std::string fileName(std::uint32_t shot, FileKind kind) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "IMG_%04u.%s", (shot - 1) % kFilesInFolder + 1,
                kind == FileKind::jpeg ? "JPG" : "CR3");
  return name.data();
}

Bytes largeFineJpeg() {
  return ByteWriter().u32(1).u32(0x10).u32(1).u32(0).u32(3).take();
}

std::vector<CameraProperty> initialProperties() {
  return {
      {Property::aperture, 0x30U, {0x28, 0x2B, 0x2D, 0x30, 0x33, 0x35, 0x38}},
      {Property::shutterSpeed, 0x70U, {0x60, 0x63, 0x65, 0x68, 0x6B, 0x6D, 0x70, 0x73, 0x75, 0x78}},
      {Property::iso, 0x48U, {0x48, 0x50, 0x58, 0x60, 0x68}},
      {Property::exposureMode, 3U, {}},
      {Property::batteryPower, 2U, {}},
      {Property::owner, std::string("Ambrel"), {}},
      {Property::modelId, 0x80000453U, {}},
      {Property::availableShots, kShotsOnCard, {}},
      {Property::captureDestination,
       kDestinationCard,
       {kDestinationCard, kDestinationBoth, kDestinationHost}},
      {Property::currentStorage, 1U, {}},
      {Property::imageFormat, largeFineJpeg(), {}},
      {Property::olcInfoVersion, 7U, {}},
      {Property::shutterCount, 0U, {}},
      {Property::serialNumber, std::string(kCameraSerial), {}},
      {Property::evfOutput, 0U, {}},
      {Property::artist, std::string(), {}},
      {Property::copyright, std::string(), {}},
      {Property::lensName, std::string(kCameraLens), {}},
  };
}

}  // namespace

CameraModel::CameraModel(Settings settings)
    : _settings(settings), _properties(initialProperties()), _shots(settings.firstShot - 1) {
  addFolder(kImageFolder, 0, "DCIM");
  folderFor(settings.firstShot);
}

std::string CameraModel::shoot(const ShotOrder& order) {
  if (!toHost() && !_card) return "no card in the camera";
  if (toHost() && !_hostCapacity) return "the host has not said that it has room";
  std::vector<FileKind> kinds;
  if (order.kind != ShotKind::raw) kinds.push_back(FileKind::jpeg);
  if (order.kind != ShotKind::jpeg) kinds.push_back(FileKind::raw);
  if (order.rawFirst) std::reverse(kinds.begin(), kinds.end());

  ++_shots;
  std::vector<std::pair<PhotoSpec, Bytes>> files;
  for (const FileKind kind : kinds) {
    const PhotoSpec spec = specFor(kind, order);
    std::optional<Bytes> bytes = make_photo(spec);
    if (!bytes) {
      --_shots;
      return "the photo does not fit into " + std::to_string(spec.size) + " bytes";
    }
    files.emplace_back(spec, std::move(*bytes));
  }
  queue(encode_number_record(RecordType::cameraStatus, kStatusBusy));
  for (auto& [spec, bytes] : files) {
    record(spec, std::move(bytes));
  }
  change(Property::shutterCount, _shots);
  updateAvailableShots();
  queue(encode_number_record(RecordType::cameraStatus, kStatusIdle));
  return {};
}

PhotoSpec CameraModel::specFor(FileKind kind, const ShotOrder& order) const {
  return {_settings.seed,  _shots,           kind,
          _settings.width, _settings.height, kind == FileKind::jpeg ? order.size : order.rawSize};
}

void CameraModel::record(const PhotoSpec& spec, Bytes bytes) {
  const bool host = toHost();
  Entry entry;
  entry.object.handle = (host ? kFirstHostFile : kFirstCardFile) + _files++;
  entry.object.storage = host ? 0 : kCardStorage;
  entry.object.parent = host ? 0 : folderFor(spec.shot);
  entry.object.format = spec.kind == FileKind::jpeg ? ObjectFormat::jpeg : ObjectFormat::cr3;
  entry.object.size = static_cast<std::uint32_t>(bytes.size());
  entry.object.width = spec.width;
  entry.object.height = spec.height;
  entry.object.shot = spec.shot;
  entry.object.name = fileName(spec.shot, spec.kind);
  entry.photo = _album.add(spec, entry.object.name, host ? Place::host : Place::card, std::move(bytes));
  if (host) {
    queue(encode_request_transfer_record(entry.object));
    _hostObjects.emplace(entry.object.handle, std::move(entry));
  } else {
    _cardUsed += entry.object.size;
    if (!_silent) queue(encode_object_added_record(entry.object));
    _cardObjects.emplace(entry.object.handle, std::move(entry));
  }
}

std::uint32_t CameraModel::folderFor(std::uint32_t shot) {
  const std::uint32_t index = (shot - 1) / kFilesInFolder;
  const std::uint32_t handle = kFirstSubfolder + index;
  if (_cardObjects.contains(handle)) return handle;
  return addFolder(handle, kImageFolder, std::to_string(kFirstFolderNumber + index) + "CANON");
}

std::uint32_t CameraModel::addFolder(std::uint32_t handle, std::uint32_t parent, const std::string& name) {
  StoredObject folder;
  folder.handle = handle;
  folder.storage = kCardStorage;
  folder.parent = parent;
  folder.format = ObjectFormat::folder;
  folder.name = name;
  queue(encode_object_added_record(folder));
  _cardObjects.emplace(handle, Entry{folder});
  return handle;
}

void CameraModel::setCard(bool in) {
  if (in == _card) return;
  _card = in;
  queue(encode_number_record(in ? RecordType::storeAdded : RecordType::storeRemoved, kCardStorage));
  updateDestinations();
  updateAvailableShots();
}

void CameraModel::setBusy(std::size_t count, std::optional<Operation> only) {
  _busy = count;
  _busyOnly = only;
}

bool CameraModel::takeBusy(Operation operation) {
  if (_busy == 0 || (_busyOnly && *_busyOnly != operation)) return false;
  --_busy;
  return true;
}

void CameraModel::setEventMode(bool on) {
  _eventMode = on;
  _events.clear();
  if (!on) return;
  for (const CameraProperty& each : _properties) {
    queue(encode_property_record(each));
    if (!each.available.empty()) queue(encode_available_record(each));
  }
}

Bytes CameraModel::takeEvents() {
  return ByteWriter().raw(std::exchange(_events, {})).raw(end_of_records()).take();
}

void CameraModel::queue(const Bytes& record) {
  if (!_eventMode || _events.size() + record.size() > kLargestEventQueue) return;
  _events.insert(_events.end(), record.begin(), record.end());
}

bool CameraModel::setProperty(std::uint32_t code, ByteView value) {
  constexpr std::size_t kLongestText = 64;
  const CameraProperty* known = find(code);
  if (known == nullptr) return false;
  const auto property = static_cast<Property>(code);
  if (std::holds_alternative<std::uint32_t>(known->value)) {
    ByteReader reader(value);
    const std::uint32_t wanted = reader.u32();
    if (!reader.ok()) return false;
    const bool newDestination = property == Property::captureDestination && wanted != destination();
    if (newDestination) _hostCapacity = false;
    change(property, wanted);
    if (newDestination) updateAvailableShots();
  } else if (std::holds_alternative<std::string>(known->value)) {
    const auto end = std::find(value.begin(), value.end(), 0);
    const std::string text(value.begin(), end);
    change(property, text.substr(0, kLongestText));
  } else {
    if (value.size() != std::get<Bytes>(known->value).size()) return false;
    change(property, Bytes(value.begin(), value.end()));
  }
  return true;
}

bool CameraModel::announceProperty(std::uint32_t code) {
  const CameraProperty* known = find(code);
  if (known == nullptr) return false;
  queue(encode_property_record(*known));
  return true;
}

void CameraModel::setHostCapacity() {
  _hostCapacity = true;
  updateAvailableShots();
}

void CameraModel::updateAvailableShots() {
  std::uint32_t shots = _card ? kShotsOnCard : 0;
  if (toHost()) shots = _hostCapacity ? kShotsInHost : 0;
  change(Property::availableShots, shots);
}

void CameraModel::updateDestinations() {
  CameraProperty& destinations = property(Property::captureDestination);
  destinations.available = {kDestinationHost};
  if (_card) destinations.available = {kDestinationCard, kDestinationBoth, kDestinationHost};
  queue(encode_available_record(destinations));
}

std::uint32_t CameraModel::storage() const {
  return _card ? kCardStorage : kEmptyStorage;
}

std::uint64_t CameraModel::cardCapacity() const {
  return _card ? kCardBytes : 0;
}

std::uint64_t CameraModel::cardFree() const {
  return _card ? kCardBytes - std::min(kCardBytes, _cardUsed) : 0;
}

const StoredObject* CameraModel::object(std::uint32_t handle) const {
  const auto inHost = _hostObjects.find(handle);
  if (inHost != _hostObjects.end()) return &inHost->second.object;
  const auto onCard = _cardObjects.find(handle);
  return _card && onCard != _cardObjects.end() ? &onCard->second.object : nullptr;
}

std::vector<const StoredObject*> CameraModel::children(std::uint32_t parent) const {
  std::vector<const StoredObject*> found;
  if (!_card) return found;
  for (const auto& [handle, entry] : _cardObjects) {
    if (entry.object.parent == parent) found.push_back(&entry.object);
  }
  return found;
}

const CameraModel::Entry* CameraModel::photoEntry(std::uint32_t handle) const {
  const StoredObject* known = object(handle);
  if (known == nullptr || known->format == ObjectFormat::folder) return nullptr;
  const auto inHost = _hostObjects.find(handle);
  return inHost != _hostObjects.end() ? &inHost->second : &_cardObjects.at(handle);
}

std::shared_ptr<const Bytes> CameraModel::bytes(std::uint32_t handle) {
  const Entry* entry = photoEntry(handle);
  return entry == nullptr ? nullptr : _album.bytes(entry->photo);
}

std::optional<Bytes> CameraModel::thumbnail(std::uint32_t handle) const {
  const Entry* entry = photoEntry(handle);
  if (entry == nullptr) return std::nullopt;
  return make_thumbnail(_album.photos()[entry->photo].spec);
}

void CameraModel::noteAsked(std::uint32_t handle) {
  if (const Entry* entry = photoEntry(handle)) ++_album.photo(entry->photo).asked;
}

bool CameraModel::completeTransfer(std::uint32_t handle) {
  return _hostObjects.erase(handle) > 0;
}

bool CameraModel::remove(std::uint32_t handle) {
  const Entry* entry = photoEntry(handle);
  if (entry == nullptr) return false;
  _album.photo(entry->photo).deleted = true;
  _hostObjects.erase(handle);
  _cardObjects.erase(handle);
  queue(encode_number_record(RecordType::objectRemoved, handle));
  return true;
}

void CameraModel::endSession() {
  setEventMode(false);
  _hostObjects.clear();
  _hostCapacity = false;
  change(Property::captureDestination, kDestinationCard);
  updateAvailableShots();
}

CameraProperty& CameraModel::property(Property code) {
  return *std::find_if(_properties.begin(), _properties.end(),
                       [&](const CameraProperty& each) { return each.code == code; });
}

const CameraProperty* CameraModel::find(std::uint32_t code) const {
  const auto found = std::find_if(_properties.begin(), _properties.end(), [&](const CameraProperty& each) {
    return static_cast<std::uint32_t>(each.code) == code;
  });
  return found == _properties.end() ? nullptr : &*found;
}

std::uint32_t CameraModel::number(Property code) const {
  return std::get<std::uint32_t>(find(static_cast<std::uint32_t>(code))->value);
}

void CameraModel::change(Property code, PropertyValue value) {
  CameraProperty& changed = property(code);
  if (changed.value == value) return;
  changed.value = std::move(value);
  queue(encode_property_record(changed));
}

}  // namespace ambrel::simulator
