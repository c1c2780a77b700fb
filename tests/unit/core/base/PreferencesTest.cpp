// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QSysInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

#include "core/base/Preferences.h"

namespace ambrel {
namespace {

class PreferencesTest : public ::testing::Test {
 protected:
  QString path(const QString& name = QStringLiteral("preferences.ini")) const { return _dir.filePath(name); }
  QStringList filesKept() const { return QDir(_dir.path()).entryList(QDir::Files | QDir::Hidden); }

  void writeFile(const QByteArray& bytes) const {
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  static QByteArray contentOf(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QTemporaryDir _dir;
};

TEST_F(PreferencesTest, ReadsEveryKeyAsAbsentWhenThereIsNoFile) {
  const Preferences preferences(path());
  EXPECT_EQ(preferences.lastCSVPath(), std::nullopt);
  EXPECT_EQ(preferences.lastTargetDir(), std::nullopt);
  EXPECT_EQ(preferences.lastSelectedRowIndex(), std::nullopt);
  EXPECT_EQ(preferences.lastCounterValue(), std::nullopt);
  EXPECT_EQ(preferences.autoConnect(), std::nullopt);
  EXPECT_EQ(preferences.backupDir(), std::nullopt);
  EXPECT_EQ(preferences.backupEnabled(), std::nullopt);
  EXPECT_EQ(preferences.backupShareURL(), std::nullopt);
  EXPECT_EQ(preferences.backupMAC(), std::nullopt);
  EXPECT_EQ(preferences.backupHost(), std::nullopt);
  EXPECT_EQ(preferences.lastUpdateCheck(), std::nullopt);
  EXPECT_EQ(preferences.suffixes(), std::nullopt);
  EXPECT_EQ(preferences.windowPlacement(), std::nullopt);
}

TEST_F(PreferencesTest, KeepsEveryKeyAcrossLaunches) {
  const QDateTime checked(QDate(2026, 5, 4), QTime(9, 30, 15), Qt::UTC);
  const QVariantList tags = {QVariantMap{{QStringLiteral("label"), QStringLiteral("Front, \"row\"")},
                                         {QStringLiteral("suffix"), QStringLiteral("FR")},
                                         {QStringLiteral("on"), true}},
                             QVariantMap{{QStringLiteral("label"), QStringLiteral("Sïde")},
                                         {QStringLiteral("suffix"), QStringLiteral("SS")},
                                         {QStringLiteral("on"), false}}};
  {
    Preferences preferences(path());
    preferences.setLastCSVPath(QStringLiteral("/lists/a, b; \"c\" = d\\e.csv"));
    preferences.setLastTargetDir(QStringLiteral("/Fotos/Schüler 🚩\n2"));
    preferences.setLastSelectedRowIndex(5'000'000'000);
    preferences.setLastCounterValue(42);
    preferences.setAutoConnect(false);
    preferences.setBackupDir(QStringLiteral("@home"));
    preferences.setBackupEnabled(true);
    preferences.setBackupShareURL(QStringLiteral("smb://nas/photos"));
    preferences.setBackupMAC(QStringLiteral("00:11:22:33:44:55"));
    preferences.setBackupHost(QStringLiteral("nas"));
    preferences.setLastUpdateCheck(checked);
    preferences.setSuffixes(tags);
    preferences.setWindowPlacement(QStringLiteral("1260x840/613"));
  }
  const Preferences preferences(path());
  EXPECT_EQ(preferences.lastCSVPath(), QStringLiteral("/lists/a, b; \"c\" = d\\e.csv"));
  EXPECT_EQ(preferences.lastTargetDir(), QStringLiteral("/Fotos/Schüler 🚩\n2"));
  EXPECT_EQ(preferences.lastSelectedRowIndex(), 5'000'000'000);
  EXPECT_EQ(preferences.lastCounterValue(), 42);
  EXPECT_EQ(preferences.autoConnect(), false);
  EXPECT_EQ(preferences.backupDir(), QStringLiteral("@home"));
  EXPECT_EQ(preferences.backupEnabled(), true);
  EXPECT_EQ(preferences.backupShareURL(), QStringLiteral("smb://nas/photos"));
  EXPECT_EQ(preferences.backupMAC(), QStringLiteral("00:11:22:33:44:55"));
  EXPECT_EQ(preferences.backupHost(), QStringLiteral("nas"));
  EXPECT_EQ(preferences.lastUpdateCheck(), checked);
  EXPECT_EQ(preferences.suffixes(), tags);
  EXPECT_EQ(preferences.windowPlacement(), QStringLiteral("1260x840/613"));
}

TEST_F(PreferencesTest, StoresEveryValueUnderItsOwnKey) {
  {
    Preferences preferences(path());
    preferences.setLastCSVPath(QStringLiteral("a"));
    preferences.setLastTargetDir(QStringLiteral("b"));
    preferences.setLastSelectedRowIndex(1);
    preferences.setLastCounterValue(2);
    preferences.setAutoConnect(true);
    preferences.setBackupDir(QStringLiteral("c"));
    preferences.setBackupEnabled(false);
    preferences.setBackupShareURL(QStringLiteral("d"));
    preferences.setBackupMAC(QStringLiteral("e"));
    preferences.setBackupHost(QStringLiteral("f"));
    preferences.setLastUpdateCheck(QDateTime(QDate(2026, 1, 1), QTime(), Qt::UTC));
    preferences.setSuffixes({QVariantMap{}});
    preferences.setWindowPlacement(QStringLiteral("g"));
  }
  const QStringList keys = QSettings(path(), QSettings::IniFormat).allKeys();
  const QStringList expected = {QStringLiteral("AmbrelAutoConnectV2"),
                                QStringLiteral("AmbrelBackupDir"),
                                QStringLiteral("AmbrelBackupEnabled"),
                                QStringLiteral("AmbrelBackupHost"),
                                QStringLiteral("AmbrelBackupMAC"),
                                QStringLiteral("AmbrelBackupShareURL"),
                                QStringLiteral("AmbrelLastCSVPath"),
                                QStringLiteral("AmbrelLastCounterValue"),
                                QStringLiteral("AmbrelLastSelectedRowIndex"),
                                QStringLiteral("AmbrelLastTargetDir"),
                                QStringLiteral("AmbrelLastUpdateCheck"),
                                QStringLiteral("AmbrelSuffixes"),
                                QStringLiteral("AmbrelWindowPlacement")};
  EXPECT_EQ(keys, expected);
}

TEST_F(PreferencesTest, TellsAnAbsentKeyFromAStoredZeroNoAndEmptyText) {
  {
    Preferences preferences(path());
    preferences.setLastSelectedRowIndex(0);
    preferences.setAutoConnect(false);
    preferences.setBackupHost(QString());
    preferences.setSuffixes({});
  }
  const Preferences preferences(path());
  EXPECT_EQ(preferences.lastSelectedRowIndex(), 0);
  EXPECT_EQ(preferences.autoConnect(), false);
  EXPECT_EQ(preferences.backupHost(), QString());
  EXPECT_EQ(preferences.suffixes(), QVariantList());
}

TEST_F(PreferencesTest, ReadsAValueOfTheWrongTypeAsAbsent) {
  writeFile(
      "[General]\n"
      "AmbrelLastCSVPath=one, two\n"
      "AmbrelLastTargetDir=@ByteArray(/x)\n"
      "AmbrelLastSelectedRowIndex=3 rows\n"
      "AmbrelLastCounterValue=99999999999999999999\n"
      "AmbrelAutoConnectV2=perhaps\n"
      "AmbrelBackupEnabled=\n"
      "AmbrelLastUpdateCheck=yesterday\n"
      "AmbrelSuffixes=FR\n");
  const Preferences preferences(path());
  EXPECT_EQ(preferences.lastCSVPath(), std::nullopt);
  EXPECT_EQ(preferences.lastTargetDir(), std::nullopt);
  EXPECT_EQ(preferences.lastSelectedRowIndex(), std::nullopt);
  EXPECT_EQ(preferences.lastCounterValue(), std::nullopt);
  EXPECT_EQ(preferences.autoConnect(), std::nullopt);
  EXPECT_EQ(preferences.backupEnabled(), std::nullopt);
  EXPECT_EQ(preferences.lastUpdateCheck(), std::nullopt);
  EXPECT_EQ(preferences.suffixes(), std::nullopt);
  EXPECT_EQ(filesKept(), QStringList(QStringLiteral("preferences.ini")));
}

TEST_F(PreferencesTest, ReadsAPathOfDigitsAsText) {
  Preferences(path()).setLastTargetDir(QStringLiteral("2026"));
  EXPECT_EQ(Preferences(path()).lastTargetDir(), QStringLiteral("2026"));
}

TEST_F(PreferencesTest, RemovesTheShareWhenItIsSetToNone) {
  {
    Preferences preferences(path());
    preferences.setBackupShareURL(QStringLiteral("smb://nas/photos"));
    preferences.setBackupMAC(QStringLiteral("00:11:22:33:44:55"));
    preferences.synchronize();
    preferences.setBackupShareURL(std::nullopt);
    preferences.setBackupMAC(std::nullopt);
  }
  EXPECT_FALSE(contentOf(path()).contains("AmbrelBackup"));
}

TEST_F(PreferencesTest, ForgetsOnlyTheFourKeysOfTheWorkflow) {
  Preferences preferences(path());
  preferences.setLastCSVPath(QStringLiteral("/list.csv"));
  preferences.setLastTargetDir(QStringLiteral("/target"));
  preferences.setLastSelectedRowIndex(3);
  preferences.setLastCounterValue(12);
  preferences.setAutoConnect(false);
  preferences.setBackupDir(QStringLiteral("/backup"));
  preferences.removeWorkflowKeys();
  preferences.synchronizeAndWait();
  EXPECT_EQ(QSettings(path(), QSettings::IniFormat).allKeys(),
            QStringList({QStringLiteral("AmbrelAutoConnectV2"), QStringLiteral("AmbrelBackupDir")}));
  EXPECT_EQ(preferences.lastCSVPath(), std::nullopt);
  EXPECT_EQ(preferences.lastTargetDir(), std::nullopt);
  EXPECT_EQ(preferences.lastSelectedRowIndex(), std::nullopt);
  EXPECT_EQ(preferences.lastCounterValue(), std::nullopt);
}

TEST_F(PreferencesTest, WritesTheFileWhenSynchronised) {
  Preferences preferences(path());
  preferences.setLastCounterValue(7);
  EXPECT_FALSE(QFile::exists(path()));
  preferences.synchronizeAndWait();
  EXPECT_TRUE(contentOf(path()).contains("AmbrelLastCounterValue=7\n"));
}

TEST_F(PreferencesTest, WritesNothingWhenNothingChanged) {
  Preferences preferences(path());
  preferences.setLastCounterValue(7);
  preferences.synchronizeAndWait();
  ASSERT_TRUE(QFile::remove(path()));
  preferences.setLastCounterValue(7);
  preferences.synchronizeAndWait();
  EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(PreferencesTest, LeavesSettingsOfOthersInTheFile) {
  writeFile("[General]\nSomebodyElse=1\n");
  Preferences(path()).setLastCounterValue(7);
  EXPECT_TRUE(contentOf(path()).contains("SomebodyElse=1\n"));
}

TEST_F(PreferencesTest, CreatesTheFolderOfItsFile) {
  const QString below = path(QStringLiteral("not/yet/preferences.ini"));
  Preferences(below).setLastCounterValue(7);
  EXPECT_EQ(Preferences(below).lastCounterValue(), 7);
}

TEST_F(PreferencesTest, KeepsABrokenFileAsideAndStartsWithDefaults) {
  const QByteArray broken = "[General]\nAmbrelLastCounterValue=7\nthis is no setting\n";
  writeFile(broken);
  Preferences preferences(path());
  EXPECT_EQ(preferences.lastCounterValue(), std::nullopt);
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken"))), broken);
  preferences.setLastCounterValue(8);
  preferences.synchronizeAndWait();
  EXPECT_EQ(Preferences(path()).lastCounterValue(), 8);
}

TEST_F(PreferencesTest, KeepsABinaryFileAside) {
  const QByteArray broken("AmbrelLastCounterValue=7\n\0\x01=\xff\n", 30);
  writeFile(broken);
  EXPECT_EQ(Preferences(path()).lastCounterValue(), std::nullopt);
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken"))), broken);
}

TEST_F(PreferencesTest, KeepsAFileAsideWhoseKeysAreInASectionWithoutAName) {
  for (const char* unreachable :
       {"[]General]\nAmbrelLastTargetDir=/Shots\n", "\\AmbrelLastTargetDir=/Shots\n"}) {
    writeFile(unreachable);
    Preferences preferences(path());
    EXPECT_EQ(preferences.lastTargetDir(), std::nullopt);
    preferences.setLastCounterValue(8);
    preferences.synchronizeAndWait();
    const Preferences again(path());
    EXPECT_EQ(again.lastCounterValue(), 8);
    EXPECT_EQ(again.lastTargetDir(), std::nullopt);
  }
  EXPECT_EQ(filesKept().size(), 3);
}

TEST_F(PreferencesTest, KeepsAFileThatIsNotUtf8Aside) {
  writeFile("AmbrelLastTargetDir=Sch\xfcler\n");
  EXPECT_EQ(Preferences(path()).lastTargetDir(), std::nullopt);
  EXPECT_EQ(filesKept(), QStringList(QStringLiteral("preferences.ini.broken")));
}

// Such a key is read well, but written back without what separates it from its value.
TEST_F(PreferencesTest, IsNotStoppedByAStrangersKeyThatCannotBeWritten) {
  const QByteArray strange = "[Stranger]\nKey/=1\n";
  writeFile(strange);
  {
    Preferences preferences(path());
    preferences.setLastCounterValue(8);
  }
  EXPECT_EQ(Preferences(path()).lastCounterValue(), 8);
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken"))), strange);
}

TEST_F(PreferencesTest, IsNotStoppedByAFileThatBreaksWhileItIsOpen) {
  Preferences preferences(path());
  writeFile("this is no setting\n");
  preferences.setLastCounterValue(8);
  preferences.synchronizeAndWait();
  EXPECT_EQ(Preferences(path()).lastCounterValue(), 8);
  EXPECT_EQ(filesKept().size(), 2);
}

TEST_F(PreferencesTest, KeepsEveryBrokenFileUnderANameOfItsOwn) {
  for (const char* text : {"first", "second", "third"}) {
    writeFile(text);
    Preferences preferences(path());
  }
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken"))), "first");
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken-2"))), "second");
  EXPECT_EQ(contentOf(path(QStringLiteral("preferences.ini.broken-3"))), "third");
}

TEST_F(PreferencesTest, TakesAnEmptyFileForDefaults) {
  writeFile("");
  EXPECT_EQ(Preferences(path()).lastCounterValue(), std::nullopt);
  EXPECT_EQ(filesKept(), QStringList(QStringLiteral("preferences.ini")));
}

TEST_F(PreferencesTest, WorksFromMemoryWhereTheFileCannotBe) {
  ASSERT_TRUE(QDir(_dir.path()).mkdir(QStringLiteral("preferences.ini")));
  Preferences preferences(path());
  preferences.setLastCounterValue(7);
  preferences.synchronizeAndWait();
  EXPECT_EQ(preferences.lastCounterValue(), 7);
}

TEST_F(PreferencesTest, IsNotHeldUpByALockThatSomethingLeftBehind) {
  QFile lock(path(QStringLiteral("preferences.ini.lock")));
  ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
  lock.write(QByteArray::number(static_cast<qint64>(::getpid())) + "\npreferences_tests\n" +
             QSysInfo::machineHostName().toUtf8() + "\n");
  lock.close();
  Preferences preferences(path());
  preferences.setLastCounterValue(7);
  QElapsedTimer elapsed;
  elapsed.start();
  preferences.synchronizeAndWait();
  EXPECT_LT(elapsed.elapsed(), 2000);
  EXPECT_EQ(Preferences(path()).lastCounterValue(), 7);
}

TEST_F(PreferencesTest, LeavesSettingsInTheFileThatItCouldNotReadAtTheLaunch) {
  const QByteArray name = QFile::encodeName(path());
  ASSERT_EQ(::symlink(name.constData(), name.constData()), 0);
  Preferences preferences(path());
  ASSERT_EQ(::unlink(name.constData()), 0);
  writeFile("[General]\nAmbrelBackupDir=/backup\nAmbrelLastCounterValue=3\n");
  preferences.setLastCounterValue(7);
  preferences.synchronizeAndWait();
  EXPECT_EQ(Preferences(path()).backupDir(), QStringLiteral("/backup"));
  EXPECT_EQ(Preferences(path()).lastCounterValue(), 7);
}

TEST_F(PreferencesTest, LeavesNothingBesideTheFile) {
  Preferences preferences(path());
  preferences.setLastCounterValue(7);
  preferences.synchronizeAndWait();
  EXPECT_EQ(filesKept(), QStringList(QStringLiteral("preferences.ini")));
}

}  // namespace
}  // namespace ambrel
