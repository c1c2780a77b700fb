// SPDX-License-Identifier: Apache-2.0
// For test programs that paint text: the font library keeps what it has found until the process ends.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig\n";
}
