// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "support/Goals.h"

namespace ambrel::bench {

// Photos to the size of the view, and the event loop meanwhile. `folder` is for the photos.
void measurePreview(Goals& goals, const QString& folder);

}  // namespace ambrel::bench
