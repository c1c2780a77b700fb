// SPDX-License-Identifier: Apache-2.0
#include "core/list/ListEditing.h"

#include <QFileInfo>
#include <algorithm>

#include "core/base/Text.h"
#include "core/list/GridFile.h"

namespace ambrel {

namespace {

bool isLineBreak(QChar c) {
  switch (c.unicode()) {
    case u'\n':
    case u'\v':
    case u'\f':
    case u'\r':
    case u'\u0085':
    case u'\u2028':
    case u'\u2029':
      return true;
    default:
      return false;
  }
}

// People in the clipboard's text: no header, no quotes, lines without a name skipped.
std::vector<Row> peopleIn(const QString& text) {
  std::vector<Row> rows;
  for (auto start = text.begin(); start != text.end();) {
    const auto end = std::find_if(start, text.end(), isLineBreak);
    const QStringList columns = QString(start, end - start).split(QLatin1Char('\t'));
    const QString name = NSTrim(columns.front());
    const QString note = columns.size() > 1 ? NSTrim(columns[1]) : QString();
    if (!name.isEmpty()) rows.push_back({ns_to_std(name), ns_to_std(note)});
    start = end == text.end() ? end : end + 1;
  }
  return rows;
}

Question addOrReplaceQuestion(qint64 rows) {
  return {QStringLiteral("Add to the list, or replace it?"),
          QStringLiteral("The list already has %1 name%2. Add the dropped names to it, or replace the whole "
                         "list?")
              .arg(rows)
              .arg(pluralEnding(rows)),
          {QStringLiteral("Add"), QStringLiteral("Replace"), QStringLiteral("Cancel")}};
}

Question noteQuestion(const NameGrid& grid, qint64 modelRow) {
  const QRect place(0, 0, 320, 24);
  return {QStringLiteral("Note for \"%1\"").arg(grid.text(modelRow, Cell::Name)),
          QStringLiteral("Notes are saved with the list and included in Export."),
          {QStringLiteral("Save"), QStringLiteral("Cancel")},
          Accessory{.size = place.size(),
                    .textFields = {{place, grid.text(modelRow, Cell::Note)}},
                    .focusFirstField = true}};
}

}  // namespace

QStringList droppedCSVPaths(const QStringList& paths) {
  QStringList accepted;
  std::copy_if(paths.begin(), paths.end(), std::back_inserter(accepted), [](const QString& path) {
    const QString extension = QFileInfo(path).suffix().toLower();
    return extension == QLatin1String("csv") || extension == QLatin1String("txt");
  });
  return accepted;
}

ListEditing::ListEditing(NameList& list, Operator& person, StatusLine& statusLine)
    : _list(list), _operator(person), _statusLine(statusLine) {}

std::optional<QString> ListEditing::copy() {
  const qint64 row = _list.tableSelectedRow();
  if (row < 0) {
    _operator.beep();
    return std::nullopt;
  }
  _statusLine.setStatus(QStringLiteral("Row copied."), StatusKind::Good);
  return _list.grid().text(row, Cell::Name) + QLatin1Char('\t') + _list.grid().text(row, Cell::Note);
}

void ListEditing::paste(const QString& clipboard) {
  if (clipboard.isEmpty()) {
    _operator.beep();
    return;
  }
  std::vector<Row> people = peopleIn(clipboard);
  if (people.empty()) {
    _operator.showAlert(QStringLiteral("Nothing to Paste"),
                        QStringLiteral("The clipboard has no names. Copy one name per line (or rows from a "
                                       "spreadsheet), then paste again."));
    return;
  }
  const auto count = static_cast<qint64>(people.size());
  const qint64 first = _list.grid().rowCount();
  for (Row& person : people)
    _list.editableGrid().append(std::move(person));
  _list.emptySearchField();
  _list.selectAndShow(first);
  _list.saveGridAndPaths();
  _statusLine.setStatus(QStringLiteral("Pasted %1 name%2.").arg(count).arg(pluralEnding(count)),
                        StatusKind::Good);
  Q_EMIT _list.autoWatchStale();
}

void ListEditing::addSearchAsCSVRow() {
  const QString name = NSTrim(_list.searchText());
  if (name.isEmpty()) {
    _operator.showAlert(QStringLiteral("Nothing to Add"),
                        QStringLiteral("Type a name in the search box first, then click +."));
    return;
  }
  _list.editableGrid().append({ns_to_std(name), std::string()});
  _list.selectAndShow(_list.grid().rowCount() - 1);
  _list.saveGridAndPaths();
  _statusLine.setStatus(QStringLiteral("Added and selected: ") + name, StatusKind::Good);
  Q_EMIT _list.controlsStale();
}

qint64 ListEditing::contextTargetModelRow(qint64 clickedDisplayRow) const {
  return clickedDisplayRow >= 0 ? _list.modelRowForDisplayRow(clickedDisplayRow) : _list.tableSelectedRow();
}

void ListEditing::insertNewRow(qint64 position) {
  _list.editableGrid().insert(position, {"New name", "", "0"});
  _list.afterRowMutationSelect(position);
}

void ListEditing::ctxInsertAbove(qint64 targetModelRow) {
  insertNewRow(_list.grid().contains(targetModelRow) ? targetModelRow : 0);
}

void ListEditing::ctxInsertBelow(qint64 targetModelRow) {
  insertNewRow(_list.grid().contains(targetModelRow) ? targetModelRow + 1 : _list.grid().rowCount());
}

void ListEditing::ctxDeleteRow(qint64 targetModelRow) {
  if (!_list.grid().contains(targetModelRow)) return;
  _list.editableGrid().remove(targetModelRow);
  const qint64 last = _list.grid().rowCount() - 1;
  _list.setSelectedRow(std::min(_list.selectedRow(), last));
  _list.afterRowMutationSelect(std::min(targetModelRow, last));
}

void ListEditing::ctxEditNote(qint64 targetModelRow) {
  if (!_list.grid().contains(targetModelRow)) return;
  if (_list.grid().rows()[static_cast<std::size_t>(targetModelRow)].empty()) return;
  _operator.ask(noteQuestion(_list.grid(), targetModelRow), [this, targetModelRow](const Answer& answer) {
    if (answer.button == 0) _list.setObjectValue(NSTrim(answer.texts.value(0)), Cell::Note, targetModelRow);
  });
}

bool ListEditing::canMovePhotos(const TableDrop& drop) const {
  const qint64 target = _list.modelRowForDisplayRow(drop.displayRow);
  return _list.grid().contains(*drop.draggedRow) && _list.grid().contains(target) &&
         target != *drop.draggedRow;
}

DropAnswer ListEditing::validateDrop(const TableDrop& drop) const {
  if (!drop.draggedRow) return droppedCSVPaths(drop.paths).isEmpty() ? DropAnswer::None : DropAnswer::Copy;
  if (drop.ontoRow) return canMovePhotos(drop) ? DropAnswer::Copy : DropAnswer::None;
  return _list.canReorderRows() ? DropAnswer::Move : DropAnswer::None;
}

bool ListEditing::acceptDrop(const TableDrop& drop) {
  if (!drop.draggedRow) {
    const QStringList paths = droppedCSVPaths(drop.paths);
    if (!paths.isEmpty()) importDroppedCSVPaths(paths);
    return !paths.isEmpty();
  }
  if (!drop.ontoRow) return reorder(*drop.draggedRow, drop.displayRow);
  if (!canMovePhotos(drop)) return false;
  const QString name = _list.grid().text(_list.modelRowForDisplayRow(drop.displayRow), Cell::Name);
  QMetaObject::invokeMethod(
      this, [this, row = *drop.draggedRow, name] { Q_EMIT photoMoveRequested(row, name); },
      Qt::QueuedConnection);
  return true;
}

bool ListEditing::reorder(qint64 source, qint64 proposedRow) {
  if (!_list.canReorderRows()) {
    _statusLine.setStatus(
        QStringLiteral("To reorder rows, set the filter to Show: All, clear the search, and "
                       "use original sort order."),
        StatusKind::Neutral);
    return false;
  }
  if (!_list.grid().contains(source)) return false;
  const qint64 destination = std::clamp<qint64>(proposedRow, 0, _list.grid().rowCount());
  if (destination == source || destination == source + 1) return true;
  Row moved = _list.grid().rows()[static_cast<std::size_t>(source)];
  const qint64 position = destination > source ? destination - 1 : destination;
  _list.editableGrid().remove(source);
  _list.editableGrid().insert(position, std::move(moved));
  _list.setSelectedRow(position);
  _list.saveGridAndPaths();
  _list.selectAndShow(position);
  return true;
}

void ListEditing::importDroppedCSVPaths(const QStringList& paths) {
  if (_list.grid().isEmpty()) {
    addFromFiles(paths, false);
    return;
  }
  _operator.ask(addOrReplaceQuestion(_list.grid().rowCount()), [this, paths](const Answer& answer) {
    if (answer.button == 0) addFromFiles(paths, false);
    if (answer.button == 1) addFromFiles(paths, true);
  });
}

void ListEditing::addFromFiles(const QStringList& paths, bool replaced) {
  if (replaced) {
    _list.editableGrid().clear();
    _list.setSelectedRow(-1);
  }
  const qint64 before = _list.grid().rowCount();
  for (const QString& path : paths)
    appendFirstColumnFromCSV(path);
  const qint64 added = _list.grid().rowCount() - before;
  if (added == 0 && !replaced) return;
  _list.setSelectedRow(before);
  _list.saveGridToDisk();
  _list.afterRowMutationSelect(_list.selectedRow());
  _statusLine.setStatus(QStringLiteral("%1 %2 name%3 from dropped file.")
                            .arg(replaced ? QStringLiteral("Replaced list with") : QStringLiteral("Added"))
                            .arg(added)
                            .arg(pluralEnding(added)),
                        StatusKind::Good);
}

void ListEditing::appendFirstColumnFromCSV(const QString& path) {
  for (Row& row : readFirstColumn(path).value_or(std::vector<Row>())) {
    row.emplace_back("0");
    _list.editableGrid().append(std::move(row));
  }
}

}  // namespace ambrel
