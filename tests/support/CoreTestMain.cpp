// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <gtest/gtest.h>

// The main of every test program of the core: an application without a screen, and no reach for the real
// user's settings.
int main(int argc, char** argv) {
  qputenv("LC_ALL", "C.UTF-8");
  ::testing::InitGoogleTest(&argc, argv);
  QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}

// For ThreadSanitizer builds. The toolkit's libraries are not instrumented: the locks and counters by which
// they share memory between threads are not seen, so what they allocate, copy and free says nothing about a
// race. Their waits and wake-ups still count.
extern "C" const char* __tsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "called_from_lib:libQt6Core.so\ncalled_from_lib:libQt6Network.so\n";
}
