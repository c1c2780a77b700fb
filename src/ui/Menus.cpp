// SPDX-License-Identifier: Apache-2.0
#include "ui/Menus.h"

namespace ambrel::ui {

QString applicationNameLine(const QString& displayVersion) {
  return QStringLiteral("Ambrel Photo Tether ") + displayVersion;
}

std::vector<MenuColumn> menuTree(const QString& displayVersion) {
  const QString nameLine = applicationNameLine(displayVersion);
  const MenuItem separator{};
  return {
      {nameLine,
       {{nameLine},
        separator,
        {QStringLiteral("Check for Updates…"), Command::CheckForUpdates},
        separator,
        {QStringLiteral("Quit %1").arg(nameLine), Command::Quit, Qt::CTRL | Qt::Key_Q}}},
      {QStringLiteral("Edit"),
       {{QStringLiteral("Undo"), Command::Undo, Qt::CTRL | Qt::Key_Z},
        {QStringLiteral("Redo"), Command::Redo, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
        separator,
        {QStringLiteral("Cut"), Command::Cut, Qt::CTRL | Qt::Key_X},
        {QStringLiteral("Copy"), Command::Copy, Qt::CTRL | Qt::Key_C},
        {QStringLiteral("Paste"), Command::Paste, Qt::CTRL | Qt::Key_V},
        separator,
        {QStringLiteral("Select All"), Command::SelectAll, Qt::CTRL | Qt::Key_A}}},
      {QStringLiteral("List"),
       {{QStringLiteral("Import CSV…"), Command::ImportCSV, Qt::CTRL | Qt::Key_I},
        {QStringLiteral("Export List…"), Command::ExportList, Qt::CTRL | Qt::Key_E},
        separator,
        {QStringLiteral("Rename a Photo Folder…"), Command::RenamePhotoFolder}}},
      {QStringLiteral("Camera"),
       {{QStringLiteral("Connect Now"), Command::ConnectNow},
        {QStringLiteral("Force Reconnect (Restart Session)"), Command::ForceReconnect},
        {QStringLiteral("Disconnect"), Command::Disconnect},
        separator,
        {QStringLiteral("Auto-Connect Camera"), Command::ToggleAutoConnect, {}, true}}},
      {QStringLiteral("Backup"),
       {{QStringLiteral("Choose Backup Folder…"), Command::ChooseBackupFolder},
        {QStringLiteral("Backup Copy: Off"), Command::ToggleBackup, {}, false},
        separator,
        {QStringLiteral("Retry Backup Now"), Command::RetryBackup},
        {QStringLiteral("Wake & Reconnect Drive"), Command::WakeAndReconnectDrive},
        {QStringLiteral("Back Up Missing Files Now…"), Command::BackUpMissingFiles},
        {QStringLiteral("Clear Backup Queue…"), Command::ClearBackupQueue}}},
  };
}

Menus::Menus(QMenuBar& bar, const QString& displayVersion, const std::function<void(Command)>& start) {
  for (const MenuColumn& column : menuTree(displayVersion)) {
    QMenu* menu = bar.addMenu(column.title);
    for (const MenuItem& item : column.items) {
      if (item.title.isEmpty()) {
        menu->addSeparator();
        continue;
      }
      // A single ampersand would mark the letter after it as the item's key.
      QAction* action = menu->addAction(QString(item.title).replace(QLatin1Char('&'), QLatin1String("&&")));
      action->setShortcut(item.key);
      action->setCheckable(item.checked.has_value());
      action->setChecked(item.checked.value_or(false));
      action->setEnabled(item.command != Command::None);
      QObject::connect(action, &QAction::triggered, &bar,
                       [start, command = item.command] { start(command); });
      if (item.command != Command::None) _actions[item.command] = action;
    }
  }
}

void Menus::setAutoConnect(bool on) {
  action(Command::ToggleAutoConnect)->setChecked(on);
}

void Menus::setBackup(const BackupMenuLook& look) {
  action(Command::ToggleBackup)->setText(look.enableTitle);
  action(Command::ToggleBackup)->setChecked(look.enableChecked);
  action(Command::RetryBackup)->setText(look.retryTitle);
  action(Command::RetryBackup)->setEnabled(look.retryEnabled);
}

}  // namespace ambrel::ui
