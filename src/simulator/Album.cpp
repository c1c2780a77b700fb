// SPDX-License-Identifier: Apache-2.0
#include "simulator/Album.h"

#include <algorithm>
#include <utility>

#include "simulator/Sha256.h"

namespace ambrel::simulator {

std::size_t Album::add(const PhotoSpec& spec, std::string name, Place place, Bytes bytes) {
  const std::size_t index = _photos.size();
  _photos.push_back({spec, std::move(name), bytes.size(), sha256_hex(bytes), place});
  remember(index, std::move(bytes));
  return index;
}

std::shared_ptr<const Bytes> Album::bytes(std::size_t index) {
  const auto found =
      std::find_if(_cache.begin(), _cache.end(), [&](const Cached& cached) { return cached.index == index; });
  if (found == _cache.end()) return remember(index, make_photo(_photos[index].spec).value());
  _cache.splice(_cache.begin(), _cache, found);
  return found->bytes;
}

std::shared_ptr<const Bytes> Album::remember(std::size_t index, Bytes bytes) {
  auto shared = std::make_shared<const Bytes>(std::move(bytes));
  _cachedBytes += shared->size();
  _cache.push_front({index, shared});
  while (_cachedBytes > _largestCache && _cache.size() > 1) {
    _cachedBytes -= _cache.back().bytes->size();
    _cache.pop_back();
  }
  return shared;
}

}  // namespace ambrel::simulator
