// SPDX-License-Identifier: Apache-2.0
#include "simulator/PhotoMaker.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "simulator/Exif.h"
#include "simulator/Painting.h"
#include "simulator/Random.h"

namespace ambrel::simulator {

namespace {

constexpr int kThumbnailWidth = 160;
constexpr int kThumbnailHeight = 120;
constexpr std::time_t kFirstShot = 1'767'261'600;  // 2026-01-01 10:00:00

// A JPEG segment: marker, then a length that counts itself but not the marker.
constexpr std::size_t kSegmentOverhead = 4;
constexpr std::size_t kLargestSegment = 65'535 + 2;

void appendNoise(Bytes& out, std::size_t count, Random& random) {
  std::size_t at = out.size();
  out.resize(at + count);
  while (at < out.size()) {
    const std::uint64_t value = random.next();
    const std::size_t part = std::min(sizeof value, out.size() - at);
    std::memcpy(out.data() + at, &value, part);
    at += part;
  }
}

// APP15 segments of exactly `size` bytes altogether. Readers skip them by their length.
void appendPadding(Bytes& out, std::size_t size, Random& random) {
  while (size > 0) {
    std::size_t segment = std::min(size, kLargestSegment);
    // What is left must hold a segment of its own.
    if (size > segment && size - segment < kSegmentOverhead) segment -= kSegmentOverhead;
    const std::size_t length = segment - 2;
    out.insert(out.end(),
               {0xFF, 0xEF, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)});
    appendNoise(out, segment - kSegmentOverhead, random);
    size -= segment;
  }
}

// Where the segments after the first one begin: behind SOI and the EXIF segment.
std::size_t endOfFirstSegment(const Bytes& jpeg) {
  return 2 + 2 + (static_cast<std::size_t>(jpeg[4]) << 8 | jpeg[5]);
}

Random noiseOf(const PhotoSpec& spec) {
  return Random(~spec.seed ^ (static_cast<std::uint64_t>(spec.shot) << 20) ^
                static_cast<std::uint64_t>(spec.kind));
}

ExifFacts factsOf(const PhotoSpec& spec) {
  return {spec.shot, spec.width, spec.height, shot_time(spec.shot).exif};
}

Bytes plainJpeg(const PhotoSpec& spec) {
  return encode_jpeg(paint_shot(spec.seed, spec.shot, spec.width, spec.height),
                     encode_exif(factsOf(spec), make_thumbnail(spec)));
}

std::optional<Bytes> makeJpeg(const PhotoSpec& spec) {
  Bytes jpeg = plainJpeg(spec);
  if (spec.size == 0 || spec.size == jpeg.size()) return jpeg;
  if (spec.size < jpeg.size() + kSegmentOverhead) return std::nullopt;
  Random random = noiseOf(spec);
  const auto middle = jpeg.begin() + static_cast<std::ptrdiff_t>(endOfFirstSegment(jpeg));
  Bytes padded(jpeg.begin(), middle);
  padded.reserve(spec.size);
  appendPadding(padded, spec.size - jpeg.size(), random);
  padded.insert(padded.end(), middle, jpeg.end());
  return padded;
}

// An ISO base media box (ISO/IEC 14496-12): unlike all else here its numbers are big-endian.
class Box {
 public:
  explicit Box(std::string_view type) { _body.chars(type); }

  Box& be16(std::uint32_t value) {
    _body.u8(static_cast<std::uint8_t>(value >> 8)).u8(static_cast<std::uint8_t>(value));
    return *this;
  }
  Box& be32(std::uint32_t value) { return be16(value >> 16).be16(value); }
  Box& raw(ByteView bytes) {
    _body.raw(bytes);
    return *this;
  }
  Box& chars(std::string_view text) {
    _body.chars(text);
    return *this;
  }
  // What was written so far, without a size.
  const Bytes& content() const { return _body.bytes(); }
  // The whole box, its size in front.
  Bytes encode() const {
    return Box("").be32(static_cast<std::uint32_t>(_body.size() + 4)).raw(content()).content();
  }

 private:
  ByteWriter _body;
};

constexpr std::uint8_t kCanonUuid[16] = {0x85, 0xC0, 0xB6, 0x87, 0x82, 0x0F, 0x11, 0xE0,
                                         0x81, 0x11, 0xF4, 0xCE, 0x46, 0x2B, 0x6A, 0x48};
constexpr std::uint8_t kPreviewUuid[16] = {0xEA, 0xF4, 0x2B, 0x5E, 0x1C, 0x98, 0x4B, 0x88,
                                           0xB9, 0xFB, 0xB7, 0xDC, 0x40, 0x6E, 0x4D, 0x16};
constexpr std::size_t kBoxHeader = 8;

// The boxes of a CR3 file that say what it is and show a preview; the sensor data is noise.
std::optional<Bytes> makeRaw(const PhotoSpec& spec) {
  const Bytes thumbnail = make_thumbnail(spec);
  const Bytes preview = plainJpeg(spec);
  const Bytes camera = Box("uuid")
                           .raw(kCanonUuid)
                           .raw(Box("CNCV").chars("CanonCR3_001/00.11.00/00.00.00").encode())
                           .raw(Box("CMT1").raw(encode_exif(factsOf(spec), {})).encode())
                           .raw(Box("THMB")
                                    .be32(0)
                                    .be16(kThumbnailWidth)
                                    .be16(kThumbnailHeight)
                                    .be32(static_cast<std::uint32_t>(thumbnail.size()))
                                    .be32(0)
                                    .raw(thumbnail)
                                    .encode())
                           .encode();
  const Bytes previewBox = Box("PRVW")
                               .be32(0)
                               .be16(1)
                               .be16(static_cast<std::uint32_t>(spec.width))
                               .be16(static_cast<std::uint32_t>(spec.height))
                               .be16(1)
                               .be32(static_cast<std::uint32_t>(preview.size()))
                               .raw(preview)
                               .encode();
  ByteWriter file;
  file.raw(Box("ftyp").chars("crx ").be32(1).chars("crx isom").encode());
  file.raw(Box("moov").raw(camera).encode());
  file.raw(Box("uuid").raw(kPreviewUuid).be32(0).be32(1).raw(previewBox).encode());

  const std::size_t smallest = file.size() + kBoxHeader;
  const std::size_t size = spec.size == 0 ? std::max(smallest, kDefaultRawBytes) : spec.size;
  if (size < smallest) return std::nullopt;
  const Bytes mdat = Box("").be32(static_cast<std::uint32_t>(size - file.size())).chars("mdat").content();
  Bytes raw = file.raw(mdat).take();
  raw.reserve(size);
  Random random = noiseOf(spec);
  appendNoise(raw, size - raw.size(), random);
  return raw;
}

}  // namespace

ShotTime shot_time(std::uint32_t shot) {
  const std::time_t seconds = kFirstShot + static_cast<std::time_t>(shot);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char exif[32];
  char ptp[32];
  std::strftime(exif, sizeof exif, "%Y:%m:%d %H:%M:%S", &parts);
  std::strftime(ptp, sizeof ptp, "%Y%m%dT%H%M%S", &parts);
  return {exif, ptp, static_cast<std::uint32_t>(seconds)};
}

Bytes make_thumbnail(const PhotoSpec& spec) {
  return encode_jpeg(paint_shot(spec.seed, spec.shot, kThumbnailWidth, kThumbnailHeight), {});
}

std::optional<Bytes> make_photo(const PhotoSpec& spec) {
  return spec.kind == FileKind::jpeg ? makeJpeg(spec) : makeRaw(spec);
}

}  // namespace ambrel::simulator
