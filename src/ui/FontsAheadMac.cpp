// SPDX-License-Identifier: Apache-2.0
#include "ui/FontsAhead.h"

namespace ambrel::ui {

// The system has them ready.
void findFontsAhead() {}

}  // namespace ambrel::ui
