// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/platform/FileManager.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

// The desktop's programs are scripts that write down how they were called.
class FileManagerTest : public ::testing::Test {
 protected:
  FileManagerTest() {
    qputenv("PATH", folder.path().toLocal8Bit() + ":" + path);
    makeProgram("xdg-open", 0);
  }
  ~FileManagerTest() override { qputenv("PATH", path); }

  void makeProgram(const QString& name, int exitCode) {
    QFile script(folder.filePath(name));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(
        QStringLiteral(
            "#!/bin/sh\nprintf '%%s\\n' \"%1\" \"$@\" > \"$0.tmp\"\nmv \"$0.tmp\" \"$0.calls\"\nexit %2\n")
            .arg(name)
            .arg(exitCode)
            .replace("%%", "%")
            .toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }
  QStringList callOf(const QString& name) const {
    QFile calls(folder.filePath(name + ".calls"));
    if (!calls.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(calls.readAll()).split('\n', Qt::SkipEmptyParts);
  }
  bool wasCalled(const QString& name) const { return !callOf(name).isEmpty(); }

  QByteArray path = qgetenv("PATH");
  QTemporaryDir folder;
  FileManager fileManager;
  Heartbeat beats;  // a detached program sends no event: what it writes is looked for at every beat
};

TEST_F(FileManagerTest, OpensAFolderWithTheDesktopsOpener) {
  fileManager.openFolder("/Photos/Ann \"A\"");
  ASSERT_TRUE(runEventsUntil([this] { return wasCalled("xdg-open"); }));
  EXPECT_EQ(callOf("xdg-open"), (QStringList{"xdg-open", "/Photos/Ann \"A\""}));
}

TEST_F(FileManagerTest, AsksTheFileManagerToShowAFile) {
  makeProgram("dbus-send", 0);
  fileManager.reveal("/Photos/Ann, B/a b.jpg");
  ASSERT_TRUE(runEventsUntil([this] { return wasCalled("dbus-send"); }));
  EXPECT_TRUE(callOf("dbus-send").contains("array:string:file:///Photos/Ann%2C%20B/a%20b.jpg"));
  EXPECT_TRUE(callOf("dbus-send").contains("org.freedesktop.FileManager1.ShowItems"));
  ASSERT_TRUE(runEventsUntil([this] { return fileManager.children().isEmpty(); }));
  EXPECT_FALSE(wasCalled("xdg-open"));
}

TEST_F(FileManagerTest, OpensTheFilesFolderWhereNoFileManagerAnswers) {
  makeProgram("dbus-send", 1);
  fileManager.reveal("/Photos/Ann/a.jpg");
  ASSERT_TRUE(runEventsUntil([this] { return wasCalled("xdg-open"); }));
  EXPECT_EQ(callOf("xdg-open"), (QStringList{"xdg-open", "/Photos/Ann"}));
}

TEST_F(FileManagerTest, OpensTheFilesFolderWhereTheBusHasNoClient) {
  qputenv("PATH", folder.path().toLocal8Bit() + ":/bin-without-programs");
  QFile::remove(folder.filePath("dbus-send"));
  // The script needs programs of its own.
  QFile script(folder.filePath("xdg-open"));
  ASSERT_TRUE(script.open(QIODevice::WriteOnly));
  script.write("#!/bin/sh\necho called > \"$0.calls\"\n");
  script.close();
  fileManager.reveal("/Photos/Ann/a.jpg");
  ASSERT_TRUE(runEventsUntil([this] { return wasCalled("xdg-open"); }));
}

TEST_F(FileManagerTest, ADesktopWithoutAnyProgramShowsNothing) {
  qputenv("PATH", "/bin-without-programs");
  fileManager.openFolder("/Photos");
  fileManager.reveal("/Photos/a.jpg");
  ASSERT_TRUE(runEventsUntil([this] { return fileManager.children().isEmpty(); }));
}

}  // namespace
}  // namespace ambrel
