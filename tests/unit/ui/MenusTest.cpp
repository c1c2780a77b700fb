// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/Menus.h"

namespace ambrel::ui {
namespace {

const QString kVersion = QStringLiteral("7.04");

TEST(Menus, StandInTheirOrderAndTheFirstCarriesTheVersion) {
  QStringList titles;
  for (const MenuColumn& column : menuTree(kVersion))
    titles << column.title;
  EXPECT_EQ(titles, (QStringList{QStringLiteral("Ambrel Photo Tether 7.04"), QStringLiteral("Edit"),
                                 QStringLiteral("List"), QStringLiteral("Camera")}));
}

TEST(Menus, HaveTheirTitlesAndKeys) {
  struct Entry {
    Command command;
    const char* title;
    const char* key;
  };
  const Entry table[] = {
      {Command::Quit, "Quit Ambrel Photo Tether 7.04", "Ctrl+Q"},
      {Command::Undo, "Undo", "Ctrl+Z"},
      {Command::Redo, "Redo", "Ctrl+Shift+Z"},
      {Command::Cut, "Cut", "Ctrl+X"},
      {Command::Copy, "Copy", "Ctrl+C"},
      {Command::Paste, "Paste", "Ctrl+V"},
      {Command::SelectAll, "Select All", "Ctrl+A"},
      {Command::ImportCSV, "Import CSV…", "Ctrl+I"},
      {Command::ExportList, "Export List…", "Ctrl+E"},
      {Command::ConnectNow, "Connect Now", ""},
      {Command::ForceReconnect, "Force Reconnect (Restart Session)", ""},
      {Command::Disconnect, "Disconnect", ""},
      {Command::ToggleAutoConnect, "Auto-Connect Camera", ""},
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

}  // namespace
}  // namespace ambrel::ui
