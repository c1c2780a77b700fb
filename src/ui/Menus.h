// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QKeySequence>
#include <QMenuBar>
#include <functional>
#include <map>
#include <vector>

namespace ambrel::ui {

// Everything that the menus can start.
enum class Command {
  None,
  Quit,
  Undo,
  Redo,
  Cut,
  Copy,
  Paste,
  SelectAll,
  ImportCSV,
  ExportList,
  ConnectNow,
  ForceReconnect,
  Disconnect,
  ToggleAutoConnect,
};

struct MenuItem {
  QString title;  // empty: a separator
  Command command = Command::None;
  QKeySequence key = {};
  bool checkable = false;
};

struct MenuColumn {
  QString title;
  std::vector<MenuItem> items;
};

// "Ambrel Photo Tether 7.04"; also the window's title.
QString applicationNameLine(const QString& displayVersion);
std::vector<MenuColumn> menuTree(const QString& displayVersion);

// The window's menu bar, made from the tree.
class Menus {
 public:
  Menus(QMenuBar& bar, const QString& displayVersion, const std::function<void(Command)>& start);

  QAction* action(Command command) const { return _actions.at(command); }
  // Check mark and nothing else: setting it starts no command.
  void setAutoConnect(bool on);

 private:
  std::map<Command, QAction*> _actions;
};

}  // namespace ambrel::ui
