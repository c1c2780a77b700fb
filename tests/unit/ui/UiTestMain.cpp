// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "ui/Appearance.h"

namespace {

// A screen whose desktop asks for text of this size; 96 is the usual one.
void useTextDpi(const QByteArray& dpi, const QTemporaryDir& folder) {
  QFile screens(folder.filePath(QStringLiteral("screens.json")));
  if (!screens.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(screens.fileName()));
  screens.write(R"({"screens": [{"name": "test", "x": 0, "y": 0, "width": 3000, "height": 2000,
                                 "logicalBaseDpi": 96, "dpr": 1, "logicalDpi": )" +
                dpi + "}]}");
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
}

}  // namespace

// The main of the window's tests: an application that paints into memory.
int main(int argc, char** argv) {
  qputenv("LC_ALL", "C.UTF-8");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The toolkit remembers how its choosers looked last; the developer's own are no business of the tests.
  const QTemporaryDir settings;
  if (qEnvironmentVariableIsSet("AMBREL_TEXT_DPI")) useTextDpi(qgetenv("AMBREL_TEXT_DPI"), settings);
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  ambrel::ui::applyApplicationAppearance(application);
  return RUN_ALL_TESTS();
}
