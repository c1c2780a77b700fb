// SPDX-License-Identifier: Apache-2.0
#include "soak/Hands.h"

#include <numeric>

#include "core/base/Text.h"
#include "core/capture/FileNames.h"

namespace ambrel::soak {
namespace {

constexpr qint64 kFewestRows = 550;

std::string sanitised(const QString& name) {
  return sanitize_filename(ns_to_std(name));
}

}  // namespace

qint64 Hands::rowOf(unsigned number) const {
  const qint64 rows = list().grid().rowCount();
  return rows == 0 ? -1 : static_cast<qint64>(number) % rows;
}

QString Hands::folderName(qint64 row) const {
  return std_to_ns(sanitised(list().grid().text(row, Cell::Name)));
}

void Hands::select(int person) {
  _live.select(rowOf(static_cast<unsigned>(person)));
}

bool Hands::reconnects(Act act) {
  return act == Act::Reconnect || act == Act::SaveToDisk || act == Act::SaveToCard || act == Act::SaveToBoth;
}

bool Hands::savesToCardAlone() const {
  return _live.app && _live.app->settings().saveModeIndex() == 2;
}

std::size_t Hands::count() const {
  return std::accumulate(_counts.begin(), _counts.end(), std::size_t{0});
}

void Hands::perform(const Action& action, int person) {
  ++_counts[static_cast<std::size_t>(action.act)];
  AmbrelAppDelegate& app = *_live.app;
  const qint64 row = rowOf(static_cast<unsigned>(person));
  if (row < 0) return;
  switch (action.act) {
    case Act::ToggleTag: {
      const auto& tags = app.tags().suffixes();
      const auto index = static_cast<int>(action.choice % tags.size());
      return app.tags().suffixToggled(index, !tags[static_cast<std::size_t>(index)].on);
    }
    case Act::EditNote:
      return editNote(row, action.choice);
    case Act::SetCounter:
      return setCounter(action.choice);
    case Act::InsertRow:
      return insertRow(row, action.choice);
    case Act::DeleteRow:
      return deleteRow(row);
    case Act::ReorderRow:
      (void)app.listEditing().acceptDrop({.draggedRow = row, .displayRow = rowOf(action.choice)});
      return;
    case Act::PasteRows:
      return app.listEditing().paste(
          QStringLiteral("Late Guest %1\tat the door\nLate Guest %1 B\n").arg(action.choice));
    case Act::ToggleMarker:
      return list().toggleMarker(row);
    case Act::Search:
      return search(row);
    case Act::CycleFilter:
      return list().cycleCaptureFilter();
    case Act::CycleSort:
      return list().cycleSortMode();
    case Act::MovePhotos:
      return movePhotos(row, action.choice);
    case Act::RenameFolder:
      return renameFolder(row, action.choice);
    case Act::SaveToDisk:
      return saveTo(1);
    case Act::SaveToCard:
      return saveTo(2);
    case Act::SaveToBoth:
      return saveTo(0);
    case Act::Reconnect:
      return app.forceCameraReconnect();
    case Act::ExportList:
      if (list().grid().isEmpty()) return;
      _live.operatorSeam.willChoose(_places.exports + QStringLiteral("/list.csv"));
      return app.listTransfer().exportGrid();
    case Act::RetryBackup:
      return app.backup().retryBackupNow();
    case Act::BackUpMissing:
      return app.backup().backupMissingNow();
  }
}

void Hands::setCounter(unsigned choice) {
  // Back to numbers that are taken, or far ahead of them.
  _live.app->counterTextDidChange(QString::number(choice % 3 == 0 ? 1 : 1 + choice % 5000));
}

void Hands::editNote(qint64 row, unsigned choice) {
  if (list().grid().rows()[static_cast<std::size_t>(row)].empty()) return;
  _live.operatorSeam.willAnswer(Answer{0, {QStringLiteral("Note %1, \"quoted\"").arg(choice)}});
  _live.app->listEditing().ctxEditNote(row);
}

void Hands::insertRow(qint64 row, unsigned choice) {
  _live.app->listEditing().ctxInsertBelow(row);
  list().setObjectValue(QStringLiteral("Guest %1, of row").arg(choice), Cell::Name, row + 1);
}

void Hands::deleteRow(qint64 row) {
  if (list().grid().rowCount() > kFewestRows) _live.app->listEditing().ctxDeleteRow(row);
}

void Hands::search(qint64 row) {
  if (list().isSearchActive()) return list().clearSearch();
  list().setSearchText(list().grid().text(row, Cell::Name).left(5));
}

void Hands::movePhotos(qint64 row, unsigned choice) {
  const qint64 other = rowOf(choice);
  if (other == row) return;
  const QString target = list().grid().text(other, Cell::Name);
  if (target.trimmed().isEmpty()) return;
  _moved.insert(sanitised(list().grid().text(row, Cell::Name)));
  _moved.insert(sanitised(target));
  _live.operatorSeam.willAnswer(Answer{0, {}, std::vector<bool>(16, true)});
  _live.app->folderRename().promptMoveFromRow(row, target);
}

void Hands::renameFolder(qint64 row, unsigned choice) {
  const QString newName = QStringLiteral("Renamed %1").arg(choice);
  _moved.insert(sanitised(list().grid().text(row, Cell::Name)));
  _moved.insert(sanitised(newName));
  _live.operatorSeam.willChoose(_places.target + QLatin1Char('/') + folderName(row));
  _live.operatorSeam.willAnswer(Answer{0, {newName}});
  _live.app->folderRename().renameFolderInteractive();
}

// What the camera is told when it is connected.
void Hands::saveTo(int destination) {
  _live.app->selectDestination(destination);
  _live.app->forceCameraReconnect();
}

}  // namespace ambrel::soak
