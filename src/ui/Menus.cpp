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
        {QStringLiteral("Export List…"), Command::ExportList, Qt::CTRL | Qt::Key_E}}},
      {QStringLiteral("Camera"),
       {{QStringLiteral("Connect Now"), Command::ConnectNow},
        {QStringLiteral("Force Reconnect (Restart Session)"), Command::ForceReconnect},
        {QStringLiteral("Disconnect"), Command::Disconnect},
        separator,
        {QStringLiteral("Auto-Connect Camera"), Command::ToggleAutoConnect, {}, true}}},
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
      QAction* action = menu->addAction(item.title);
      action->setShortcut(item.key);
      action->setCheckable(item.checkable);
      action->setChecked(item.checkable);
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

}  // namespace ambrel::ui
