// SPDX-License-Identifier: Apache-2.0
// For test programs that paint text, make HEIC photos or open real windows: the font library keeps what it
// has found until the process ends, and so do the encoder and the desktop's message bus.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig\nleak:libx265\nleak:libdbus-1\n";
}
