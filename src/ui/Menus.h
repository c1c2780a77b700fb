// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QKeySequence>
#include <QMenuBar>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "core/backup/BackupView.h"

namespace ambrel::ui {

// Everything that the menus can start.
enum class Command {
  None,
  CheckForUpdates,
  Quit,
  Undo,
  Redo,
  Cut,
  Copy,
  Paste,
  SelectAll,
  ImportCSV,
  ExportList,
  RenamePhotoFolder,
  ConnectNow,
  ForceReconnect,
  Disconnect,
  ToggleAutoConnect,
  ChooseBackupFolder,
  ToggleBackup,
  RetryBackup,
  WakeAndReconnectDrive,
  BackUpMissingFiles,
  ClearBackupQueue,
};

struct MenuItem {
  QString title;  // empty: a separator
  Command command = Command::None;
  QKeySequence key = {};
  std::optional<bool> checked = std::nullopt;  // none: without a check mark
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
  void setBackup(const BackupMenuLook& look);

 private:
  std::map<Command, QAction*> _actions;
};

}  // namespace ambrel::ui
