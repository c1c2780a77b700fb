// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <gtest/gtest.h>

#include "ui/Menus.h"

namespace ambrel::ui {
namespace {

const QString kVersion = QStringLiteral("7.04");

TEST(Menus, StandInTheirOrderAndTheFirstCarriesTheVersion) {
  QStringList titles;
  for (const MenuColumn& column : menuTree(kVersion))
    titles << column.title;
  EXPECT_EQ(titles,
            (QStringList{QStringLiteral("Ambrel Photo Tether 7.04"), QStringLiteral("Edit"),
                         QStringLiteral("List"), QStringLiteral("Camera"), QStringLiteral("Backup")}));
}

TEST(Menus, HaveTheirTitlesAndKeys) {
  struct Entry {
    Command command;
    const char* title;
    const char* key;
  };
  const Entry table[] = {
      {Command::CheckForUpdates, "Check for Updates…", ""},
      {Command::Quit, "Quit Ambrel Photo Tether 7.04", "Ctrl+Q"},
      {Command::Undo, "Undo", "Ctrl+Z"},
      {Command::Redo, "Redo", "Ctrl+Shift+Z"},
      {Command::Cut, "Cut", "Ctrl+X"},
      {Command::Copy, "Copy", "Ctrl+C"},
      {Command::Paste, "Paste", "Ctrl+V"},
      {Command::SelectAll, "Select All", "Ctrl+A"},
      {Command::ImportCSV, "Import CSV…", "Ctrl+I"},
      {Command::ExportList, "Export List…", "Ctrl+E"},
      {Command::RenamePhotoFolder, "Rename a Photo Folder…", ""},
      {Command::ConnectNow, "Connect Now", ""},
      {Command::ForceReconnect, "Force Reconnect (Restart Session)", ""},
      {Command::Disconnect, "Disconnect", ""},
      {Command::ToggleAutoConnect, "Auto-Connect Camera", ""},
      {Command::ChooseBackupFolder, "Choose Backup Folder…", ""},
      {Command::ToggleBackup, "Backup Copy: Off", ""},
      {Command::RetryBackup, "Retry Backup Now", ""},
      {Command::WakeAndReconnectDrive, "Wake && Reconnect Drive", ""},
      {Command::BackUpMissingFiles, "Back Up Missing Files Now…", ""},
      {Command::ClearBackupQueue, "Clear Backup Queue…", ""},
  };
  QMenuBar bar;
  const Menus menus(bar, kVersion, [](Command) {});
  for (const Entry& entry : table) {
    const QAction* action = menus.action(entry.command);
    EXPECT_EQ(action->text(), QString::fromUtf8(entry.title));
    EXPECT_EQ(action->shortcut().toString(QKeySequence::PortableText), QLatin1String(entry.key))
        << entry.title;
  }
}

TEST(Menus, GroupTheirItemsBySeparators) {
  QStringList groups;
  for (const MenuColumn& column : menuTree(kVersion)) {
    QString group;
    for (const MenuItem& item : column.items)
      group += item.title.isEmpty() ? QLatin1Char('-') : QLatin1Char('x');
    groups << group;
  }
  EXPECT_EQ(groups, (QStringList{QStringLiteral("x-x-x"), QStringLiteral("xx-xxx-x"), QStringLiteral("xx-x"),
                                 QStringLiteral("xxx-x"), QStringLiteral("xx-xxxx")}));
}

TEST(Menus, TheBackupItemsFollowTheBackup) {
  QMenuBar bar;
  int started = 0;
  Menus menus(bar, kVersion, [&](Command) { ++started; });
  EXPECT_TRUE(menus.action(Command::ToggleBackup)->isCheckable());
  EXPECT_FALSE(menus.action(Command::ToggleBackup)->isChecked());
  menus.setBackup(
      {QStringLiteral("Backup Copy: On"), true, QStringLiteral("Retry Backup Now (3 waiting)"), true});
  EXPECT_EQ(menus.action(Command::ToggleBackup)->text(), QStringLiteral("Backup Copy: On"));
  EXPECT_TRUE(menus.action(Command::ToggleBackup)->isChecked());
  EXPECT_EQ(menus.action(Command::RetryBackup)->text(), QStringLiteral("Retry Backup Now (3 waiting)"));
  EXPECT_TRUE(menus.action(Command::RetryBackup)->isEnabled());
  menus.setBackup({QStringLiteral("Backup Copy: Off"), false, QStringLiteral("Retry Backup Now"), false});
  EXPECT_FALSE(menus.action(Command::RetryBackup)->isEnabled());
  EXPECT_EQ(started, 0);
}

TEST(Menus, ShowTheNameLineDisabledAboveQuit) {
  const MenuColumn application = menuTree(kVersion).front();
  EXPECT_EQ(application.items.front().title, application.title);
  EXPECT_EQ(application.items.front().command, Command::None);
  QMenuBar bar;
  const Menus menus(bar, kVersion, [](Command) {});
  EXPECT_FALSE(bar.actions().front()->menu()->actions().front()->isEnabled());
}

TEST(Menus, StartTheirCommands) {
  QMenuBar bar;
  std::vector<Command> started;
  const Menus menus(bar, kVersion, [&](Command command) { started.push_back(command); });
  menus.action(Command::ImportCSV)->trigger();
  menus.action(Command::Disconnect)->trigger();
  EXPECT_EQ(started, (std::vector<Command>{Command::ImportCSV, Command::Disconnect}));
}

TEST(Menus, AutoConnectIsCheckedAtFirstAndFollowsTheSettingWithoutStartingAnything) {
  QMenuBar bar;
  int started = 0;
  Menus menus(bar, kVersion, [&](Command) { ++started; });
  EXPECT_TRUE(menus.action(Command::ToggleAutoConnect)->isChecked());
  menus.setAutoConnect(false);
  EXPECT_FALSE(menus.action(Command::ToggleAutoConnect)->isChecked());
  EXPECT_EQ(started, 0);
}

TEST(Menus, TheCheckIsWhiteWhereTheItemIsChosen) {
  QMenuBar bar;
  const Menus menus(bar, kVersion, [](Command) {});
  QMenu* camera = bar.actions().at(3)->menu();
  camera->popup(QPoint(0, 0));
  QAction* item = camera->actions().last();
  const auto brightestLeftOfTheTitle = [&] {
    const QImage picture = camera->grab(camera->actionGeometry(item)).toImage();
    int brightest = 0;
    for (int x = 6; x < 18; ++x)
      for (int y = 4; y < picture.height() - 4; ++y)
        brightest = std::max(brightest, qGray(picture.pixel(x, y)));
    return brightest;
  };
  camera->setActiveAction(item);
  EXPECT_EQ(brightestLeftOfTheTitle(), 255);
  item->setChecked(false);
  EXPECT_LT(brightestLeftOfTheTitle(), 128);
}

}  // namespace
}  // namespace ambrel::ui
