// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/base/Operator.h"
#include "core/base/StatusLine.h"
#include "core/list/NameList.h"

namespace ambrel {

// What is dragged over the table, and where it would be dropped.
struct TableDrop {
  std::optional<qint64> draggedRow = std::nullopt;  // model row, for a row of the table itself
  QStringList paths = {};                           // of files from elsewhere
  bool ontoRow = false;                             // else between rows, above displayRow
  qint64 displayRow = 0;
};

enum class DropAnswer { None, Move, Copy };

// Those of the dropped files that hold a list, by extension in any letter case.
QStringList droppedCSVPaths(const QStringList& paths);

// How the operator changes rows in place. Each change saves the list and the remembered row, and shows the
// row that it is about.
class ListEditing : public QObject {
  Q_OBJECT
 public:
  // The drag type of a row of the table; its value is the model row in decimal digits.
  static constexpr const char* kRowReorderType = "com.ambrel.tether.row-reorder";

  ListEditing(NameList& list, Operator& person, StatusLine& statusLine);

  // The selected row as text for the clipboard, name and note with a tab between; none, and a beep, without
  // one.
  std::optional<QString> copy();
  // Appends one person per line of the clipboard's text: a name and, after a tab, a note.
  void paste(const QString& clipboard);
  // Appends the text in the search field as a name.
  void addSearchAsCSVRow();

  // The row that a context menu is about, as a model row: the clicked one, else the selected one, else -1.
  qint64 contextTargetModelRow(qint64 clickedDisplayRow) const;
  // Without a target, -1, above is at the top and below at the end.
  void ctxInsertAbove(qint64 targetModelRow);
  void ctxInsertBelow(qint64 targetModelRow);
  void ctxDeleteRow(qint64 targetModelRow);
  // Asks for the row's note. Trimmed, unlike what is typed under the table.
  void ctxEditNote(qint64 targetModelRow);

  DropAnswer validateDrop(const TableDrop& drop) const;
  // False when the drop is refused.
  bool acceptDrop(const TableDrop& drop);
  // Adds the first columns of the files to the list, or replaces it by them, as the operator answers.
  void importDroppedCSVPaths(const QStringList& paths);

 Q_SIGNALS:
  // A row was dropped onto another: its photos are to move to that name. Sent after the drop has ended.
  void photoMoveRequested(qint64 fromModelRow, const QString& targetName);

 private:
  bool canMovePhotos(const TableDrop& drop) const;
  void insertNewRow(qint64 position);
  bool reorder(qint64 source, qint64 proposedRow);
  void addFromFiles(const QStringList& paths, bool replaced);
  void appendFirstColumnFromCSV(const QString& path);

  NameList& _list;
  Operator& _operator;
  StatusLine& _statusLine;
};

}  // namespace ambrel
