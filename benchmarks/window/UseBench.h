// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "support/Goals.h"

namespace ambrel::bench {

// What the application takes of the machine while it stands there. `folder` is for its files.
void measureUse(Goals& goals, const QString& folder);

}  // namespace ambrel::bench
