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

// For ThreadSanitizer builds. The toolkit's library is not instrumented: how a QThread ends looks like a race
// there.
extern "C" const char* __tsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "race:QWaitCondition\nrace:QCoreApplicationPrivate\nrace:QMetaObject::invokeMethodImpl\n";
}
