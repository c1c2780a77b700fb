// SPDX-License-Identifier: Apache-2.0

// What a sanitizer asks a program for at its start. The camera library's drivers leave some small blocks
// behind when they are unloaded; their own frames have no name by then, so the callers above them are what
// the leak is known by.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libgphoto2\n";
}

// The quick way of taking a stack stops at a driver.
extern "C" const char* __asan_default_options() {
  return "fast_unwind_on_malloc=0";
}
