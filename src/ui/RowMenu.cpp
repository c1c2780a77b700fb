// SPDX-License-Identifier: Apache-2.0
#include "ui/RowMenu.h"

namespace ambrel::ui {

std::vector<RowMenuItem> rowMenuItems() {
  const RowMenuItem separator{};
  return {
      {QStringLiteral("Insert Row Above"), RowCommand::InsertAbove},
      {QStringLiteral("Insert Row Below"), RowCommand::InsertBelow},
      separator,
      {QStringLiteral("Rename Folder & Images…"), RowCommand::RenameFolderAndImages},
      {QStringLiteral("Edit Note…"), RowCommand::EditNote},
      {QStringLiteral("Open Folder in Finder"), RowCommand::OpenFolder},
      separator,
      {QStringLiteral("Mark Segment Start 🚩"), RowCommand::ToggleMarker},
      separator,
      {QStringLiteral("Delete Row"), RowCommand::DeleteRow},
  };
}

QMenu* buildRowContextMenu(QWidget* parent, const std::function<void(RowCommand)>& start) {
  auto* menu = new QMenu(QStringLiteral("Row"), parent);
  for (const RowMenuItem& item : rowMenuItems()) {
    if (!item.command) {
      menu->addSeparator();
      continue;
    }
    // A single ampersand would mark the letter after it as the item's key.
    QAction* action = menu->addAction(QString(item.title).replace(QLatin1Char('&'), QLatin1String("&&")));
    QObject::connect(action, &QAction::triggered, menu, [start, command = *item.command] { start(command); });
  }
  return menu;
}

}  // namespace ambrel::ui
