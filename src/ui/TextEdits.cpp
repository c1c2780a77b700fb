// SPDX-License-Identifier: Apache-2.0
#include "ui/TextEdits.h"

namespace ambrel::ui {

void editText(QLineEdit& field, Command command) {
  switch (command) {
    case Command::Undo:
      return field.undo();
    case Command::Redo:
      return field.redo();
    case Command::Cut:
      return field.cut();
    case Command::Copy:
      return field.copy();
    case Command::Paste:
      return field.paste();
    case Command::SelectAll:
      return field.selectAll();
    default:
      return;
  }
}

}  // namespace ambrel::ui
