// SPDX-License-Identifier: Apache-2.0
#include "ui/ImageLoader.h"

namespace ambrel::ui {

ImageLoader::ImageLoader(Decode decode) : _decode(std::move(decode)) {}

void ImageLoader::load(const QString& path, QSize fit) {
  const quint64 turn = ++*_newest;
  _thread.add([this, turn, path, fit, decode = _decode, newest = _newest](SerialThread::Line& line) {
    if (turn != *newest) return;
    const Result<QImage> image = decode(path, fit);
    // The answer is given on the main thread, while this object lives, or not at all.
    line.tell([this, path, image] {
      if (image) {
        Q_EMIT loaded(path, image.value());
      } else {
        Q_EMIT failed(path, image.error());
      }
    });
  });
}

}  // namespace ambrel::ui
