// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/Album.h"
#include "simulator/Bytes.h"
#include "simulator/Datasets.h"
#include "simulator/PtpCodes.h"

namespace ambrel::simulator {

enum class ShotKind { jpeg, raw, pair };

// What a press of the shutter records.
struct ShotOrder {
  ShotKind kind = ShotKind::jpeg;
  std::size_t size = 0;     // bytes of a JPEG, 0: as the picture comes
  std::size_t rawSize = 0;  // bytes of a raw file, 0: kDefaultRawBytes
  bool rawFirst = false;    // a pair is announced raw file first
};

// The camera without its cable: card and host memory, properties, and the queue of events that a host asks
// for.
class CameraModel {
 public:
  struct Settings {
    std::uint64_t seed = 1;
    int width = 1200;  // of a picture, in pixels
    int height = 800;
    std::uint32_t firstShot = 1;  // its number, from which names and folders follow
  };

  explicit CameraModel(Settings settings);

  // What its user does. shoot() takes one exposure and returns why it could not, or an empty text.
  std::string shoot(const ShotOrder& order);
  void setCard(bool in);
  // While silent, photos on the card are not announced, as bodies do that speak of them in newer records.
  void setSilent(bool silent) { _silent = silent; }
  // The next `count` operations are answered "busy"; with `only`, that operation alone is.
  void setBusy(std::size_t count, std::optional<Operation> only);

  bool card() const { return _card; }
  bool silent() const { return _silent; }
  std::uint32_t destination() const { return number(Property::captureDestination); }
  std::uint32_t shots() const { return _shots; }
  const Album& album() const { return _album; }

  // What a host asks for.
  bool takeBusy(Operation operation);
  void setEventMode(bool on);
  // All that happened since the last call, closed by an end record.
  Bytes takeEvents();
  // False for a property that it does not know, or a value of the wrong length.
  bool setProperty(std::uint32_t code, ByteView value);
  // Announces the value once more; false for an unknown property.
  bool announceProperty(std::uint32_t code);
  // Tells that the host has room: only then may photos be taken to its memory.
  void setHostCapacity();
  std::uint32_t storage() const;
  std::uint64_t cardCapacity() const;
  std::uint64_t cardFree() const;
  // The pointer is valid until the next photo, transfer or change of the card.
  const StoredObject* object(std::uint32_t handle) const;
  // What a folder (0: the root) of the card holds, by handle.
  std::vector<const StoredObject*> children(std::uint32_t parent) const;
  // The bytes of a photo; nothing for a folder or an unknown handle.
  std::shared_ptr<const Bytes> bytes(std::uint32_t handle);
  std::optional<Bytes> thumbnail(std::uint32_t handle) const;
  // The host asked for the photo up to its last byte.
  void noteAsked(std::uint32_t handle);
  // The host has a photo of its memory whole: it goes from there. False for an unknown handle.
  bool completeTransfer(std::uint32_t handle);
  bool remove(std::uint32_t handle);
  // The host is gone: its events, the photos in its memory and its choice of a destination go with it.
  void endSession();

 private:
  struct Entry {
    StoredObject object;
    std::size_t photo = 0;  // in the album; nothing for a folder
  };

  const Entry* photoEntry(std::uint32_t handle) const;
  CameraProperty& property(Property code);
  const CameraProperty* find(std::uint32_t code) const;
  std::uint32_t number(Property code) const;
  void change(Property code, PropertyValue value);
  void queue(const Bytes& record);
  void updateAvailableShots();
  void updateDestinations();
  bool toHost() const { return destination() == kDestinationHost; }
  std::uint32_t folderFor(std::uint32_t shot);
  std::uint32_t addFolder(std::uint32_t handle, std::uint32_t parent, const std::string& name);
  PhotoSpec specFor(FileKind kind, const ShotOrder& order) const;
  void record(const PhotoSpec& spec, Bytes bytes);

  Settings _settings;
  Album _album;
  std::vector<CameraProperty> _properties;
  std::map<std::uint32_t, Entry> _cardObjects;
  std::map<std::uint32_t, Entry> _hostObjects;
  Bytes _events;
  std::uint32_t _shots;  // number of the latest one
  std::uint32_t _files = 0;
  std::uint64_t _cardUsed = 0;
  bool _card = true;
  bool _silent = false;
  bool _eventMode = false;
  bool _hostCapacity = false;
  std::size_t _busy = 0;
  std::optional<Operation> _busyOnly;
};

}  // namespace ambrel::simulator
