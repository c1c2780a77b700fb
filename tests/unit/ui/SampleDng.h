// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QtEndian>
#include <vector>

namespace ambrel::ui {

// A small raw file in Adobe's DNG form: a first directory with the camera's JPEG preview, and below it the
// raw picture of 32 x 32 pixels.
class SampleDng {
 public:
  // `orientation` as EXIF counts it, 1 upright.
  SampleDng(const QByteArray& jpeg, quint16 width, quint16 height, quint16 orientation = 1) : _jpeg(jpeg) {
    constexpr quint32 kFirst = 8;
    constexpr quint32 kFirstEntries = 15;
    constexpr quint32 kSecondEntries = 12;
    const quint32 second = kFirst + 2 + kFirstEntries * 12 + 4;
    const quint32 values = second + 2 + kSecondEntries * 12 + 4;
    const quint32 jpegAt = values + 64;
    const quint32 rawAt = jpegAt + static_cast<quint32>(jpeg.size());
    _bytes = QByteArray::fromHex("49492a00");
    add32(kFirst);
    directory({{254, 4, 1, 1},
               {256, 4, 1, width},
               {257, 4, 1, height},
               {258, 3, 1, 8},
               {259, 3, 1, 7},
               {262, 3, 1, 6},
               {271, 2, 8, values},
               {272, 2, 8, values + 8},
               {273, 4, 1, jpegAt},
               {274, 3, 1, orientation},
               {277, 3, 1, 3},
               {278, 4, 1, height},
               {279, 4, 1, static_cast<quint32>(jpeg.size())},
               {330, 4, 1, second},
               {50706, 1, 4, 0x00000401}});
    directory({{254, 4, 1, 0},
               {256, 4, 1, 32},
               {257, 4, 1, 32},
               {258, 3, 1, 16},
               {259, 3, 1, 1},
               {262, 3, 1, 32803},
               {273, 4, 1, rawAt},
               {277, 3, 1, 1},
               {278, 4, 1, 32},
               {279, 4, 1, 32 * 32 * 2},
               {33421, 3, 2, 0x00020002},
               {33422, 1, 4, 0x02010100}});
    QByteArray texts("Ambrel\0\0Sample\0\0", 16);
    _bytes += texts.leftJustified(64, '\0') + jpeg + QByteArray(32 * 32 * 2, '\x20');
  }

  const QByteArray& bytes() const { return _bytes; }
  // The same with a first directory that names itself as the next.
  QByteArray endless() const {
    QByteArray bytes = _bytes;
    qToLittleEndian<quint32>(8, bytes.data() + 8 + 2 + 15 * 12);
    return bytes;
  }

 private:
  struct Entry {
    quint16 tag;
    quint16 type;
    quint32 count;
    quint32 value;
  };
  void add16(quint16 value) {
    _bytes.append(static_cast<char>(value & 0xff)).append(static_cast<char>(value >> 8));
  }
  void add32(quint32 value) {
    add16(static_cast<quint16>(value & 0xffff));
    add16(static_cast<quint16>(value >> 16));
  }
  void directory(const std::vector<Entry>& entries) {
    add16(static_cast<quint16>(entries.size()));
    for (const Entry& entry : entries) {
      add16(entry.tag);
      add16(entry.type);
      add32(entry.count);
      add32(entry.value);
    }
    add32(0);
  }

  QByteArray _jpeg;
  QByteArray _bytes;
};

}  // namespace ambrel::ui
