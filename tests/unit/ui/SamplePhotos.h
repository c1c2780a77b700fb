// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageWriter>

namespace ambrel::ui {

// Left half red, right half blue: tells whether a decoded photo is the right way round.
inline QImage redAndBlue(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::blue);
  for (int y = 0; y < size.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    std::fill(line, line + size.width() / 2, qRgb(255, 0, 0));
  }
  return image;
}

inline QByteArray encoded(const QImage& image, const char* format,
                          QImageIOHandler::Transformation held = QImageIOHandler::TransformationNone) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, format);
  writer.setTransformation(held);
  return writer.write(image) ? bytes : QByteArray();
}

inline bool isRed(const QImage& image, double x, double y) {
  const QColor color =
      image.pixelColor(static_cast<int>(x * image.width()), static_cast<int>(y * image.height()));
  return color.red() > 180 && color.blue() < 80;
}

inline bool isBlue(const QImage& image, double x, double y) {
  const QColor color =
      image.pixelColor(static_cast<int>(x * image.width()), static_cast<int>(y * image.height()));
  return color.blue() > 180 && color.red() < 80;
}

// With a block of EXIF whose directories refer to each other for ever.
inline QByteArray withEndlessExif(const QByteArray& jpeg) {
  const QByteArray exif = QByteArray::fromHex(
      "457869660000"      // "Exif"
      "49492a0008000000"  // little endian, first directory at 8
      "000008000000");    // no entries, the next directory at 8
  const int length = static_cast<int>(exif.size()) + 2;
  QByteArray segment("\xff\xe1", 2);
  segment += static_cast<char>(length >> 8);
  segment += static_cast<char>(length & 0xff);
  return jpeg.left(2) + segment + exif + jpeg.mid(2);
}

// With other dimensions in the frame header than those of the picture.
inline QByteArray withDimensions(QByteArray jpeg, quint16 width, quint16 height) {
  const qsizetype frame = jpeg.indexOf(QByteArray("\xff\xc0", 2));
  const quint16 values[] = {height, width};
  for (int i = 0; i < 2; ++i) {
    jpeg[frame + 5 + 2 * i] = static_cast<char>(values[i] >> 8);
    jpeg[frame + 6 + 2 * i] = static_cast<char>(values[i] & 0xff);
  }
  return jpeg;
}

}  // namespace ambrel::ui
