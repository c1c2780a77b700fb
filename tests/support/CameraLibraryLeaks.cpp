// SPDX-License-Identifier: Apache-2.0
// For programs that are built with the leak checker and use libgphoto2. The library unloads its drivers,
// after which the checker can no longer tell whose a block was: here libraries stay, and theirs is left out
// by name.
extern "C" int dlclose(void*) noexcept {
  return 0;
}

extern "C" const char*
__lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): the checker's name
  return "leak:libgphoto2\nleak:libltdl\nleak:libusb-1.0\nleak:/ptp2.so\nleak:/ptpip.so\nleak:/"
         "usb1.so\nleak:/libexif\n";
}

// The worker's output is a protocol: the checker adds no line of its own but a complaint.
extern "C" const char* __lsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "print_suppressions=0";
}
