// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QString>

#include "core/base/Result.h"

namespace ambrel::ui {

// The preview that the camera has put into a raw file, upright and small enough for `fit`, in pixels. The raw
// picture itself is never developed.
Result<QImage> decodeRawPreview(const QString& path, QSize fit);

}  // namespace ambrel::ui
