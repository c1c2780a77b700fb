// SPDX-License-Identifier: Apache-2.0
#include "simulator/Bytes.h"

#include <algorithm>

namespace ambrel::simulator {

namespace {

constexpr std::size_t kLongestPtpString = 254;

void append(Bytes& bytes, std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

}  // namespace

ByteWriter& ByteWriter::u8(std::uint8_t value) {
  append(_bytes, value, 1);
  return *this;
}

ByteWriter& ByteWriter::u16(std::uint16_t value) {
  append(_bytes, value, 2);
  return *this;
}

ByteWriter& ByteWriter::u32(std::uint32_t value) {
  append(_bytes, value, 4);
  return *this;
}

ByteWriter& ByteWriter::u64(std::uint64_t value) {
  append(_bytes, value, 8);
  return *this;
}

ByteWriter& ByteWriter::raw(ByteView bytes) {
  _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
  return *this;
}

ByteWriter& ByteWriter::chars(std::string_view text) {
  _bytes.insert(_bytes.end(), text.begin(), text.end());
  return *this;
}

ByteWriter& ByteWriter::cString(std::string_view text) {
  return chars(text).u8(0);
}

ByteWriter& ByteWriter::ptpString(std::string_view ascii) {
  if (ascii.empty()) return u8(0);
  ascii = ascii.substr(0, kLongestPtpString);
  return u8(static_cast<std::uint8_t>(ascii.size() + 1)).utf16z(ascii);
}

ByteWriter& ByteWriter::utf16z(std::string_view ascii) {
  for (const char c : ascii) {
    u16(static_cast<std::uint8_t>(c));
  }
  return u16(0);
}

ByteWriter& ByteWriter::array16(std::span<const std::uint16_t> items) {
  u32(static_cast<std::uint32_t>(items.size()));
  for (const std::uint16_t item : items) {
    u16(item);
  }
  return *this;
}

ByteWriter& ByteWriter::array32(std::span<const std::uint32_t> items) {
  u32(static_cast<std::uint32_t>(items.size()));
  for (const std::uint32_t item : items) {
    u32(item);
  }
  return *this;
}

std::uint64_t ByteReader::number(std::size_t width) {
  if (_rest.size() < width) {
    _ok = false;
    _rest = {};
    return 0;
  }
  std::uint64_t value = 0;
  for (std::size_t i = width; i > 0; --i) {
    value = value << 8 | _rest[i - 1];
  }
  _rest = _rest.subspan(width);
  return value;
}

std::uint16_t ByteReader::u16() {
  return static_cast<std::uint16_t>(number(2));
}

std::uint32_t ByteReader::u32() {
  return static_cast<std::uint32_t>(number(4));
}

std::uint64_t ByteReader::u64() {
  return number(8);
}

}  // namespace ambrel::simulator
