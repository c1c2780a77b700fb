// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <vector>

namespace ambrel {

// Process ids of this user's processes whose executable's file is named exactly `fileName`, also after the
// file was deleted or replaced. Empty when the system does not tell.
std::vector<qint64> processesRunning(const QString& fileName);

}  // namespace ambrel
