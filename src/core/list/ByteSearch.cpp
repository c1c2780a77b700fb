// SPDX-License-Identifier: Apache-2.0
#include "core/list/ByteSearch.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// A needle can only stand where its first and its last byte do, at their distance from each other. That is
// asked for a whole block of places at once, in plain loops which compilers turn into vector instructions;
// the few places left are compared in full.
namespace ambrel {

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kWord = sizeof(std::uint64_t);
using Places = std::array<std::uint64_t, kBlock / kWord>;  // a byte per place, all ones where it may be

static_assert(std::endian::native == std::endian::little, "the lowest byte of a word is the first place");

Places possiblePlaces(const char* first, const char* last, char wantedFirst, char wantedLast) {
  std::array<unsigned char, kBlock> marks;
  for (std::size_t i = 0; i < kBlock; ++i)
    marks[i] = (first[i] == wantedFirst) & (last[i] == wantedLast) ? 0xFF : 0;
  Places places;
  static_assert(sizeof places == sizeof marks);
  std::memcpy(places.data(), marks.data(), sizeof marks);
  return places;
}

// The first place of a block at which the needle stands, or kBlock.
std::size_t findInBlock(const char* block, std::string_view needle) {
  const Places places = possiblePlaces(block, block + needle.size() - 1, needle.front(), needle.back());
  for (std::size_t word = 0; word < places.size(); ++word) {
    for (std::uint64_t left = places[word]; left != 0;) {
      const auto byte = static_cast<unsigned>(std::countr_zero(left)) / 8;
      const std::size_t place = word * kWord + byte;
      if (std::memcmp(block + place, needle.data(), needle.size()) == 0) return place;
      left &= ~(std::uint64_t{0xFF} << (byte * 8));
    }
  }
  return kBlock;
}

}  // namespace

std::size_t find_bytes(std::string_view bytes, std::string_view needle, std::size_t from) {
  if (needle.empty()) return bytes.find(needle, from);
  for (; from + kBlock + needle.size() <= bytes.size(); from += kBlock) {
    const std::size_t place = findInBlock(bytes.data() + from, needle);
    if (place != kBlock) return from + place;
  }
  return bytes.find(needle, from);
}

}  // namespace ambrel
