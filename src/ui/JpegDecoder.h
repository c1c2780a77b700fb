// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QImage>

#include "core/base/Result.h"

namespace ambrel::ui {

// The JPEG in `bytes`, upright and small enough for `fit`, in pixels. It is decoded at the smallest fraction
// of its size that is not smaller than that, which takes a fraction of the time and of the memory. A picture
// that is damaged anywhere is a failure.
Result<QImage> decodeJpeg(const QByteArray& bytes, QSize fit);

}  // namespace ambrel::ui
