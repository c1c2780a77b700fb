// SPDX-License-Identifier: Apache-2.0
// Build step: renders an SVG drawing into a square picture, in the format of the picture's extension.
//   ambrel_render_image DRAWING.svg PICTURE PIXELS
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: ambrel_render_image DRAWING.svg PICTURE PIXELS\n", stderr);
    return 2;
  }
  QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
  const int pixels = QString::fromLocal8Bit(argv[3]).toInt();
  if (!drawing.isValid() || pixels <= 0) return 1;
  QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  drawing.render(&painter);
  painter.end();
  return picture.save(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
}
