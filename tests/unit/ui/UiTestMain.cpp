// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "ui/Appearance.h"

// The main of the window's tests: an application that paints into memory.
int main(int argc, char** argv) {
  qputenv("LC_ALL", "C.UTF-8");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The toolkit remembers how its choosers looked last; the developer's own are no business of the tests.
  const QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  ambrel::ui::applyApplicationAppearance(application);
  return RUN_ALL_TESTS();
}
