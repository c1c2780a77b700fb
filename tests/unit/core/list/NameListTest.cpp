// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QDir>

#include "ListFixture.h"
#include "core/list/NameList.h"

namespace ambrel {
namespace {

using NameListTest = ListFixture;
using Rows = std::vector<Row>;
using Selection = std::vector<qint64>;

constexpr const char* kStoreHeader = "File Name,Notes,Captured,Marker";

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}

TEST_F(NameListTest, StartsEmptyWithNobodySelected) {
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(list.captureRow(), -1);
  EXPECT_EQ(list.captureFilter(), CaptureFilter::All);
  EXPECT_EQ(list.sortMode(), SortMode::ListOrder);
  EXPECT_EQ(list.selectedQueueItemName(), std::nullopt);
}

TEST_F(NameListTest, TakesARowOutsideTheListForNone) {
  startWith({{"a"}, {"b"}});
  list.setSelectedRow(1);
  EXPECT_EQ(list.selectedRow(), 1);
  list.setSelectedRow(2);
  EXPECT_EQ(list.selectedRow(), -1);
}

// Search, filter and sort

TEST_F(NameListTest, ReselectsTheCurrentRowWithoutScrollingWhenFiltered) {
  startWith({{"Anna"}, {"Ben"}});
  list.setSelectedRow(1);
  list.applySearchFilter();
  EXPECT_EQ(steps, QStringList({text("reload"), text("select")}));
  EXPECT_EQ(list.tableSelection(), Selection{1});
}

TEST_F(NameListTest, FiltersOnEveryEditOfTheSearchText) {
  startWith({{"Anna"}, {"Ben"}});
  list.setSearchText(text("be"));
  EXPECT_EQ(shownNames(), QStringList(text("Ben")));
  EXPECT_EQ(steps, QStringList({text("reload"), text("select"), text("save paths")}));
  EXPECT_TRUE(list.isSearchActive());
}

TEST_F(NameListTest, KeepsTheCurrentRowThatTheSearchHides) {
  startWith({{"Anna"}, {"Ben"}});
  list.setSearchText(text("ben"));
  EXPECT_EQ(list.tableSelection(), Selection{});
  EXPECT_EQ(list.selectedRow(), 0);
  steps.clear();
  list.clearSearch();
  EXPECT_EQ(list.searchText(), QString());
  EXPECT_EQ(list.tableSelection(), Selection{0});
  EXPECT_EQ(steps,
            QStringList({text("search text"), text("reload"), text("select"), text("select and scroll")}));
}

TEST_F(NameListTest, SelectsARowOnlyWhereItIsShown) {
  startWith({{"Anna"}, {"Ben"}, {"Bert"}});
  list.setSearchText(text("be"));
  list.selectModelRowIfVisible(2, true);
  EXPECT_EQ(list.tableSelection(), Selection{1});
  list.selectModelRowIfVisible(0, true);
  EXPECT_EQ(list.tableSelection(), Selection{});
  EXPECT_EQ(list.selectedRow(), 0);
}

TEST_F(NameListTest, GoesRoundTheThreeCaptureFilters) {
  startWith({{"a", "", "2"}, {"b"}});
  list.cycleCaptureFilter();
  EXPECT_EQ(shownNames(), QStringList(text("a")));
  EXPECT_EQ(steps, QStringList({text("filter button"), text("status: Showing only names that have photos."),
                                text("reload"), text("select"), text("select and scroll")}));
  EXPECT_EQ(statusLine.kind(), StatusKind::Neutral);
  list.cycleCaptureFilter();
  EXPECT_EQ(list.captureFilter(), CaptureFilter::Remaining);
  EXPECT_EQ(shownNames(), QStringList(text("b")));
  EXPECT_EQ(statusLine.text(), text("Showing only names still to shoot."));
  list.cycleCaptureFilter();
  EXPECT_EQ(list.captureFilter(), CaptureFilter::All);
  EXPECT_EQ(statusLine.text(), text("Showing all names."));
}

TEST_F(NameListTest, ReturnsToListOrderAfterThreeClicksOnTheHeader) {
  startWith({{"b"}, {"A"}, {"a"}, {"B"}});
  list.cycleSortMode();
  EXPECT_EQ(shownNames(), QStringList({text("A"), text("a"), text("b"), text("B")}));
  EXPECT_EQ(steps, QStringList({text("title: Name  ↑"), text("status: Sorted A → Z."), text("reload"),
                                text("select"), text("select and scroll")}));
  list.cycleSortMode();
  EXPECT_EQ(shownNames(), QStringList({text("b"), text("B"), text("A"), text("a")}));
  EXPECT_EQ(statusLine.text(), text("Sorted Z → A."));
  steps.clear();
  list.cycleSortMode();
  EXPECT_EQ(shownNames(), QStringList({text("b"), text("A"), text("a"), text("B")}));
  EXPECT_EQ(statusLine.text(), text("Original list order."));
  EXPECT_EQ(statusLine.kind(), StatusKind::Neutral);
  EXPECT_EQ(steps.front(), text("title: Name"));
}

TEST_F(NameListTest, AllowsReorderingOnlyWhereDisplayRowsAreModelRows) {
  startWith({{"a"}, {"b"}});
  EXPECT_TRUE(list.canReorderRows());
  list.setSearchText(text("a"));
  EXPECT_FALSE(list.canReorderRows());
  list.clearSearch();
  list.cycleCaptureFilter();
  EXPECT_FALSE(list.canReorderRows());
  list.cycleCaptureFilter();
  list.cycleCaptureFilter();
  EXPECT_TRUE(list.canReorderRows());
  list.cycleSortMode();
  EXPECT_FALSE(list.canReorderRows());
}

TEST_F(NameListTest, CountsAllNamesInTheTitleOfTheirColumn) {
  EXPECT_EQ(list.nameColumnTitle(), text("Name"));
  startWith({{"a"}});
  EXPECT_EQ(list.nameColumnTitle(), text("Name      1 name"));
  startWith({{"a"}, {"b"}, {"c"}});
  list.cycleSortMode();
  list.cycleSortMode();
  list.setSearchText(text("a"));
  EXPECT_EQ(list.nameColumnTitle(), text("Name  ↓      3 names"));
}

// The selection

TEST_F(NameListTest, MakesTheRowThatTheOperatorSelectsTheCurrentOne) {
  startWith({{"a"}, {"b"}, {"ab"}});
  list.setSearchText(text("b"));
  steps.clear();
  list.tableViewSelectionDidChange({1});
  EXPECT_EQ(list.selectedRow(), 2);
  EXPECT_EQ(steps, QStringList(text("path labels")));
}

TEST_F(NameListTest, KeepsTheCurrentRowWhenTheTableSelectsNothing) {
  startWith({{"a"}, {"b"}});
  list.tableViewSelectionDidChange({});
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(list.captureRow(), 0);
}

TEST_F(NameListTest, PrefersTheRowSelectedLastOfSeveral) {
  startWith({{"a"}, {"b"}, {"c"}});
  list.tableViewSelectionDidChange({0, 1, 2}, 1);
  EXPECT_EQ(list.selectedRow(), 1);
  list.tableViewSelectionDidChange({0, 2});
  EXPECT_EQ(list.selectedRow(), 2);
  EXPECT_EQ(list.captureRow(), 2);
}

TEST_F(NameListTest, TotalsTheRowsWhenSeveralAreSelected) {
  startWith({{"a", "", "2"}, {"b", "", "0"}, {"c", "", "1"}, {}});
  list.tableViewSelectionDidChange({0, 1, 2, 3});
  EXPECT_EQ(statusLine.text(), text("Selected: 3 rows — 3 photos total."));
  EXPECT_EQ(statusLine.kind(), StatusKind::Neutral);
  list.tableViewSelectionDidChange({2, 3});
  EXPECT_EQ(statusLine.text(), text("Selected: 1 row — 1 photo total."));
}

TEST_F(NameListTest, TotalsNothingForOneRowOrNone) {
  startWith({{"a", "", "2"}});
  EXPECT_FALSE(list.showSelectionTotalsIfMultiple());
  list.tableViewSelectionDidChange({});
  EXPECT_FALSE(list.showSelectionTotalsIfMultiple());
  EXPECT_FALSE(statusWasSet());
}

TEST_F(NameListTest, StepsTheSelectionWithinTheShownRows) {
  startWith({{"a"}, {"b"}, {"c"}});
  list.moveGridSelectionBy(1);
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(steps, QStringList({text("path labels"), text("select and scroll")}));
  list.moveGridSelectionBy(1);
  list.moveGridSelectionBy(1);
  EXPECT_EQ(list.tableSelection(), Selection{2});
  list.moveGridSelectionBy(-5);
  EXPECT_EQ(list.tableSelection(), Selection{0});
}

TEST_F(NameListTest, StepsFromNoSelectionToTheFirstOrTheLastRow) {
  startWith({{"a"}, {"b"}, {"c"}});
  list.tableViewSelectionDidChange({});
  list.moveGridSelectionBy(1);
  EXPECT_EQ(list.selectedRow(), 0);
  list.tableViewSelectionDidChange({});
  list.moveGridSelectionBy(-1);
  EXPECT_EQ(list.selectedRow(), 2);
}

TEST_F(NameListTest, StepsNowhereWhenNoRowIsShown) {
  list.moveGridSelectionBy(1);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(NameListTest, FilesUnderTheSelectedRowElseUnderTheCurrentPerson) {
  startWith({{"Anna"}, {"Ben"}});
  list.tableViewSelectionDidChange({1});
  EXPECT_EQ(list.selectedQueueItemName(), "Ben");
  list.setSelectedRow(0);
  EXPECT_EQ(list.selectedQueueItemName(), "Ben");
  EXPECT_EQ(list.selectedRow(), 1);
  list.setSearchText(text("anna"));
  EXPECT_EQ(list.selectedQueueItemName(), "Ben");
}

TEST_F(NameListTest, FilesUnderNoNameWhereThereIsNone) {
  startWith({{}, {"", "note"}});
  EXPECT_EQ(list.selectedQueueItemName(), std::nullopt);
  list.tableViewSelectionDidChange({1});
  EXPECT_EQ(list.selectedQueueItemName(), std::nullopt);
}

// Editing cells

TEST_F(NameListTest, StoresANameAsItWasTypedAndFollowsWithTheOrder) {
  startWith({{"Ben"}, {"Cara"}});
  list.setObjectValue(text(" Anna "), Cell::Name, 0);
  EXPECT_EQ(list.grid().rows().front(), (Row{" Anna ", ""}));
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\n Anna ,,0,\nCara,,0,");
  EXPECT_EQ(steps, QStringList());
  QCoreApplication::processEvents();
  EXPECT_EQ(steps, QStringList({text("reload"), text("select"), text("path labels")}));
}

TEST_F(NameListTest, RefusesANameOfBlanks) {
  startWith({{"Ben"}});
  list.setObjectValue(text("   "), Cell::Name, 0);
  list.setObjectValue(QString(), Cell::Name, 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(list.grid().rows(), (Rows{{"Ben"}}));
  EXPECT_EQ(steps, QStringList());
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(NameListTest, StoresANoteAsItWasTypedEmptyOrNot) {
  startWith({{"Ben"}});
  list.setObjectValue(text(" left, early "), Cell::Note, 0);
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nBen,\" left, early \",0,");
  list.setObjectValue(QString(), Cell::Note, 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nBen,,0,");
  EXPECT_EQ(steps, QStringList());
}

TEST_F(NameListTest, EditsOnlyNamesAndNotesOfRowsInTheList) {
  startWith({{"Ben"}});
  list.setObjectValue(text("5"), Cell::Captured, 0);
  list.setObjectValue(text("1"), Cell::Marker, 0);
  list.setObjectValue(text("Anna"), Cell::Name, 1);
  list.setObjectValue(text("Anna"), Cell::Name, -1);
  EXPECT_EQ(list.grid().rows(), (Rows{{"Ben"}}));
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(NameListTest, FlipsAMarkerAndSaves) {
  startWith({{"Ben"}});
  list.toggleMarker(0);
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nBen,,,1");
  list.toggleMarker(0);
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nBen,,,");
  EXPECT_EQ(steps, QStringList({text("reload"), text("reload")}));
  list.toggleMarker(1);
  EXPECT_EQ(files.replacements, 2);
}

TEST_F(NameListTest, CountsACaptureSavesAndRefilters) {
  startWith({{"Ben", "", "2"}, {"Cara"}});
  list.cycleCaptureFilter();
  list.cycleCaptureFilter();
  list.setSelectedRow(1);
  steps.clear();
  list.markCaptureForRow(1);
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nBen,,2,\nCara,,1,");
  EXPECT_EQ(shownNames(), QStringList());
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(steps, QStringList({text("reload"), text("select"), text("path labels")}));
}

TEST_F(NameListTest, CountsNothingForARowOutsideTheList) {
  startWith({{"Ben"}});
  list.markCaptureForRow(-1);
  list.markCaptureForRow(1);
  EXPECT_EQ(list.grid().rows(), (Rows{{"Ben"}}));
  EXPECT_EQ(files.replacements, 0);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(NameListTest, CountsNoFurtherThanTheLargestNumber) {
  startWith({{"a", "", "9223372036854775807"}, {"b", "", "1"}});
  list.markCaptureForRow(0);
  EXPECT_EQ(list.grid().bytes(0, Cell::Captured), "9223372036854775807");
  list.tableViewSelectionDidChange({0, 1});
  EXPECT_EQ(statusLine.text(), text("Selected: 2 rows — 9223372036854775807 photos total."));
}

// The store and the remembered row

TEST_F(NameListTest, GoesOnWhenTheStoreCannotBeWritten) {
  startWith({{"Ben"}});
  files.fail = true;
  EXPECT_FALSE(list.saveGridToDisk());
  list.markCaptureForRow(0);
  EXPECT_EQ(list.grid().capturedForModelRow(0), 1);
}

TEST_F(NameListTest, LoadsTheStoreAndLeavesSelectionAndOrderToTheCaller) {
  storeHolds({{"Anna", "n", "3", "1"}});
  EXPECT_TRUE(list.loadGridFromDisk());
  EXPECT_EQ(list.grid().rows(), (Rows{{"Anna", "n", "3", "1"}}));
  EXPECT_TRUE(list.filteredRows().empty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(NameListTest, LeavesTheListWhenThereIsNoStore) {
  startWith({{"Ben"}});
  EXPECT_FALSE(list.loadGridFromDisk());
  EXPECT_EQ(list.grid().rows(), (Rows{{"Ben"}}));
}

TEST_F(NameListTest, EmptiesTheListWhenTheStoreCannotBeReadOrHoldsNoRow) {
  startWith({{"Ben"}});
  storeHolds({});
  EXPECT_FALSE(list.loadGridFromDisk());
  EXPECT_TRUE(list.grid().isEmpty());
  store.remove();
  ASSERT_TRUE(QDir().mkpath(store.gridStorePath()));
  startWith({{"Ben"}});
  EXPECT_FALSE(list.loadGridFromDisk());
  EXPECT_TRUE(list.grid().isEmpty());
}

TEST_F(NameListTest, SelectsTheRememberedRowOfALoadedList) {
  preferences.setLastSelectedRowIndex(1);
  list.editableGrid().replaceAll({{"a"}, {"b"}});
  list.selectSavedOrFirstCSVRow();
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(list.tableSelection(), Selection{1});
  EXPECT_EQ(steps,
            QStringList({text("reload"), text("select"), text("select and scroll"), text("save paths")}));
}

TEST_F(NameListTest, SelectsTheFirstRowWithoutARememberedOneInTheList) {
  list.editableGrid().replaceAll({{"a"}, {"b"}});
  list.selectSavedOrFirstCSVRow();
  EXPECT_EQ(list.selectedRow(), 0);
  for (const qint64 saved : {qint64{2}, qint64{-1}, qint64{5'000'000'000}}) {
    preferences.setLastSelectedRowIndex(saved);
    list.setSelectedRow(1);
    list.selectSavedOrFirstCSVRow();
    EXPECT_EQ(list.selectedRow(), 0) << saved;
  }
}

TEST_F(NameListTest, SelectsNobodyInAnEmptyListAndDoesNothingElse) {
  preferences.setLastSelectedRowIndex(0);
  list.selectSavedOrFirstCSVRow();
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(steps, QStringList());
}

TEST_F(NameListTest, ForgetsListStoreSearchAndFilterWhenResetButNotTheSort) {
  startWith({{"b", "", "1"}, {"a"}});
  list.saveGridToDisk();
  list.setCsvPath(text("/names.csv"));
  list.cycleCaptureFilter();
  list.cycleSortMode();
  list.setSearchText(text("b"));
  steps.clear();
  list.reset();
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_TRUE(list.filteredRows().empty());
  EXPECT_TRUE(list.tableSelection().empty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(list.csvPath(), QString());
  EXPECT_EQ(list.searchText(), QString());
  EXPECT_EQ(list.captureFilter(), CaptureFilter::All);
  EXPECT_EQ(list.sortMode(), SortMode::Ascending);
  EXPECT_FALSE(store.exists());
  EXPECT_EQ(steps, QStringList({text("filter button"), text("reload"), text("select"), text("search text")}));
}

// Import

TEST_F(NameListTest, ReplacesTheListByTheFirstColumnOfAFile) {
  startWith({{"old", "note", "9", "1"}});
  list.setSearchText(text("old"));
  steps.clear();
  EXPECT_EQ(list.importFirstColumnFromCSV(writeFile(text("names.csv"), "Name,Class\nAnna,3a\nBen,3b\n")), 2);
  EXPECT_EQ(list.grid().rows(), (Rows{{"Anna", ""}, {"Ben", ""}}));
  EXPECT_EQ(list.searchText(), QString());
  EXPECT_EQ(list.selectedRow(), 0);
  EXPECT_EQ(steps, QStringList({text("search text"), text("reload"), text("reload"), text("select"),
                                text("select and scroll"), text("save paths"), text("path labels"),
                                text("status: Imported 2 names (first column only)."), text("auto watch")}));
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
  EXPECT_EQ(files.replacements, 0);
}

TEST_F(NameListTest, SaysNamesEvenForOne) {
  list.importFirstColumnFromCSV(writeFile(text("names.csv"), "Name\nAnna"));
  EXPECT_EQ(statusLine.text(), text("Imported 1 names (first column only)."));
}

TEST_F(NameListTest, IsEmptyAfterImportingAFileThatCannotBeRead) {
  startWith({{"Ben"}});
  EXPECT_EQ(list.importFirstColumnFromCSV(path(text("missing.csv"))), 0);
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_TRUE(list.filteredRows().empty());
  EXPECT_EQ(list.tableSelection(), Selection{});
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(statusLine.text(), text("Imported 0 names (first column only)."));
}

TEST_F(NameListTest, RemembersTheImportedFileAndSavesTheList) {
  const QString names = writeFile(text("names.csv"), "Name\nAnna");
  EXPECT_EQ(list.replaceListFromCSV(names), 1);
  EXPECT_EQ(list.csvPath(), names);
  EXPECT_EQ(storedList(), QByteArray(kStoreHeader) + "\nAnna,,0,");
  EXPECT_EQ(steps.back(), text("save paths"));
}

}  // namespace
}  // namespace ambrel
