// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <memory>

#include "ui/RowMenu.h"

namespace ambrel::ui {
namespace {

TEST(RowMenu, OffersEverythingInItsOrder) {
  QStringList titles;
  for (const RowMenuItem& item : rowMenuItems())
    titles << (item.command ? item.title : QStringLiteral("-"));
  EXPECT_EQ(titles, QStringList({QStringLiteral("Insert Row Above"), QStringLiteral("Insert Row Below"),
                                 QStringLiteral("-"), QStringLiteral("Rename Folder & Images…"),
                                 QStringLiteral("Edit Note…"), QStringLiteral("Open Folder in Finder"),
                                 QStringLiteral("-"), QStringLiteral("Mark Segment Start 🚩"),
                                 QStringLiteral("-"), QStringLiteral("Delete Row")}));
}

TEST(RowMenu, ItsItemsStartTheirCommands) {
  std::vector<RowCommand> started;
  const std::unique_ptr<QMenu> menu(
      buildRowContextMenu(nullptr, [&](RowCommand command) { started.push_back(command); }));
  EXPECT_EQ(menu->title(), QStringLiteral("Row"));
  std::vector<RowCommand> wanted;
  for (const RowMenuItem& item : rowMenuItems())
    if (item.command) wanted.push_back(*item.command);
  for (QAction* action : menu->actions())
    if (!action->isSeparator()) action->trigger();
  EXPECT_EQ(started, wanted);
}

TEST(RowMenu, ItsItemsHaveNoKeysOfTheirOwn) {
  const std::unique_ptr<QMenu> menu(buildRowContextMenu(nullptr, [](RowCommand) {}));
  for (const QAction* action : menu->actions()) {
    EXPECT_TRUE(action->shortcut().isEmpty());
    EXPECT_EQ(action->text().count(QLatin1Char('&')) % 2, 0) << action->text().toStdString();
  }
}

}  // namespace
}  // namespace ambrel::ui
