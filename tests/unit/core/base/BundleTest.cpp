// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/base/Bundle.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

class BundleTest : public ::testing::Test {
 protected:
  void write(const QString& path, const QByteArray& bytes) {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  QString versionIn(const QByteArray& propertyList) {
    write(root + "/Contents/Info.plist", propertyList);
    return Bundle(root).displayVersion();
  }

  QTemporaryDir folder;
  QString root = folder.path();
};

TEST_F(BundleTest, StandsAroundItsPrograms) {
  EXPECT_EQ(Bundle::aroundProgram("/opt/Ambrel.app/Contents/MacOS").root(), "/opt/Ambrel.app");
  EXPECT_EQ(Bundle::aroundProgram("/opt/Ambrel.app/Contents/MacOS/").root(), "/opt/Ambrel.app");
}

TEST_F(BundleTest, FindsProgramsBesideEachOther) {
  EXPECT_EQ(Bundle("/opt/A").bundleMacOSPath("helper"), "/opt/A/Contents/MacOS/helper");
}

TEST_F(BundleTest, FindsAResourceThatIsThereOnly) {
  write(root + "/Contents/Resources/icon.png", "x");
  EXPECT_EQ(Bundle(root).resourcePath("icon.png"), root + "/Contents/Resources/icon.png");
  EXPECT_EQ(Bundle(root).resourcePath("icon.icns"), "");
}

TEST_F(BundleTest, ReadsItsVersion) {
  EXPECT_EQ(versionIn(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <key>CFBundleName</key><string>Ambrel</string>
  <key>CFBundleShortVersionString</key>
  <string>8.12</string>
</dict></plist>)"),
            "8.12");
}

TEST_F(BundleTest, HasAVersionWithoutAPropertyList) {
  EXPECT_EQ(Bundle(root).displayVersion(), "7.04");
}

TEST_F(BundleTest, HasAVersionWhateverThePropertyListHolds) {
  const QByteArray key = "<key>CFBundleShortVersionString</key>";
  for (const QByteArray& broken :
       {QByteArray(), QByteArray("bplist00\x01\x02", 10), QByteArray("<plist><dict>"),
        "<plist><dict>" + key + "</dict></plist>", "<plist><dict>" + key + "<string></string></dict></plist>",
        "<plist><dict>" + key + "<true/><key>Other</key><string>1</string></dict></plist>",
        "<plist><dict>" + key + "<string><b>1</b></string></dict></plist>"}) {
    EXPECT_EQ(versionIn(broken), "7.04") << broken.toStdString();
  }
}

}  // namespace
}  // namespace ambrel
