// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "support/Goals.h"

namespace ambrel::bench {

// The event loop while many photos come at once. `folder` is for the files.
void measureBursts(Goals& goals, const QString& folder);

}  // namespace ambrel::bench
