// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QImageIOHandler>

namespace ambrel::ui {

// What decoding one photo may take of memory, in bytes; a photo of 128 megapixels.
inline constexpr qint64 kPhotoMemoryLimit = 512LL * 1024 * 1024;

// Whether a picture of that many pixels, four bytes each, can be decoded within the limit.
bool fitsIntoMemory(QSize pixels);

// `size` shrunk, never enlarged, to lie within `fit`, with its proportions; at least 1 x 1.
QSize shrunkInto(QSize size, QSize fit);

// Turned and mirrored as the camera was held.
QImage upright(const QImage& image, QImageIOHandler::Transformations transformation);
// Whether upright() exchanges width and height.
bool liesOnItsSide(QImageIOHandler::Transformations transformation);

}  // namespace ambrel::ui
