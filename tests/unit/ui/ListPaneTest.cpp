// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include "ListFixture.h"
#include "ui/ListPane.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

class ListPaneTest : public ListFixture {
 protected:
  ListPaneTest() {
    _pane.resize(560, 600);
    _pane.show();
  }
  NameTable* table() { return _pane.table(); }
  AmbrelDropZone* dropZone() { return _pane.findChild<AmbrelDropZone*>(); }
  AmbrelButton* button(const QString& title) {
    for (AmbrelButton* candidate : _pane.findChildren<AmbrelButton*>())
      if (candidate->text() == title) return candidate;
    return nullptr;
  }
  void clickCell(int row, NameColumn column) {
    const QModelIndex index = table()->model()->index(row, static_cast<int>(column));
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, table()->visualRect(index).center());
  }
  void clickHeader(NameColumn column) {
    QHeaderView* header = table()->horizontalHeader();
    const int x = header->sectionViewportPosition(static_cast<int>(column)) + 10;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, 10));
  }

  ListPane _pane{_list, _editing, nullptr};
};

TEST_F(ListPaneTest, ShowsTheDropZoneExactlyWhileTheListIsEmpty) {
  EXPECT_TRUE(dropZone()->isVisible());
  EXPECT_FALSE(table()->isVisible());
  fillWithPeople(1);
  EXPECT_FALSE(dropZone()->isVisible());
  EXPECT_TRUE(table()->isVisible());
  fill({});
  EXPECT_TRUE(dropZone()->isVisible());
}

TEST_F(ListPaneTest, KeepsTheTableWhenASearchFindsNothing) {
  fillWithPeople(2);
  _list.setSearchText(QStringLiteral("nobody"));
  EXPECT_TRUE(table()->isVisible());
}

TEST_F(ListPaneTest, AClickOnTheDropZoneAsksForAnImport) {
  QSignalSpy imports(&_pane, &ListPane::importRequested);
  QTest::mouseClick(dropZone(), Qt::LeftButton);
  EXPECT_EQ(imports.count(), 1);
}

TEST_F(ListPaneTest, TakesAListFileDroppedOntoTheEmptyList) {
  QFile list(_home.filePath(QStringLiteral("names.csv")));
  ASSERT_TRUE(list.open(QIODevice::WriteOnly) && list.write("Name\nAnna\nBen\n") > 0);
  list.close();
  ASSERT_TRUE(dropZone()->onDropPaths);
  EXPECT_TRUE(dropZone()->onDropPaths({list.fileName()}));
  EXPECT_EQ(table()->model()->rowCount(), 2);
}

TEST_F(ListPaneTest, ThePlusButtonAddsTheSearchTextAsAName) {
  fillWithPeople(2);
  QTest::keyClicks(_pane.searchField(), QStringLiteral("Zoe"));
  QTest::mouseClick(button(QStringLiteral("+")), Qt::LeftButton);
  EXPECT_EQ(_list.grid().text(2, Cell::Name), QStringLiteral("Zoe"));
  EXPECT_EQ(_list.selectedRow(), 2);
  EXPECT_EQ(_pane.searchField()->text(), QStringLiteral("Zoe"));
}

TEST_F(ListPaneTest, TheMenuOfARowActsOnThatRow) {
  fill({{"Anna"}, {"Ben"}, {"Cara"}});
  const auto choose = [this](RowCommand command, qint64 row) {
    Q_EMIT table()->rowCommandChosen(command, row);
  };
  choose(RowCommand::InsertAbove, 1);
  EXPECT_EQ(_list.grid().text(1, Cell::Name), QStringLiteral("New name"));
  choose(RowCommand::InsertBelow, 3);
  EXPECT_EQ(_list.grid().text(4, Cell::Name), QStringLiteral("New name"));
  choose(RowCommand::DeleteRow, 1);
  EXPECT_EQ(_list.grid().text(1, Cell::Name), QStringLiteral("Ben"));
  choose(RowCommand::ToggleMarker, 0);
  EXPECT_TRUE(_list.grid().markerForModelRow(0));
  _operator.willAnswer(Answer{0, {QStringLiteral(" late ")}});
  choose(RowCommand::EditNote, 2);
  EXPECT_EQ(_list.grid().text(2, Cell::Note), QStringLiteral("late"));
  QSignalSpy renames(&_pane, &ListPane::renameFolderRequested);
  QSignalSpy opens(&_pane, &ListPane::openFolderRequested);
  choose(RowCommand::RenameFolderAndImages, 2);
  choose(RowCommand::OpenFolder, 1);
  ASSERT_EQ(renames.count(), 1);
  ASSERT_EQ(opens.count(), 1);
  EXPECT_EQ(renames[0][0].toLongLong(), 2);
  EXPECT_EQ(opens[0][0].toLongLong(), 1);
}

TEST_F(ListPaneTest, FiltersAtEveryLetterTyped) {
  fill({{"Anna"}, {"Ben"}, {"Hannah"}});
  QTest::keyClicks(_pane.searchField(), QStringLiteral("ann"));
  EXPECT_EQ(table()->model()->rowCount(), 2);
}

TEST_F(ListPaneTest, ClearsTheSearchFieldFromTheButtonAndFromTheList) {
  fillWithPeople(3);
  QTest::keyClicks(_pane.searchField(), QStringLiteral("2"));
  QTest::mouseClick(button(QStringLiteral("×")), Qt::LeftButton);
  EXPECT_EQ(_pane.searchField()->text(), QString());
  EXPECT_EQ(table()->model()->rowCount(), 3);
}

TEST_F(ListPaneTest, CyclesTheFilterButtonThroughItsTitlesBlueWhileAFilterIsOn) {
  AmbrelButton* filter = button(QStringLiteral("Show: All"));
  ASSERT_TRUE(filter);
  EXPECT_EQ(filter->ambrelBaseColor(), Palette().grayColor());
  QTest::mouseClick(filter, Qt::LeftButton);
  EXPECT_EQ(filter->text(), QStringLiteral("Show: With Photos"));
  EXPECT_EQ(filter->ambrelBaseColor(), Palette().blueColor());
  QTest::mouseClick(filter, Qt::LeftButton);
  EXPECT_EQ(filter->text(), QStringLiteral("Show: Remaining"));
}

TEST_F(ListPaneTest, SortsOnAClickOnTheNameHeaderAndOnNoOther) {
  fillWithPeople(2);
  clickHeader(NameColumn::Marker);
  clickHeader(NameColumn::Count);
  EXPECT_EQ(_list.sortMode(), SortMode::ListOrder);
  clickHeader(NameColumn::Name);
  EXPECT_EQ(_list.sortMode(), SortMode::Ascending);
}

TEST_F(ListPaneTest, ExportFollowsTheControlStates) {
  ControlStates states;
  _pane.updateControls(states);
  EXPECT_FALSE(button(QStringLiteral("Export"))->isEnabled());
  states.exportEnabled = true;
  _pane.updateControls(states);
  EXPECT_TRUE(button(QStringLiteral("Export"))->isEnabled());
}

TEST_F(ListPaneTest, TheClickedRowBecomesTheCurrentPerson) {
  fillWithPeople(3);
  QSignalSpy clicks(&_pane, &ListPane::tableClicked);
  clickCell(2, NameColumn::Name);
  EXPECT_EQ(_list.selectedRow(), 2);
  EXPECT_EQ(clicks.count(), 1);
}

TEST_F(ListPaneTest, AClickInTheMarkerColumnFlipsTheMarker) {
  fillWithPeople(3);
  clickCell(1, NameColumn::Marker);
  EXPECT_TRUE(_list.grid().markerForModelRow(1));
  clickCell(1, NameColumn::Marker);
  EXPECT_FALSE(_list.grid().markerForModelRow(1));
  clickCell(1, NameColumn::Name);
  EXPECT_FALSE(_list.grid().markerForModelRow(1));
}

TEST_F(ListPaneTest, MirrorsASelectionMadeByTheList) {
  fillWithPeople(100);
  _list.moveGridSelectionBy(1);
  _list.moveGridSelectionBy(1);
  EXPECT_EQ(table()->selectedDisplayRows(), std::vector<qint64>{1});
  EXPECT_EQ(_list.selectedRow(), 1);
}

TEST_F(ListPaneTest, ANewNoteIsSavedAtEveryLetterAndShownByTheGlyph) {
  fillWithPeople(2);
  clickCell(0, NameColumn::Name);
  QTest::keyClicks(_pane.noteField(), QStringLiteral("tall "));
  EXPECT_EQ(_list.grid().text(0, Cell::Note), QStringLiteral("tall "));
  EXPECT_EQ(table()->model()->index(0, 0).data().toString(), QStringLiteral("📝"));
  AmbrelButton* indicator = button(QStringLiteral("📝"));
  EXPECT_TRUE(indicator->isVisible());
  EXPECT_EQ(indicator->toolTip(), QStringLiteral("tall "));
}

TEST_F(ListPaneTest, TheIndicatorLeadsToTheNoteField) {
  fill({{"Anna", "left early"}});
  clickCell(0, NameColumn::Name);
  _pane.activateWindow();
  QTest::mouseClick(button(QStringLiteral("📝")), Qt::LeftButton);
  EXPECT_EQ(_pane.focusWidget(), _pane.noteField());
}

TEST_F(ListPaneTest, SeveralSelectedRowsGiveTheirTotalsAndDisableTheNote) {
  fill({{"Anna", "", "2"}, {"Ben", "", "0"}, {"Cara", "", "1"}});
  table()->selectAll();
  EXPECT_EQ(_statusLine.text(), QStringLiteral("Selected: 3 rows — 3 photos total."));
  EXPECT_FALSE(_pane.noteField()->isEnabled());
}

TEST_F(ListPaneTest, APhotoThatArrivesKeepsTheNameThatIsBeingTyped) {
  fillWithPeople(3);
  const QModelIndex name = table()->model()->index(0, static_cast<int>(NameColumn::Name));
  table()->edit(name);
  auto* editor = table()->findChild<QLineEdit*>(QStringLiteral("cellEditor"));
  ASSERT_TRUE(editor);
  editor->selectAll();
  QTest::keyClicks(editor, QStringLiteral("Ann"));
  _list.markCaptureForRow(1);
  EXPECT_EQ(editor->text(), QStringLiteral("Ann"));
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_EQ(_list.grid().text(0, Cell::Name), QStringLiteral("Ann"));
}

TEST_F(ListPaneTest, PlacesItsControlsAsLaidOut) {
  const layout::LeftPane places = layout::leftPane({560, 600});
  EXPECT_EQ(table()->geometry(), places.table);
  EXPECT_EQ(dropZone()->geometry(), places.table);
  EXPECT_EQ(_pane.noteField()->geometry(), places.noteField);
  EXPECT_EQ(button(QStringLiteral("Export"))->geometry(), places.exportButton);
}

TEST_F(ListPaneTest, GivesTheMarkerColumn44AndTheCount58Points) {
  EXPECT_EQ(table()->columnWidth(static_cast<int>(NameColumn::Marker)), 44);
  EXPECT_EQ(table()->columnWidth(static_cast<int>(NameColumn::Count)), 58);
}

}  // namespace
}  // namespace ambrel::ui
