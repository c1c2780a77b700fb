// SPDX-License-Identifier: Apache-2.0
#include <fontconfig/fontconfig.h>
#include <thread>

#include "ui/FontsAhead.h"

namespace ambrel::ui {

// The toolkit asks for the same, and waits where it is not done yet.
void findFontsAhead() {
  std::thread([] { FcInit(); }).detach();
}

}  // namespace ambrel::ui
