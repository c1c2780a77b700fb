// SPDX-License-Identifier: Apache-2.0
#include "integration/list/ListModelFixture.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>

#include "core/base/Text.h"

namespace ambrel {

void ListModelFixture::startSequence(unsigned seed) {
  _random.seed(seed);
  while (list.sortMode() != SortMode::ListOrder)
    list.cycleSortMode();
  list.reset();
  model = PlainList();
  person.alerts.clear();
  person.questions.clear();
  clock.advance(StatusLine::kRevertDelay);
}

void ListModelFixture::expectSameList() {
  ASSERT_EQ(list.grid().rows(), model.rows);
  ASSERT_EQ(list.filteredRows(), model.shown);
  ASSERT_EQ(list.selectedRow(), model.selected);
  ASSERT_EQ(list.tableSelection(), model.tableSelection);
  QFile file(store.gridStorePath());
  ASSERT_EQ(file.open(QIODevice::ReadOnly), model.stored);
  if (!model.stored) return;
  ASSERT_EQ(file.readAll().toStdString(), model.storeText());
}

void ListModelFixture::expectSameAfterReload() {
  if (!model.stored) return;
  ASSERT_EQ(store.load(), model.afterReload());
}

QString ListModelFixture::anyText() {
  if (!wholeNames.isEmpty() && below(3) > 0) return anyOf(wholeNames);
  QString text;
  for (std::size_t left = below(4); left > 0; --left)
    text += anyOf(pieces);
  return text;
}

QString ListModelFixture::anyLine() {
  QString line = anyText();
  line.removeIf([](QChar c) { return c < QLatin1Char(' '); });
  return line;
}

// A file for import, and the names that it holds.
QString ListModelFixture::anyFile(std::vector<std::string>& names) {
  QByteArray bytes = "Header";
  for (std::size_t left = below(5); left > 0; --left) {
    const std::string name = below(6) == 0 ? std::string("Zo\xeb") : ns_to_std(anyLine());
    bytes += (below(2) == 0 ? "\n" : "\r\n") + QByteArray::fromStdString(quotedCell(name)) + ",ignored";
    if (!name.empty()) names.push_back(name);
  }
  QFile file(home.filePath("dropped.csv"));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
  return file.fileName();
}

void ListModelFixture::paste() {
  static const QStringList kLineEnds = {"\n", "\r\n", "\r", "\u2028"};
  const qint64 first = model.count();
  QString clipboard;
  for (std::size_t left = below(4); left > 0; --left) {
    const QString name = anyLine();
    const QString note = anyLine();
    clipboard += name + '\t' + note + "\tfurther" + kLineEnds[static_cast<qsizetype>(below(4))];
    if (!name.trimmed().isEmpty())
      model.rows.push_back({ns_to_std(name.trimmed()), ns_to_std(note.trimmed())});
  }
  editing.paste(clipboard);
  if (model.count() == first) return;
  model.search.clear();
  model.stored = true;
  model.select(first);
}

void ListModelFixture::addFromSearch() {
  editing.addSearchAsCSVRow();
  const QString name = model.search.trimmed();
  if (name.isEmpty()) return;
  model.rows.push_back({ns_to_std(name), ""});
  model.stored = true;
  model.select(model.count() - 1);
}

void ListModelFixture::insertRow() {
  const qint64 target = anyRow();
  const bool above = below(2) == 0;
  above ? editing.ctxInsertAbove(target) : editing.ctxInsertBelow(target);
  const qint64 position = model.contains(target) ? target + (above ? 0 : 1) : above ? 0 : model.count();
  model.rows.insert(model.rows.begin() + position, {"New name", "", "0"});
  model.rowsEdited(position);
}

void ListModelFixture::deleteRow() {
  const qint64 target = anyRow();
  editing.ctxDeleteRow(target);
  if (!model.contains(target)) return;
  model.rows.erase(model.rows.begin() + target);
  model.rowsEdited(target);
}

void ListModelFixture::reorder() {
  const qint64 source = anyRow();
  const qint64 proposed = anyRow();
  editing.acceptDrop({.draggedRow = source, .displayRow = proposed});
  if (!model.canReorder() || !model.contains(source)) return;
  const qint64 destination = std::clamp<qint64>(proposed, 0, model.count());
  if (destination == source || destination == source + 1) return;
  const Row moved = model.row(source);
  model.rows.insert(model.rows.begin() + destination, moved);
  model.rows.erase(model.rows.begin() + source + (destination < source ? 1 : 0));
  model.stored = true;
  model.select(destination - (destination > source ? 1 : 0));
}

void ListModelFixture::editCell() {
  const qint64 target = anyRow();
  const QString value = anyText();
  const bool isName = below(2) == 0;
  list.setObjectValue(value, isName ? Cell::Name : Cell::Note, target);
  QCoreApplication::processEvents();
  if (!model.contains(target) || (isName && value.trimmed().isEmpty())) return;
  model.setCell(target, 1, cellOf(model.row(target), 1));
  model.setCell(target, isName ? 0 : 1, ns_to_std(value));
  model.stored = true;
  if (isName) model.refilter();  // a note is searched with the next change of the search
}

void ListModelFixture::toggleMarker() {
  const qint64 target = anyRow();
  list.toggleMarker(target);
  if (!model.contains(target)) return;
  model.setCell(target, 3, cellOf(model.row(target), 3) == "1" ? "" : "1");
  model.stored = true;
}

void ListModelFixture::takePhoto() {
  const qint64 target = anyRow();
  list.markCaptureForRow(target);
  model.photographed(target);
}

void ListModelFixture::search() {
  if (below(3) == 0) {
    list.clearSearch();
    model.search.clear();
  } else {
    model.search = anyText();
    list.setSearchText(model.search);
  }
  model.refilter();
}

void ListModelFixture::filterOrSort() {
  if (below(2) == 0) {
    list.cycleCaptureFilter();
    model.filter = (model.filter + 1) % 3;
  } else {
    list.cycleSortMode();
    model.sort = (model.sort + 1) % 3;
  }
  model.refilter();
}

void ListModelFixture::selectInTable() {
  model.tableSelection.clear();
  for (qint64 row = 0; row < static_cast<qint64>(model.shown.size()); ++row)
    if (below(6) == 0) model.tableSelection.push_back(row);
  list.tableViewSelectionDidChange(model.tableSelection);
  if (!model.tableSelection.empty())
    model.selected = model.shown[static_cast<std::size_t>(model.tableSelection.back())];
}

void ListModelFixture::dropFile() {
  std::vector<std::string> names;
  const QString path = anyFile(names);
  const bool asked = model.count() > 0;
  const int answer = asked ? static_cast<int>(below(3)) : 0;
  if (asked) person.willAnswer(answer);
  EXPECT_TRUE(editing.acceptDrop({.paths = {path}}));
  if (answer == 2 || (answer == 0 && names.empty())) return;
  if (answer == 1) model.rows.clear();
  const qint64 first = model.count();
  for (const std::string& name : names)
    model.rows.push_back({name, "", "0"});
  model.rowsEdited(first);
}

void ListModelFixture::import() {
  std::vector<std::string> names;
  const QString path = anyFile(names);
  list.replaceListFromCSV(path);
  model.rows.clear();
  for (const std::string& name : names)
    model.rows.push_back({name, ""});
  model.search.clear();
  model.stored = true;
  model.shown.clear();
  model.tableSelection.clear();
  model.selected = -1;
  if (!names.empty()) model.select(0);
}

}  // namespace ambrel
