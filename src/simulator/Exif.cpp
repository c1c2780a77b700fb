// SPDX-License-Identifier: Apache-2.0
#include "simulator/Exif.h"

#include <algorithm>

#include "simulator/CameraIdentity.h"

namespace ambrel::simulator {

namespace {

constexpr std::uint16_t kAscii = 2;
constexpr std::uint16_t kShort = 3;
constexpr std::uint16_t kLong = 4;
constexpr std::uint16_t kRational = 5;
constexpr std::uint16_t kUndefined = 7;
constexpr std::size_t kInlineBytes = 4;
constexpr std::size_t kTiffHeaderBytes = 8;

constexpr std::uint16_t kExifPointer = 0x8769;
constexpr std::uint16_t kThumbnailOffset = 0x0201;
constexpr std::uint16_t kThumbnailLength = 0x0202;

std::size_t evenSize(const Bytes& value) {
  return value.size() + value.size() % 2;
}

std::uint32_t offsetOf(std::size_t offset) {
  return static_cast<std::uint32_t>(offset);
}

// 32 hexadecimal digits, as the tag demands; ours end with the number of the shot, in decimal.
std::string uniqueId(std::uint32_t shot) {
  const std::string number = std::to_string(shot);
  return std::string(32 - number.size(), '0') + number;
}

Ifd cameraDirectory(const ExifFacts& facts, std::size_t exposureOffset) {
  Ifd ifd;
  ifd.ascii(0x010F, "Canon");
  ifd.ascii(0x0110, kCameraModel);
  ifd.u16(0x0112, 1);
  ifd.rational(0x011A, 72, 1);
  ifd.rational(0x011B, 72, 1);
  ifd.u16(0x0128, 2);
  ifd.ascii(0x0132, facts.date);
  ifd.u32(kExifPointer, offsetOf(exposureOffset));
  return ifd;
}

Ifd exposureDirectory(const ExifFacts& facts) {
  Ifd ifd;
  ifd.rational(0x829A, 1, 125);
  ifd.rational(0x829D, 56, 10);
  ifd.u16(0x8822, 1);
  ifd.u16(0x8827, 100);
  ifd.undefined(0x9000, "0231");
  ifd.ascii(0x9003, facts.date);
  ifd.ascii(0x9004, facts.date);
  ifd.undefined(0x9101, std::string_view("\1\2\3\0", 4));
  ifd.rational(0x920A, 50, 1);
  ifd.undefined(0xA000, "0100");
  ifd.u16(0xA001, 1);
  ifd.u32(0xA002, static_cast<std::uint32_t>(facts.width));
  ifd.u32(0xA003, static_cast<std::uint32_t>(facts.height));
  ifd.ascii(0xA420, uniqueId(facts.shot));
  ifd.ascii(0xA431, kCameraSerial);
  ifd.ascii(0xA434, kCameraLens);
  return ifd;
}

Ifd thumbnailDirectory(std::size_t offset, std::size_t length) {
  Ifd ifd;
  ifd.u16(0x0103, 6);
  ifd.rational(0x011A, 72, 1);
  ifd.rational(0x011B, 72, 1);
  ifd.u16(0x0128, 2);
  ifd.u32(kThumbnailOffset, offsetOf(offset));
  ifd.u32(kThumbnailLength, offsetOf(length));
  return ifd;
}

}  // namespace

void Ifd::add(std::uint16_t tag, std::uint16_t type, std::uint32_t count, Bytes value) {
  _entries.push_back({tag, type, count, std::move(value)});
  std::sort(_entries.begin(), _entries.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
}

void Ifd::ascii(std::uint16_t tag, std::string_view text) {
  add(tag, kAscii, static_cast<std::uint32_t>(text.size() + 1), ByteWriter().cString(text).take());
}

void Ifd::u16(std::uint16_t tag, std::uint16_t value) {
  add(tag, kShort, 1, ByteWriter().u16(value).take());
}

void Ifd::u32(std::uint16_t tag, std::uint32_t value) {
  add(tag, kLong, 1, ByteWriter().u32(value).take());
}

void Ifd::rational(std::uint16_t tag, std::uint32_t numerator, std::uint32_t denominator) {
  add(tag, kRational, 1, ByteWriter().u32(numerator).u32(denominator).take());
}

void Ifd::undefined(std::uint16_t tag, std::string_view bytes) {
  add(tag, kUndefined, static_cast<std::uint32_t>(bytes.size()), ByteWriter().chars(bytes).take());
}

std::size_t Ifd::size() const {
  std::size_t size = 2 + 12 * _entries.size() + 4;
  for (const Entry& entry : _entries) {
    if (entry.value.size() > kInlineBytes) size += evenSize(entry.value);
  }
  return size;
}

Bytes Ifd::encode(std::size_t offset, std::size_t next) const {
  ByteWriter directory;
  ByteWriter longValues;
  const std::size_t valuesAt = offset + 2 + 12 * _entries.size() + 4;
  directory.u16(static_cast<std::uint16_t>(_entries.size()));
  for (const Entry& entry : _entries) {
    Bytes value = entry.value;
    directory.u16(entry.tag).u16(entry.type).u32(entry.count);
    if (value.size() > kInlineBytes) {
      directory.u32(offsetOf(valuesAt + longValues.size()));
      value.resize(evenSize(value));
      longValues.raw(value);
    } else {
      value.resize(kInlineBytes);
      directory.raw(value);
    }
  }
  directory.u32(offsetOf(next)).raw(longValues.bytes());
  return directory.take();
}

Bytes encode_exif(const ExifFacts& facts, ByteView thumbnail) {
  // The sizes do not depend on the pointers, so a first round with zeros tells where everything stands.
  const Ifd exposure = exposureDirectory(facts);
  const std::size_t exposureAt = kTiffHeaderBytes + cameraDirectory(facts, 0).size();
  const std::size_t thumbnailIfdAt = exposureAt + exposure.size();
  const std::size_t thumbnailAt = thumbnailIfdAt + thumbnailDirectory(0, 0).size();

  ByteWriter block;
  block.chars("II").u16(42).u32(kTiffHeaderBytes);
  block.raw(
      cameraDirectory(facts, exposureAt).encode(kTiffHeaderBytes, thumbnail.empty() ? 0 : thumbnailIfdAt));
  block.raw(exposure.encode(exposureAt, 0));
  if (!thumbnail.empty()) {
    block.raw(thumbnailDirectory(thumbnailAt, thumbnail.size()).encode(thumbnailIfdAt, 0));
    block.raw(thumbnail);
  }
  return block.take();
}

}  // namespace ambrel::simulator
