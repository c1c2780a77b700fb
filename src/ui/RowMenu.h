// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMenu>
#include <functional>
#include <optional>
#include <vector>

namespace ambrel::ui {

// What the menu of a row in the name table can start.
enum class RowCommand {
  InsertAbove,
  InsertBelow,
  RenameFolderAndImages,
  EditNote,
  OpenFolder,
  ToggleMarker,
  DeleteRow,
};

struct RowMenuItem {
  QString title;
  std::optional<RowCommand> command;  // none: a separator
};

std::vector<RowMenuItem> rowMenuItems();

// The menu of a row, titled "Row"; the caller shows and deletes it.
QMenu* buildRowContextMenu(QWidget* parent, const std::function<void(RowCommand)>& start);

}  // namespace ambrel::ui
