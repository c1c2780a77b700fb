// SPDX-License-Identifier: Apache-2.0
// For test programs that paint text, or make HEIC photos: the font library keeps what it has found until the
// process ends, and so does the encoder.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig\nleak:libx265\n";
}
