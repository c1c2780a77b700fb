// SPDX-License-Identifier: Apache-2.0
#include "ui/NoteField.h"

#include "ui/Appearance.h"

namespace ambrel::ui {

NoteField::NoteField(NameList& list, QWidget* parent) : QLineEdit(parent), _list(list) {
  setFont(systemFont(13));
  setAccessibleName(QStringLiteral("Note"));
  connect(this, &QLineEdit::textEdited, this, &NoteField::save);
  syncNoteFieldToSelection();
}

void NoteField::syncNoteFieldToSelection() {
  const qint64 row = _list.selectedRow();
  if (isMultipleSelection()) {
    showDisabled(QStringLiteral("📝 Multiple rows selected"));
  } else if (!_list.grid().contains(row)) {
    showDisabled(QStringLiteral("📝 Note for the selected name"));
  } else {
    setEnabled(true);
    setPlaceholderText(QStringLiteral("📝 Note for %1 — type here, saves automatically")
                           .arg(_list.grid().text(row, Cell::Name)));
    const QString note = _list.grid().text(row, Cell::Note);
    // Setting the same text again would move the cursor of somebody who is typing.
    if (text() != note) setText(note);
  }
  Q_EMIT indicatorStale();
}

QString NoteField::indicatedNote() const {
  return isMultipleSelection() ? QString() : _list.grid().text(_list.selectedRow(), Cell::Note);
}

void NoteField::showDisabled(const QString& reason) {
  clear();
  setPlaceholderText(reason);
  setEnabled(false);
}

void NoteField::save(const QString& text) {
  const qint64 row = _list.selectedRow();
  _list.setObjectValue(text, Cell::Note, row);
  Q_EMIT indicatorStale();
  Q_EMIT noteEdited(row);
}

}  // namespace ambrel::ui
