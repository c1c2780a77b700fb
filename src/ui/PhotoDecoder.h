// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QString>

#include "core/base/Result.h"

namespace ambrel::ui {

// The photo in a file, upright and small enough for `fit`, in pixels. Only the extension says what kind of
// file it is: a camera names its files, and what calls itself a photo must not be taken for something else.
// A file that is missing, damaged, too large or no photo is a failure. Safe on any thread.
Result<QImage> decodePhoto(const QString& path, QSize fit);

// Lets the toolkit decode pictures as large as cameras take. Before the first decodePhoto.
void allowLargePhotos();

}  // namespace ambrel::ui
