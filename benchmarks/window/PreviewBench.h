// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

#include "support/Goals.h"

namespace ambrel::bench {

// A photo of that many pixels in the folder, as large a file as a camera's; its path.
QString writePhoto(const QString& folder, QSize size);
QByteArray contents(const QString& path);
// Photos to the size of the view, and the event loop meanwhile. `folder` is for the photos.
void measurePreview(Goals& goals, const QString& folder);

}  // namespace ambrel::bench
