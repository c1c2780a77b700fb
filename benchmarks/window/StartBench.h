// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "support/Goals.h"

namespace ambrel::bench {

inline constexpr int kNamesInWindow = 100'000;

// A list of that many people with notes, counts and markers, stored below `home`.
void storePeople(const QString& home);
// Programs started in turns until their windows are painted. `folder` is for their files.
void measureStarts(Goals& goals, const QString& folder);

}  // namespace ambrel::bench
