// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>
#include <memory>

#include "ListFixture.h"
#include "ui/NameTable.h"

namespace ambrel::ui {
namespace {

// What a drag over the table was answered.
struct DragAnswer {
  bool taken = false;
  Qt::DropAction action = Qt::IgnoreAction;
  bool operator==(const DragAnswer&) const = default;
};

class NameTableTest : public ListFixture {
 protected:
  NameTableTest() {
    _table.resize(400, 500);
    _table.show();
    QObject::connect(&_list, &NameList::tableSelectionChanged, &_table,
                     [this](bool scroll) { _table.selectDisplayRows(_list.tableSelection(), scroll); });
    QObject::connect(&_table, &AmbrelTableView::selectionChangedByOperator, &_table,
                     [this] { _list.tableViewSelectionDidChange(_table.selectedDisplayRows()); });
  }
  // The toolkit must not keep the table as the place of a drag.
  ~NameTableTest() override { leave(); }
  void leave() {
    if (!_entered) return;
    QDragLeaveEvent event;
    QApplication::sendEvent(_table.viewport(), &event);
  }
  QPoint middleOf(int row, NameColumn column = NameColumn::Name) const {
    return _table.visualRect(_table.model()->index(row, static_cast<int>(column))).center();
  }
  QPoint topOf(int row) const { return {100, _table.rowViewportPosition(row) + 2}; }

  template <typename Event>
  DragAnswer send(QPoint place, const QMimeData& data) {
    Event event(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.setAccepted(false);
    QApplication::sendEvent(_table.viewport(), &event);
    return {event.isAccepted(), event.isAccepted() ? event.dropAction() : Qt::IgnoreAction};
  }
  DragAnswer moveOver(QPoint place, const QMimeData& data) {
    _entered = send<QDragEnterEvent>(place, data).taken;
    if (!_entered) return {};
    return send<QDragMoveEvent>(place, data);
  }
  // A drag that comes in and is dropped; only the last event's answer counts.
  DragAnswer drop(QPoint place, const QMimeData& data) {
    if (!moveOver(place, data).taken) return {};
    QDropEvent event(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.setAccepted(false);
    QApplication::sendEvent(_table.viewport(), &event);
    return {event.isAccepted(), event.dropAction()};
  }
  std::unique_ptr<QMimeData> file(const QString& name, const QByteArray& bytes) {
    QFile list(_home.filePath(name));
    EXPECT_TRUE(list.open(QIODevice::WriteOnly) && list.write(bytes) == bytes.size());
    auto data = std::make_unique<QMimeData>();
    data->setUrls({QUrl::fromLocalFile(list.fileName())});
    return data;
  }
  QStringList names() const {
    QStringList all;
    for (qint64 row = 0; row < _list.grid().rowCount(); ++row)
      all << _list.grid().text(row, Cell::Name);
    return all;
  }
  void rightClick(QPoint place) {
    QTest::mousePress(_table.viewport(), Qt::RightButton, {}, place);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, _table.viewport()->mapToGlobal(place));
    QApplication::sendEvent(_table.viewport(), &event);
    QTest::mouseRelease(_table.viewport(), Qt::RightButton, {}, place);
  }
  QAction* item(RowCommand command) const {
    const std::vector<RowMenuItem> items = rowMenuItems();
    for (std::size_t i = 0; i < items.size(); ++i)
      if (items[i].command == command) return _table.rowMenu()->actions()[static_cast<int>(i)];
    return nullptr;
  }
  QImage picture() { return _table.viewport()->grab().toImage(); }

  NameTable _table{_list, _editing, nullptr};
  bool _entered = false;  // a drag is over the table
};

TEST_F(NameTableTest, ReportsAClickWithWhatItHit) {
  fillWithPeople(3);
  QSignalSpy clicks(&_table, &NameTable::tableClicked);
  QTest::mouseClick(_table.viewport(), Qt::LeftButton, {}, middleOf(2, NameColumn::Marker));
  QTest::mouseClick(_table.viewport(), Qt::LeftButton, {}, QPoint(100, 450));
  ASSERT_EQ(clicks.count(), 2);
  EXPECT_EQ(clicks[0], QVariantList({2LL, 0}));
  EXPECT_EQ(clicks[1], QVariantList({-1LL, -1}));
}

TEST_F(NameTableTest, AClickReportsAfterItHasSelected) {
  fillWithPeople(3);
  qint64 selected = -1;
  QObject::connect(&_table, &NameTable::tableClicked, &_table, [&] { selected = _list.selectedRow(); });
  QTest::mouseClick(_table.viewport(), Qt::LeftButton, {}, middleOf(1));
  EXPECT_EQ(selected, 1);
}

// ---- The menu of a row

TEST_F(NameTableTest, TheRightButtonOpensTheMenuOfItsRowAndChoosesNobodyElse) {
  fillWithPeople(3);
  _list.tableViewSelectionDidChange({0});
  QSignalSpy chosen(&_table, &NameTable::rowCommandChosen);
  QSignalSpy clicks(&_table, &NameTable::tableClicked);
  rightClick(middleOf(2));
  ASSERT_TRUE(_table.rowMenu());
  EXPECT_EQ(_list.selectedRow(), 0);
  item(RowCommand::EditNote)->trigger();
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen[0][0].value<RowCommand>(), RowCommand::EditNote);
  EXPECT_EQ(chosen[0][1].toLongLong(), 2);
  EXPECT_EQ(clicks.count(), 0);
}

TEST_F(NameTableTest, TheMenuIsAboutTheSelectedRowWhereNoRowIsClicked) {
  fillWithPeople(3);
  _list.selectAndShow(1);
  QSignalSpy chosen(&_table, &NameTable::rowCommandChosen);
  rightClick(QPoint(100, 450));
  item(RowCommand::DeleteRow)->trigger();
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen[0][1].toLongLong(), 1);
}

TEST_F(NameTableTest, TheMenuKeyOpensTheMenuOfTheSelectedRow) {
  fillWithPeople(3);
  _list.selectAndShow(2);
  QSignalSpy chosen(&_table, &NameTable::rowCommandChosen);
  QContextMenuEvent event(QContextMenuEvent::Keyboard, middleOf(0), {});
  QApplication::sendEvent(_table.viewport(), &event);
  item(RowCommand::ToggleMarker)->trigger();
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen[0][1].toLongLong(), 2);
}

TEST_F(NameTableTest, WithoutAnyRowTheMenuIsAboutNone) {
  QSignalSpy chosen(&_table, &NameTable::rowCommandChosen);
  rightClick(QPoint(100, 100));
  item(RowCommand::InsertAbove)->trigger();
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen[0][1].toLongLong(), -1);
}

TEST_F(NameTableTest, OutlinesTheRowWhoseMenuIsOpenUntilItCloses) {
  fillWithPeople(3);
  const QImage before = picture();
  rightClick(middleOf(1));
  EXPECT_NE(picture(), before);
  _table.rowMenu()->hide();
  EXPECT_EQ(picture(), before);
}

// ---- Rows dragged within the table

TEST_F(NameTableTest, ARowDroppedBetweenRowsMovesThere) {
  fill({{"A"}, {"B"}, {"C"}, {"D"}, {"E"}, {"F"}, {"G"}});
  const std::unique_ptr<QMimeData> row(rowPayload(2));
  EXPECT_EQ(drop(topOf(5), *row), (DragAnswer{true, Qt::MoveAction}));
  EXPECT_EQ(names().join(QString()), QStringLiteral("ABDECFG"));
  EXPECT_EQ(_list.selectedRow(), 4);
}

TEST_F(NameTableTest, ARowDroppedBesideItselfStaysAndIsTaken) {
  fill({{"A"}, {"B"}, {"C"}, {"D"}});
  const std::unique_ptr<QMimeData> row(rowPayload(2));
  EXPECT_TRUE(drop(topOf(2), *row).taken);
  EXPECT_TRUE(drop(topOf(3), *row).taken);
  EXPECT_EQ(names().join(QString()), QStringLiteral("ABCD"));
}

TEST_F(NameTableTest, ARowDroppedBelowTheLastBecomesTheLast) {
  fill({{"A"}, {"B"}, {"C"}});
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  EXPECT_TRUE(drop(QPoint(100, 400), *row).taken);
  EXPECT_EQ(names().join(QString()), QStringLiteral("BCA"));
}

TEST_F(NameTableTest, FindsThePlaceInAScrolledTable) {
  fillWithPeople(100);
  _table.scrollTo(_table.model()->index(60, 1), QAbstractItemView::PositionAtTop);
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  EXPECT_TRUE(drop(topOf(62), *row).taken);
  EXPECT_EQ(_list.grid().text(61, Cell::Name), QStringLiteral("Person 1"));
}

TEST_F(NameTableTest, ADragDuringASearchSaysWhyNothingMoves) {
  fill({{"Anna"}, {"Ben"}, {"Hannah"}});
  _list.setSearchText(QStringLiteral("ann"));
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  EXPECT_EQ(moveOver(QPoint(100, 400), *row), (DragAnswer{true, Qt::IgnoreAction}));
  EXPECT_FALSE(drop(QPoint(100, 400), *row).taken);
  EXPECT_EQ(_statusLine.text(),
            QStringLiteral("To reorder rows, set the filter to Show: All, clear the search, and use original "
                           "sort order."));
  EXPECT_EQ(names(), QStringList({QStringLiteral("Anna"), QStringLiteral("Ben"), QStringLiteral("Hannah")}));
}

TEST_F(NameTableTest, ARowDroppedOntoAnotherAsksToMoveItsPhotos) {
  fill({{"Anna"}, {"Ben"}, {"Cara"}});
  QSignalSpy moves(&_editing, &ListEditing::photoMoveRequested);
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  EXPECT_EQ(drop(middleOf(2), *row), (DragAnswer{true, Qt::CopyAction}));
  QCoreApplication::processEvents();
  ASSERT_EQ(moves.count(), 1);
  EXPECT_EQ(moves[0], QVariantList({0LL, QStringLiteral("Cara")}));
  EXPECT_EQ(names().size(), 3);
}

TEST_F(NameTableTest, ARowMayBeDroppedOntoAnotherDuringASearch) {
  fill({{"Anna"}, {"Ben"}, {"Hannah"}});
  _list.setSearchText(QStringLiteral("ann"));
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  EXPECT_TRUE(moveOver(middleOf(1), *row).taken);
}

TEST_F(NameTableTest, ARowIsNotTakenOntoItself) {
  fill({{"Anna"}, {"Ben"}});
  const std::unique_ptr<QMimeData> row(rowPayload(1));
  EXPECT_FALSE(moveOver(middleOf(1), *row).taken);
}

// ---- Files dropped from elsewhere

TEST_F(NameTableTest, TakesADroppedListFileInAnyLetterCaseAndNoOtherFile) {
  fillWithPeople(1);
  _operator.willAnswer(0);
  const auto list = file(QStringLiteral("more.CSV"), "Name\nZoe\n");
  EXPECT_EQ(drop(middleOf(0), *list), (DragAnswer{true, Qt::CopyAction}));
  EXPECT_EQ(names(), QStringList({QStringLiteral("Person 1"), QStringLiteral("Zoe")}));
  const auto sheet = file(QStringLiteral("more.xlsx"), "PK");
  EXPECT_FALSE(moveOver(middleOf(0), *sheet).taken);
}

TEST_F(NameTableTest, ShowsWhereADragWouldBeDroppedUntilItLeaves) {
  fillWithPeople(4);
  const QImage before = picture();
  const std::unique_ptr<QMimeData> row(rowPayload(0));
  moveOver(topOf(3), *row);
  const QImage between = picture();
  EXPECT_NE(between, before);
  moveOver(middleOf(3), *row);
  const QImage onto = picture();
  EXPECT_NE(onto, between);
  EXPECT_NE(onto, before);
  moveOver(middleOf(3), *file(QStringLiteral("more.txt"), "Name\n"));
  EXPECT_NE(picture(), onto);
  leave();
  EXPECT_EQ(picture(), before);
}

// ---- Editing in place

TEST_F(NameTableTest, OnlyTheNameIsEditedInPlaceByADoubleClick) {
  fillWithPeople(2);
  const auto doubleClick = [this](NameColumn column) {
    QTest::mouseClick(_table.viewport(), Qt::LeftButton, {}, middleOf(0, column));
    QTest::mouseDClick(_table.viewport(), Qt::LeftButton, {}, middleOf(0, column));
  };
  doubleClick(NameColumn::Count);
  EXPECT_FALSE(_table.findChild<QWidget*>(QStringLiteral("cellEditor")));
  doubleClick(NameColumn::Name);
  EXPECT_TRUE(_table.findChild<QWidget*>(QStringLiteral("cellEditor")));
}

TEST_F(NameTableTest, ANewNameKeepsItsBlanksAndBlanksAloneAreRefused) {
  fillWithPeople(1);
  const auto rename = [this](const QString& name) {
    _table.edit(_table.model()->index(0, static_cast<int>(NameColumn::Name)));
    auto* editor = _table.findChild<QLineEdit*>(QStringLiteral("cellEditor"));
    ASSERT_TRUE(editor);
    editor->selectAll();
    QTest::keyClicks(editor, name);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  };
  rename(QStringLiteral("   "));
  EXPECT_EQ(names(), QStringList(QStringLiteral("Person 1")));
  rename(QStringLiteral(" Anna "));
  EXPECT_EQ(names(), QStringList(QStringLiteral(" Anna ")));
}

TEST_F(NameTableTest, EscapeLeavesTheNameAsItWas) {
  fillWithPeople(1);
  _table.edit(_table.model()->index(0, static_cast<int>(NameColumn::Name)));
  auto* editor = _table.findChild<QLineEdit*>(QStringLiteral("cellEditor"));
  ASSERT_TRUE(editor);
  QTest::keyClicks(editor, QStringLiteral("x"));
  QTest::keyClick(editor, Qt::Key_Escape);
  EXPECT_EQ(names(), QStringList(QStringLiteral("Person 1")));
}

}  // namespace
}  // namespace ambrel::ui
