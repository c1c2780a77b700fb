// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "simulator/PhotoMaker.h"

namespace ambrel::simulator {

// Where a photo was recorded: on the camera's card or in the memory that a host empties.
enum class Place { card, host };

struct TakenPhoto {
  PhotoSpec spec;
  std::string name;
  std::size_t size = 0;
  std::string sha256;
  Place place = Place::card;
  std::size_t asked = 0;  // how often a host asked for the last byte
  bool deleted = false;   // by a host's order
};

// Every photo that was ever taken, in order. The bytes are made again when they are asked for, but for the
// latest ones, so that a camera of ten thousand photos costs little memory.
class Album {
 public:
  explicit Album(std::size_t largestCache = 128 << 20) : _largestCache(largestCache) {}

  // Returns the photo's place in photos().
  std::size_t add(const PhotoSpec& spec, std::string name, Place place, Bytes bytes);
  std::shared_ptr<const Bytes> bytes(std::size_t index);

  const std::vector<TakenPhoto>& photos() const { return _photos; }
  TakenPhoto& photo(std::size_t index) { return _photos[index]; }

 private:
  struct Cached {
    std::size_t index;
    std::shared_ptr<const Bytes> bytes;
  };
  std::shared_ptr<const Bytes> remember(std::size_t index, Bytes bytes);

  std::vector<TakenPhoto> _photos;
  std::list<Cached> _cache;  // latest first
  std::size_t _cachedBytes = 0;
  std::size_t _largestCache;
};

}  // namespace ambrel::simulator
