// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QString>

#include "core/base/Result.h"

namespace ambrel::ui {

// The main picture of a HEIC file, upright and small enough for `fit`, in pixels.
Result<QImage> decodeHeic(const QString& path, QSize fit);

}  // namespace ambrel::ui
