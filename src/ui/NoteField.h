// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include "core/list/NameList.h"

namespace ambrel::ui {

// The note of the current person, saved as it is typed.
class NoteField : public QLineEdit {
  Q_OBJECT
 public:
  NoteField(NameList& list, QWidget* parent);

  // Shows the current person's note, or why there is none to edit.
  void syncNoteFieldToSelection();
  // The note that the indicator stands for; empty when the indicator is hidden.
  QString indicatedNote() const;

 Q_SIGNALS:
  void noteEdited(qint64 modelRow);
  void indicatorStale();

 private:
  bool isMultipleSelection() const { return _list.tableSelection().size() >= 2; }
  void showDisabled(const QString& reason);
  void save(const QString& text);

  NameList& _list;
};

}  // namespace ambrel::ui
