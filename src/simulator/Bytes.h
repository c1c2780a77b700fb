// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace ambrel::simulator {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// Appends little-endian values, as PTP, PTP/IP and our EXIF blocks use them.
class ByteWriter {
 public:
  ByteWriter& u8(std::uint8_t value);
  ByteWriter& u16(std::uint16_t value);
  ByteWriter& u32(std::uint32_t value);
  ByteWriter& u64(std::uint64_t value);
  ByteWriter& raw(ByteView bytes);
  // The characters as they are, without an end.
  ByteWriter& chars(std::string_view text);
  // The characters and one NUL.
  ByteWriter& cString(std::string_view text);
  // A PTP string: the count of UTF-16 units with the closing NUL, then the units. ASCII only; an empty text
  // is the single count 0, and what exceeds 254 characters is left off.
  ByteWriter& ptpString(std::string_view ascii);
  // UTF-16 units with a closing NUL and no count, as PTP/IP names are sent. ASCII only.
  ByteWriter& utf16z(std::string_view ascii);
  // A PTP array: the count of items, then the items.
  ByteWriter& array16(std::span<const std::uint16_t> items);
  ByteWriter& array32(std::span<const std::uint32_t> items);

  void reserve(std::size_t bytes) { _bytes.reserve(bytes); }
  std::size_t size() const { return _bytes.size(); }
  const Bytes& bytes() const { return _bytes; }
  Bytes take() { return std::move(_bytes); }

 private:
  Bytes _bytes;
};

// Reads little-endian values from bytes that nobody vouches for: past the end every value is 0 and ok() stays
// false from then on.
class ByteReader {
 public:
  explicit ByteReader(ByteView bytes) : _rest(bytes) {}

  std::uint16_t u16();
  std::uint32_t u32();
  std::uint64_t u64();
  // All that has not been read yet.
  ByteView rest() const { return _rest; }
  bool ok() const { return _ok; }

 private:
  std::uint64_t number(std::size_t width);

  ByteView _rest;
  bool _ok = true;
};

}  // namespace ambrel::simulator
