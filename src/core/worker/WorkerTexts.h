// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// The worker's progress text in the operator's words; an unknown text stays as it is.
QString friendlyStatusForWorker(const QString& text);

}  // namespace ambrel
