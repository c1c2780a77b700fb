// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>

#include "ListFixture.h"
#include "core/list/ListEditing.h"
#include "support/ScriptedOperator.h"

namespace ambrel {
namespace {

using Rows = std::vector<Row>;

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}

// What every insertion and removal of rows ends with.
QStringList commonTail() {
  return {text("auto watch"), text("search text"),       text("save paths"),  text("reload"),
          text("select"),     text("select and scroll"), text("path labels"), text("controls")};
}

class ListEditingTest : public ListFixture {
 protected:
  QString dropped(const char* name, const QByteArray& bytes) const { return writeFile(text(name), bytes); }

  ScriptedOperator person;
  ListEditing editing{list, person, statusLine};
};

// Copy and paste

TEST_F(ListEditingTest, CopiesTheSelectedRowWithATabBetweenNameAndNote) {
  startWith({{"Anna", "front, row"}, {"Ben"}});
  EXPECT_EQ(editing.copy(), text("Anna\tfront, row"));
  EXPECT_EQ(steps, QStringList(text("status: Row copied.")));
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
  list.tableViewSelectionDidChange({1});
  EXPECT_EQ(editing.copy(), text("Ben\t"));
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(ListEditingTest, BeepsWhenNoRowIsSelectedToCopy) {
  startWith({{"Anna"}});
  list.tableViewSelectionDidChange({});
  EXPECT_EQ(editing.copy(), std::nullopt);
  EXPECT_EQ(person.beeps, 1);
  EXPECT_FALSE(statusWasSet());
}

TEST_F(ListEditingTest, PastesOnePersonPerLineAndSelectsTheFirst) {
  startWith({{"Zoe"}});
  list.setSearchText(text("zoe"));
  steps.clear();
  editing.paste(text("Anna\tfront row\nBen\n\n  \nCara"));
  EXPECT_EQ(list.grid().rows(), (Rows{{"Zoe"}, {"Anna", "front row"}, {"Ben", ""}, {"Cara", ""}}));
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(steps,
            QStringList({text("search text"), text("reload"), text("select"), text("select and scroll"),
                         text("save paths"), text("status: Pasted 3 names."), text("auto watch")}));
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nZoe,,0,\nAnna,front row,0,\nBen,,0,\nCara,,0,");
}

TEST_F(ListEditingTest, PastesLinesThatEndInAnyWay) {
  editing.paste(text("a\r\nb\rc\u2028d\u2029e\u0085f\vg\fh"));
  EXPECT_EQ(shownNames(), text("a b c d e f g h").split(text(" ")));
}

TEST_F(ListEditingTest, PastesTrimmedNamesAndNotesAndNoFurtherColumns) {
  editing.paste(text("  Anna \t left\tearly\n\tnobody\nFile Name\n\"Smith, Ben\"\nAnna"));
  EXPECT_EQ(list.grid().rows(),
            (Rows{{"Anna", "left"}, {"File Name", ""}, {"\"Smith, Ben\"", ""}, {"Anna", ""}}));
}

struct Clipboard {
  const char* from;
  QString text;
  Rows rows;
};

TEST_F(ListEditingTest, PastesWhatOtherProgramsCopy) {
  const std::vector<Clipboard> clipboards = {
      {"a spreadsheet",
       text("Anna\tfront\r\nBen\t\r\n\t\r\nCara\tlate\tx\r\n"),
       {{"Anna", "front"}, {"Ben", ""}, {"Cara", "late"}}},
      {"one column of a spreadsheet", text("Anna\r\nBen\r\n"), {{"Anna", ""}, {"Ben", ""}}},
      {"a spreadsheet's cell of two lines",
       text("\"Anna\nMaria\"\tx\r\n"),
       {{"\"Anna", ""}, {"Maria\"", "x"}}},
      {"a text editor", text("Anna\n\n  Ben  \nCara"), {{"Anna", ""}, {"Ben", ""}, {"Cara", ""}}},
      {"a web table",
       text("Anna\u00A0\tfront\u00A0row\nJean\u00A0Luc\t\u00A0\n\u00A0\tnobody\n"),
       {{"Anna", "front\u00A0row"}, {"Jean\u00A0Luc", ""}}},
      {"a word processor",
       text("Anna\vBen\u2029Cara\u2028\u2029"),
       {{"Anna", ""}, {"Ben", ""}, {"Cara", ""}}},
      {"an old editor", text("Anna\rBen\r"), {{"Anna", ""}, {"Ben", ""}}},
      {"a file with a byte-order mark", QChar(0xFEFF) + text("Anna\nBen"), {{"\uFEFFAnna", ""}, {"Ben", ""}}},
      {"an East Asian editor", text("\u3000山田\u3000太郎\u3000\n"), {{"山田\u3000太郎", ""}}},
      {"a CSV file",
       text("Name,Class\n\"Smith, Anna\",3a"),
       {{"Name,Class", ""}, {"\"Smith, Anna\",3a", ""}}},
  };
  for (const Clipboard& clipboard : clipboards) {
    startWith({});
    editing.paste(clipboard.text);
    EXPECT_EQ(list.grid().rows(), clipboard.rows) << clipboard.from;
  }
}

TEST_F(ListEditingTest, SaysOneNameInTheSingular) {
  editing.paste(text("Anna"));
  EXPECT_EQ(statusLine.text(), text("Pasted 1 name."));
}

TEST_F(ListEditingTest, SaysThatTheClipboardHasNoNames) {
  startWith({{"Zoe"}});
  editing.paste(text("\n  \n\t note only\r\n"));
  EXPECT_EQ(
      person.alerts,
      (std::vector<ScriptedOperator::Alert>{
          {text("Nothing to Paste"), text("The clipboard has no names. Copy one name per line (or rows from "
                                          "a spreadsheet), then paste again.")}}));
  EXPECT_EQ(list.grid().rowCount(), 1);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(ListEditingTest, BeepsWhenThereIsNothingToPaste) {
  editing.paste(QString());
  EXPECT_EQ(person.beeps, 1);
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(ListEditingTest, AddsTheSearchTextAsANameAndKeepsTheSearch) {
  startWith({{"Anna B"}, {"Ben"}});
  list.setSearchText(text(" anna "));
  steps.clear();
  editing.addSearchAsCSVRow();
  EXPECT_EQ(list.grid().rows().back(), (Row{"anna", ""}));
  EXPECT_EQ(shownNames(), QStringList({text("Anna B"), text("anna")}));
  EXPECT_EQ(list.selectedRow(), 2);
  EXPECT_EQ(list.searchText(), text(" anna "));
  EXPECT_EQ(steps, QStringList({text("reload"), text("select"), text("select and scroll"), text("save paths"),
                                text("status: Added and selected: anna"), text("controls")}));
  EXPECT_EQ(files.replacements, 1);
}

TEST_F(ListEditingTest, SaysThatThereIsNothingToAdd) {
  list.setSearchText(text("  "));
  editing.addSearchAsCSVRow();
  EXPECT_EQ(person.alerts,
            (std::vector<ScriptedOperator::Alert>{
                {text("Nothing to Add"), text("Type a name in the search box first, then click +.")}}));
  EXPECT_TRUE(list.grid().isEmpty());
}

// The context menu

TEST_F(ListEditingTest, TargetsTheClickedRowElseTheSelectedOne) {
  startWith({{"a"}, {"b"}, {"ab"}});
  list.setSearchText(text("b"));
  list.tableViewSelectionDidChange({0});
  EXPECT_EQ(editing.contextTargetModelRow(1), 2);
  EXPECT_EQ(editing.contextTargetModelRow(-1), 1);
  list.tableViewSelectionDidChange({});
  EXPECT_EQ(editing.contextTargetModelRow(-1), -1);
  EXPECT_EQ(editing.contextTargetModelRow(9), -1);
}

TEST_F(ListEditingTest, InsertsANewNameAboveOrBelowItsTarget) {
  startWith({{"a"}, {"b"}});
  editing.ctxInsertAbove(1);
  EXPECT_EQ(list.grid().rows(), (Rows{{"a"}, {"New name", "", "0"}, {"b"}}));
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(steps, commonTail());
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\na,,0,\nNew name,,0,\nb,,0,");
  editing.ctxInsertBelow(2);
  EXPECT_EQ(list.selectedRow(), 3);
}

TEST_F(ListEditingTest, InsertsAtTheEndsWithoutATarget) {
  startWith({{"a"}, {"b"}});
  editing.ctxInsertAbove(-1);
  EXPECT_EQ(list.selectedRow(), 0);
  editing.ctxInsertBelow(-1);
  EXPECT_EQ(list.selectedRow(), 3);
  EXPECT_EQ(shownNames(), QStringList({text("New name"), text("a"), text("b"), text("New name")}));
}

TEST_F(ListEditingTest, DeletesARowAndSelectsTheOneInItsPlace) {
  startWith({{"a"}, {"b"}, {"c"}});
  list.setSelectedRow(2);
  editing.ctxDeleteRow(0);
  EXPECT_EQ(shownNames(), QStringList({text("b"), text("c")}));
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(steps, commonTail());
  editing.ctxDeleteRow(1);
  EXPECT_EQ(list.selectedRow(), 0);
}

TEST_F(ListEditingTest, LeavesAnEmptyListAfterDeletingItsOnlyRow) {
  startWith({{"a"}});
  editing.ctxDeleteRow(0);
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker");
}

TEST_F(ListEditingTest, DeletesNothingWithoutATarget) {
  startWith({{"a"}});
  editing.ctxDeleteRow(-1);
  editing.ctxDeleteRow(1);
  EXPECT_EQ(list.grid().rowCount(), 1);
  EXPECT_EQ(steps, QStringList());
}

// Reordering

TEST_F(ListEditingTest, MovesARowBetweenOthers) {
  startWith({{"0"}, {"1"}, {"2"}, {"3"}, {"4"}, {"5"}, {"6"}});
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 2, .displayRow = 5}));
  EXPECT_EQ(shownNames(), text("0 1 3 4 2 5 6").split(text(" ")));
  EXPECT_EQ(list.selectedRow(), 4);
  EXPECT_EQ(steps,
            QStringList({text("save paths"), text("reload"), text("select"), text("select and scroll")}));
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 4, .displayRow = 0}));
  EXPECT_EQ(shownNames(), text("2 0 1 3 4 5 6").split(text(" ")));
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(files.replacements, 2);
}

TEST_F(ListEditingTest, ClampsTheDestinationToTheList) {
  startWith({{"0"}, {"1"}, {"2"}});
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 0, .displayRow = 99}));
  EXPECT_EQ(shownNames(), text("1 2 0").split(text(" ")));
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 2, .displayRow = -1}));
  EXPECT_EQ(shownNames(), text("0 1 2").split(text(" ")));
}

TEST_F(ListEditingTest, MovesNothingWhenARowIsDroppedWhereItIs) {
  startWith({{"0"}, {"1"}, {"2"}, {"3"}});
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 2, .displayRow = 2}));
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 2, .displayRow = 3}));
  EXPECT_EQ(shownNames(), text("0 1 2 3").split(text(" ")));
  EXPECT_EQ(steps, QStringList());
}

TEST_F(ListEditingTest, RefusesToReorderWhatIsNotShownAsItIs) {
  startWith({{"a"}, {"ab"}});
  list.setSearchText(text("a"));
  const TableDrop drop{.draggedRow = 0, .displayRow = 2};
  EXPECT_EQ(editing.validateDrop(drop), DropAnswer::None);
  EXPECT_FALSE(editing.acceptDrop(drop));
  EXPECT_EQ(
      statusLine.text(),
      text("To reorder rows, set the filter to Show: All, clear the search, and use original sort order."));
  EXPECT_EQ(statusLine.kind(), StatusKind::Neutral);
  EXPECT_EQ(shownNames(), QStringList({text("a"), text("ab")}));
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(ListEditingTest, RefusesARowThatIsNotInTheList) {
  startWith({{"a"}, {"b"}});
  EXPECT_FALSE(editing.acceptDrop({.draggedRow = 2, .displayRow = 0}));
  EXPECT_FALSE(editing.acceptDrop({.draggedRow = -1, .displayRow = 0}));
  EXPECT_EQ(shownNames(), QStringList({text("a"), text("b")}));
}

// Photos dragged to another name

TEST_F(ListEditingTest, AsksForAPhotoMoveOnceTheDropHasEnded) {
  startWith({{"a"}, {"b"}});
  std::vector<std::pair<qint64, QString>> moves;
  QObject::connect(&editing, &ListEditing::photoMoveRequested,
                   [&](qint64 row, const QString& name) { moves.emplace_back(row, name); });
  EXPECT_TRUE(editing.acceptDrop({.draggedRow = 0, .ontoRow = true, .displayRow = 1}));
  EXPECT_TRUE(moves.empty());
  QCoreApplication::processEvents();
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(moves.front(), std::pair(qint64{0}, text("b")));
}

TEST_F(ListEditingTest, TakesARowOntoAnotherButNotOntoItself) {
  startWith({{"b"}, {"a"}});
  list.cycleSortMode();  // display row 0 is model row 1
  EXPECT_EQ(editing.validateDrop({.draggedRow = 0, .ontoRow = true, .displayRow = 0}), DropAnswer::Copy);
  for (const qint64 displayRow : {1, 2, -1}) {
    const TableDrop drop{.draggedRow = 0, .ontoRow = true, .displayRow = displayRow};
    EXPECT_EQ(editing.validateDrop(drop), DropAnswer::None);
    EXPECT_FALSE(editing.acceptDrop(drop));
  }
  EXPECT_FALSE(editing.acceptDrop({.draggedRow = 7, .ontoRow = true, .displayRow = 0}));
}

// Dropped files

TEST_F(ListEditingTest, AcceptsListsByTheirExtensionInAnyLetterCase) {
  const QStringList paths = {text("/a.CSV"), text("/b.txt"),     text("/c.xlsx"),
                             text("/d"),     text("/e.csv.zip"), text("/f.x.csv")};
  EXPECT_EQ(droppedCSVPaths(paths), QStringList({text("/a.CSV"), text("/b.txt"), text("/f.x.csv")}));
}

TEST_F(ListEditingTest, AnswersADragByWhatItCarries) {
  startWith({{"a"}, {"b"}});
  EXPECT_EQ(editing.validateDrop({.draggedRow = 0, .displayRow = 2}), DropAnswer::Move);
  EXPECT_EQ(editing.validateDrop({.paths = {text("/a.txt")}}), DropAnswer::Copy);
  EXPECT_EQ(editing.validateDrop({.paths = {text("/a.txt")}, .ontoRow = true}), DropAnswer::Copy);
  EXPECT_EQ(editing.validateDrop({.paths = {text("/a.xlsx")}}), DropAnswer::None);
  EXPECT_EQ(editing.validateDrop({}), DropAnswer::None);
  EXPECT_FALSE(editing.acceptDrop({.paths = {text("/a.xlsx")}}));
}

TEST_F(ListEditingTest, AddsDroppedFilesToAnEmptyListWithoutAsking) {
  EXPECT_TRUE(editing.acceptDrop(
      {.paths = {dropped("one.csv", "Name\nAnna,x\n,\nBen\r\n"), dropped("two.xlsx", "Name\nNobody"),
                 dropped("three.TXT", "Name\nCara")}}));
  EXPECT_EQ(list.grid().rows(), (Rows{{"Anna", "", "0"}, {"Ben", "", "0"}, {"Cara", "", "0"}}));
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(steps, commonTail() + QStringList(text("status: Added 3 names from dropped file.")));
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
}

TEST_F(ListEditingTest, AddsDroppedNamesBehindTheList) {
  startWith({{"Zoe", "n", "4", "1"}});
  person.willAnswer(0);
  editing.importDroppedCSVPaths({dropped("one.csv", "Name\nAnna")});
  ASSERT_EQ(person.questions.size(), 1u);
  EXPECT_EQ(person.questions.front().title, text("Add to the list, or replace it?"));
  EXPECT_EQ(person.questions.front().message,
            text("The list already has 1 name. Add the dropped names to it, or replace the whole list?"));
  EXPECT_EQ(person.questions.front().buttons, QStringList({text("Add"), text("Replace"), text("Cancel")}));
  EXPECT_EQ(list.grid().rows(), (Rows{{"Zoe", "n", "4", "1"}, {"Anna", "", "0"}}));
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(statusLine.text(), text("Added 1 name from dropped file."));
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nZoe,n,4,1\nAnna,,0,");
}

TEST_F(ListEditingTest, ReplacesTheListByDroppedNames) {
  startWith({{"Zoe"}, {"Yan"}});
  person.willAnswer(1);
  editing.importDroppedCSVPaths({dropped("one.csv", "Name\nAnna\nBen")});
  EXPECT_EQ(person.questions.front().message,
            text("The list already has 2 names. Add the dropped names to it, or replace the whole list?"));
  EXPECT_EQ(shownNames(), QStringList({text("Anna"), text("Ben")}));
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(statusLine.text(), text("Replaced list with 2 names from dropped file."));
}

TEST_F(ListEditingTest, EmptiesTheListWhenItIsReplacedByNoNames) {
  startWith({{"Zoe"}});
  person.willAnswer(1);
  editing.importDroppedCSVPaths({path(text("missing.csv"))});
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(statusLine.text(), text("Replaced list with 0 names from dropped file."));
}

TEST_F(ListEditingTest, ChangesNothingWhenNoNamesAreAddedOrTheOperatorCancels) {
  startWith({{"Zoe"}});
  person.willAnswer(0);
  editing.importDroppedCSVPaths({dropped("empty.csv", "Name\n")});
  person.willAnswer(2);
  editing.importDroppedCSVPaths({dropped("one.csv", "Name\nAnna")});
  EXPECT_EQ(list.grid().rows(), (Rows{{"Zoe"}}));
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(steps, QStringList());
  EXPECT_EQ(files.replacements, 0);
}

// The note dialog

TEST_F(ListEditingTest, AsksForANoteInAFieldThatHoldsThePresentOne) {
  startWith({{"Anna \"A\"", "left early"}});
  person.willAnswer(1);
  editing.ctxEditNote(0);
  ASSERT_EQ(person.questions.size(), 1U);
  const Question& question = person.questions[0];
  EXPECT_EQ(question.title, text("Note for \"Anna \"A\"\""));
  EXPECT_EQ(question.message, text("Notes are saved with the list and included in Export."));
  EXPECT_EQ(question.buttons, QStringList({text("Save"), text("Cancel")}));
  ASSERT_TRUE(question.accessory && question.accessory->textFields.size() == 1);
  EXPECT_EQ(question.accessory->textFields[0].text, text("left early"));
  EXPECT_EQ(question.accessory->textFields[0].rect, QRect(0, 0, 320, 24));
  EXPECT_TRUE(question.accessory->focusFirstField);
  EXPECT_EQ(list.grid().text(0, Cell::Note), text("left early"));
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(ListEditingTest, SavesTheNoteTrimmedAndRefreshesNothingElse) {
  startWith({{"Anna"}, {"Ben"}});
  person.willAnswer(Answer{0, {text("  glasses off \n")}});
  editing.ctxEditNote(1);
  EXPECT_EQ(list.grid().rows(), (Rows{{"Anna"}, {"Ben", "glasses off"}}));
  EXPECT_TRUE(storedList().contains("glasses off"));
  EXPECT_EQ(steps, QStringList());
}

TEST_F(ListEditingTest, AsksForNoNoteOfARowThatIsNotThereOrHasNoCells) {
  startWith({{"Anna"}, {}});
  editing.ctxEditNote(-1);
  editing.ctxEditNote(1);
  editing.ctxEditNote(2);
  EXPECT_TRUE(person.questions.empty());
}

}  // namespace
}  // namespace ambrel
