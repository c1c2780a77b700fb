// SPDX-License-Identifier: Apache-2.0
// The list against a model that does everything the slow and plain way: 10,000 random sequences of what an
// operator can do to it. After every step both have the same rows, show the same rows in the same order with
// the same selection, and the store holds the list.
#include <QCollator>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

#include "core/base/Locations.h"
#include "core/base/PosixFiles.h"
#include "core/base/Text.h"
#include "core/list/ListEditing.h"
#include "core/list/NameList.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel {
namespace {

constexpr unsigned kSequences = 2'500;  // of each of four tests, which can run side by side
constexpr int kSteps = 14;
constexpr std::size_t kMostRows = 40;

using Rows = std::vector<Row>;
using Indices = std::vector<qint64>;

std::string cell(const Row& row, std::size_t index, const char* missing = "") {
  return index < row.size() ? row[index] : missing;
}

std::string quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string written = "\"";
  for (const char c : text)
    written += c == '"' ? std::string("\"\"") : std::string(1, c);
  return written + '"';
}

// What the list is to be: no caches, no indexes, every rule row by row.
class Model {
 public:
  Rows rows;
  Indices shown;
  Indices tableSelection;  // display rows
  qint64 selected = -1;
  QString search;
  int filter = 0;
  int sort = 0;
  bool stored = false;

  qint64 count() const { return static_cast<qint64>(rows.size()); }
  bool contains(qint64 row) const { return row >= 0 && row < count(); }
  Row& row(qint64 index) { return rows[static_cast<std::size_t>(index)]; }
  bool canReorder() const { return search.trimmed().isEmpty() && filter == 0 && sort == 0; }

  void refilter() {
    shown.clear();
    for (qint64 index = 0; index < count(); ++index)
      if (isShown(row(index))) shown.push_back(index);
    if (sort != 0)
      std::stable_sort(shown.begin(), shown.end(), [this](qint64 a, qint64 b) { return before(a, b); });
    const auto found = std::find(shown.begin(), shown.end(), selected);
    tableSelection.clear();
    if (found != shown.end()) tableSelection.push_back(found - shown.begin());
  }
  void select(qint64 index) {
    selected = contains(index) ? index : -1;
    refilter();
  }
  void setCell(qint64 index, std::size_t column, const std::string& value) {
    if (row(index).size() <= column) row(index).resize(column + 1);
    row(index)[column] = value;
  }
  // The end of every edit that adds or removes rows.
  void rowsEdited(qint64 index) {
    search.clear();
    stored = true;
    select(std::min(index, count() - 1));
  }

  std::string storeText() const {
    std::string text = "File Name,Notes,Captured,Marker";
    for (const Row& each : rows)
      text += '\n' + quoted(cell(each, 0)) + ',' + quoted(cell(each, 1)) + ',' + quoted(cell(each, 2, "0")) +
              ',' + quoted(cell(each, 3));
    return text;
  }
  Rows afterReload() const {
    Rows loaded;
    for (const Row& each : rows) {
      if (cell(each, 0).empty()) continue;
      const std::string captured = cell(each, 2);
      loaded.push_back({cell(each, 0), cell(each, 1), captured.empty() ? "0" : captured, cell(each, 3)});
    }
    return loaded;
  }

 private:
  bool isShown(const Row& each) const {
    const bool photographed = std::atol(cell(each, 2).c_str()) >= 1;
    if ((filter == 1 && !photographed) || (filter == 2 && photographed)) return false;
    QString haystack = std_to_ns(cell(each, 0));
    if (each.size() >= 2) haystack += QLatin1Char(' ') + std_to_ns(each[1]);
    return haystack.toLower().contains(search.trimmed().toLower());
  }
  bool before(qint64 a, qint64 b) {
    const int order = _collator.compare(std_to_ns(cell(row(a), 0)), std_to_ns(cell(row(b), 0)));
    return sort == 1 ? order < 0 : order > 0;
  }

  QCollator _collator = [] {
    QCollator collator{QLocale(QLocale::English)};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
  }();
};

// Waiting for the disk proves nothing here.
class UnflushedFiles : public PosixFiles {
 public:
  Result<void> flush(const QString&) override { return {}; }
};

class ListModelTest : public ::testing::TestWithParam<unsigned> {
 protected:
  std::size_t below(std::size_t count) { return _random() % count; }
  qint64 anyRow() { return static_cast<qint64>(below(model.rows.size() + 2)) - 1; }

  QString anyText() {
    static const QStringList kPieces = {"Anna", "anna", "Ben", " ",  "É", "ß", "Zoë",
                                        "Łu",   "😀",    ",",   "\"", "b", "-"};
    QString text;
    for (std::size_t left = below(4); left > 0; --left)
      text += kPieces[static_cast<qsizetype>(below(static_cast<std::size_t>(kPieces.size())))];
    return text;
  }

  // A file for import, and the names that it holds.
  QString anyFile(std::vector<std::string>& names) {
    QByteArray bytes = "Header";
    for (std::size_t left = below(5); left > 0; --left) {
      const std::string name = below(6) == 0 ? std::string("Zo\xeb") : ns_to_std(anyText());
      bytes += (below(2) == 0 ? "\n" : "\r\n") + QByteArray::fromStdString(quoted(name)) + ",ignored";
      if (!name.empty()) names.push_back(name);
    }
    QFile file(home.filePath("dropped.csv"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return file.fileName();
  }

  void paste() {
    static const QStringList kLineEnds = {"\n", "\r\n", "\r", "\u2028"};
    const qint64 first = model.count();
    QString clipboard;
    for (std::size_t left = below(4); left > 0; --left) {
      const QString name = anyText();
      const QString note = anyText();
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

  void addFromSearch() {
    editing.addSearchAsCSVRow();
    const QString name = model.search.trimmed();
    if (name.isEmpty()) return;
    model.rows.push_back({ns_to_std(name), ""});
    model.stored = true;
    model.select(model.count() - 1);
  }

  void insertRow() {
    const qint64 target = anyRow();
    const bool above = below(2) == 0;
    above ? editing.ctxInsertAbove(target) : editing.ctxInsertBelow(target);
    const qint64 position = model.contains(target) ? target + (above ? 0 : 1) : above ? 0 : model.count();
    model.rows.insert(model.rows.begin() + position, {"New name", "", "0"});
    model.rowsEdited(position);
  }

  void deleteRow() {
    const qint64 target = anyRow();
    editing.ctxDeleteRow(target);
    if (!model.contains(target)) return;
    model.rows.erase(model.rows.begin() + target);
    model.rowsEdited(target);
  }

  void reorder() {
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

  void editCell() {
    const qint64 target = anyRow();
    const QString value = anyText();
    const bool isName = below(2) == 0;
    list.setObjectValue(value, isName ? Cell::Name : Cell::Note, target);
    QCoreApplication::processEvents();
    if (!model.contains(target) || (isName && value.trimmed().isEmpty())) return;
    model.setCell(target, 1, cell(model.row(target), 1));
    model.setCell(target, isName ? 0 : 1, ns_to_std(value));
    model.stored = true;
    if (isName) model.refilter();  // a note is searched with the next change of the search
  }

  void toggleMarker() {
    const qint64 target = anyRow();
    list.toggleMarker(target);
    if (!model.contains(target)) return;
    model.setCell(target, 3, cell(model.row(target), 3) == "1" ? "" : "1");
    model.stored = true;
  }

  void takePhoto() {
    const qint64 target = anyRow();
    list.markCaptureForRow(target);
    if (!model.contains(target)) return;
    model.setCell(target, 2, std::to_string(std::atol(cell(model.row(target), 2).c_str()) + 1));
    model.stored = true;
    model.refilter();
  }

  void search() {
    if (below(3) == 0) {
      list.clearSearch();
      model.search.clear();
    } else {
      model.search = anyText();
      list.setSearchText(model.search);
    }
    model.refilter();
  }

  void filterOrSort() {
    if (below(2) == 0) {
      list.cycleCaptureFilter();
      model.filter = (model.filter + 1) % 3;
    } else {
      list.cycleSortMode();
      model.sort = (model.sort + 1) % 3;
    }
    model.refilter();
  }

  void selectInTable() {
    model.tableSelection.clear();
    for (qint64 row = 0; row < static_cast<qint64>(model.shown.size()); ++row)
      if (below(6) == 0) model.tableSelection.push_back(row);
    list.tableViewSelectionDidChange(model.tableSelection);
    if (!model.tableSelection.empty())
      model.selected = model.shown[static_cast<std::size_t>(model.tableSelection.back())];
  }

  void dropFile() {
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

  void import() {
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

  void step() {
    using Step = void (ListModelTest::*)();
    static constexpr Step kStepKinds[] = {
        &ListModelTest::paste,        &ListModelTest::addFromSearch, &ListModelTest::insertRow,
        &ListModelTest::deleteRow,    &ListModelTest::reorder,       &ListModelTest::editCell,
        &ListModelTest::editCell,     &ListModelTest::toggleMarker,  &ListModelTest::takePhoto,
        &ListModelTest::takePhoto,    &ListModelTest::search,        &ListModelTest::search,
        &ListModelTest::filterOrSort, &ListModelTest::filterOrSort,  &ListModelTest::selectInTable,
        &ListModelTest::dropFile,     &ListModelTest::import};
    const Step chosen =
        model.rows.size() > kMostRows ? &ListModelTest::import : kStepKinds[below(std::size(kStepKinds))];
    (this->*chosen)();
  }

  void expectSame() {
    ASSERT_EQ(list.grid().rows(), model.rows);
    ASSERT_EQ(list.filteredRows(), model.shown);
    ASSERT_EQ(list.selectedRow(), model.selected);
    ASSERT_EQ(list.tableSelection(), model.tableSelection);
    QFile file(store.gridStorePath());
    ASSERT_EQ(file.open(QIODevice::ReadOnly), model.stored);
    if (!model.stored) return;
    ASSERT_EQ(file.readAll().toStdString(), model.storeText());
  }

  void startSequence(unsigned seed) {
    _random.seed(seed);
    while (list.sortMode() != SortMode::ListOrder)
      list.cycleSortMode();
    list.reset();
    model = Model();
  }

  QTemporaryDir home;
  Locations locations = Locations::below(home.path());
  UnflushedFiles files;
  TestClock clock;
  ScriptedOperator person;
  StatusLine statusLine{clock, [] { return Readiness{}; }};
  Preferences preferences{locations.preferencesFile};
  ListStore store{files, locations};
  NameList list{store, preferences, statusLine};
  ListEditing editing{list, person, statusLine};
  Model model;

 private:
  std::mt19937 _random;
};

TEST_P(ListModelTest, IsWhatThePlainModelIsAfterEveryStep) {
  for (unsigned seed = GetParam() * kSequences; seed < (GetParam() + 1) * kSequences; ++seed) {
    startSequence(seed);
    for (int number = 0; number < kSteps; ++number) {
      step();
      expectSame();
      if (HasFatalFailure()) FAIL() << "sequence " << seed << ", step " << number;
    }
    if (model.stored) {
      ASSERT_EQ(store.load(), model.afterReload()) << "sequence " << seed;
    }
    person.alerts.clear();
    person.questions.clear();
    clock.advance(StatusLine::kRevertDelay);
  }
}

INSTANTIATE_TEST_SUITE_P(OfTenThousandSequences, ListModelTest, ::testing::Range(0U, 4U));

}  // namespace
}  // namespace ambrel
