// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include "ListFixture.h"
#include "ui/NameTableModel.h"

namespace ambrel::ui {
namespace {

class NameTableModelTest : public ListFixture {
 protected:
  QModelIndex cell(int row, NameColumn column) const { return _model.index(row, static_cast<int>(column)); }
  QString text(int row, NameColumn column) const { return cell(row, column).data().toString(); }
  QString nameTitle() const {
    return _model.headerData(static_cast<int>(NameColumn::Name), Qt::Horizontal, Qt::DisplayRole).toString();
  }
  QColor nameColor(int row) const {
    return cell(row, NameColumn::Name).data(Qt::ForegroundRole).value<QColor>();
  }

  NameTableModel _model{_list};
};

TEST_F(NameTableModelTest, KeepsTheContractOfItemModels) {
  QAbstractItemModelTester tester(&_model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  fillWithPeople(3);
  _list.markCaptureForRow(1);
  fill({});
  EXPECT_EQ(_model.rowCount(), 0);
}

TEST_F(NameTableModelTest, CentresTheTitlesOfMarkersAndCountsAsTheirCells) {
  const auto isCentred = [this](NameColumn column) {
    const auto alignment = static_cast<Qt::Alignment>(
        _model.headerData(static_cast<int>(column), Qt::Horizontal, Qt::TextAlignmentRole).toInt());
    return alignment.testFlag(Qt::AlignHCenter);
  };
  EXPECT_TRUE(isCentred(NameColumn::Marker));
  EXPECT_FALSE(isCentred(NameColumn::Name));
  EXPECT_TRUE(isCentred(NameColumn::Count));
}

TEST_F(NameTableModelTest, ShowsTheRowsInDisplayOrder) {
  fill({{"b"}, {"A"}, {"c"}});
  _list.cycleSortMode();
  EXPECT_EQ(_model.rowCount(), 3);
  EXPECT_EQ(text(0, NameColumn::Name), QStringLiteral("A"));
  EXPECT_EQ(text(2, NameColumn::Name), QStringLiteral("c"));
}

TEST_F(NameTableModelTest, ShowsOnlyTheRowsThatTheSearchLeaves) {
  fill({{"Anna"}, {"Ben"}});
  _list.setSearchText(QStringLiteral("ben"));
  EXPECT_EQ(_model.rowCount(), 1);
  EXPECT_EQ(text(0, NameColumn::Name), QStringLiteral("Ben"));
}

TEST_F(NameTableModelTest, PaintsNamesThatDifferInLetterCaseOnlyRed) {
  fill({{"Anna", "", "4"}, {"ANNA"}, {"Ben"}, {"Cara", "", "1"}});
  EXPECT_EQ(nameColor(0), Palette().redColor());
  EXPECT_EQ(nameColor(1), Palette().redColor());
  EXPECT_EQ(nameColor(2), Palette().primaryTextColor());
  EXPECT_EQ(nameColor(3), Palette().greenColor());
  EXPECT_FALSE(cell(0, NameColumn::Name).data(Qt::FontRole).value<QFont>().bold());
  EXPECT_TRUE(cell(3, NameColumn::Name).data(Qt::FontRole).value<QFont>().bold());
}

TEST_F(NameTableModelTest, FindsDuplicatesAmongHiddenRowsToo) {
  fill({{"Anna", "front"}, {"anna"}});
  _list.setSearchText(QStringLiteral("front"));
  ASSERT_EQ(_model.rowCount(), 1);
  EXPECT_EQ(nameColor(0), Palette().redColor());
}

TEST_F(NameTableModelTest, ANameThatBecomesUniqueIsNoLongerRed) {
  fill({{"Anna"}, {"anna"}});
  EXPECT_TRUE(_model.setData(cell(1, NameColumn::Name), QStringLiteral("Ben"), Qt::EditRole));
  QCoreApplication::processEvents();
  EXPECT_EQ(nameColor(0), Palette().primaryTextColor());
}

TEST_F(NameTableModelTest, OnlyNamesAreEditable) {
  fill({{"Anna"}});
  EXPECT_TRUE(_model.flags(cell(0, NameColumn::Name)).testFlag(Qt::ItemIsEditable));
  EXPECT_FALSE(_model.flags(cell(0, NameColumn::Marker)).testFlag(Qt::ItemIsEditable));
  EXPECT_FALSE(_model.flags(cell(0, NameColumn::Count)).testFlag(Qt::ItemIsEditable));
  EXPECT_FALSE(_model.setData(cell(0, NameColumn::Count), QStringLiteral("9"), Qt::EditRole));
  EXPECT_EQ(_list.grid().capturedForModelRow(0), 0);
}

TEST_F(NameTableModelTest, KeepsTheOldNameWhenTheNewOneIsBlank) {
  fill({{"Anna"}});
  _model.setData(cell(0, NameColumn::Name), QStringLiteral("   "), Qt::EditRole);
  EXPECT_EQ(text(0, NameColumn::Name), QStringLiteral("Anna"));
}

TEST_F(NameTableModelTest, StoresANameWithItsBlanks) {
  fill({{"Anna"}});
  _model.setData(cell(0, NameColumn::Name), QStringLiteral(" Anna "), Qt::EditRole);
  EXPECT_EQ(_list.grid().text(0, Cell::Name), QStringLiteral(" Anna "));
}

TEST_F(NameTableModelTest, CountsTheNamesInTheHeader) {
  fill({{"Anna"}});
  _model.updateNameColumnCount();
  EXPECT_EQ(nameTitle(), QStringLiteral("Name      1 name"));
}

TEST_F(NameTableModelTest, ShowsTheSortArrowWithoutTheCountUntilTheNextRefresh) {
  fillWithPeople(3);
  _model.updateNameColumnCount();
  _list.cycleSortMode();
  EXPECT_EQ(nameTitle(), QStringLiteral("Name  ↑"));
  _model.updateNameColumnCount();
  EXPECT_EQ(nameTitle(), QStringLiteral("Name  ↑      3 names"));
}

TEST_F(NameTableModelTest, RefreshesContentsWithoutAResetWhenTheRowsStayTheSame) {
  fillWithPeople(3);
  QSignalSpy resets(&_model, &NameTableModel::modelReset);
  QSignalSpy changes(&_model, &NameTableModel::dataChanged);
  _list.markCaptureForRow(1);
  EXPECT_EQ(resets.count(), 0);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(text(1, NameColumn::Count), QStringLiteral("1"));
}

TEST_F(NameTableModelTest, ResetsWhenTheRowsAreOthers) {
  fillWithPeople(3);
  QSignalSpy resets(&_model, &NameTableModel::modelReset);
  _list.setSearchText(QStringLiteral("2"));
  EXPECT_EQ(resets.count(), 1);
}

TEST_F(NameTableModelTest, RedrawsOnlyTheRowOfAChangedNote) {
  fillWithPeople(3);
  QSignalSpy changes(&_model, &NameTableModel::dataChanged);
  _model.refreshModelRow(2);
  ASSERT_EQ(changes.count(), 1);
  EXPECT_EQ(changes[0][0].toModelIndex().row(), 2);
  EXPECT_EQ(changes[0][1].toModelIndex().row(), 2);
  _list.setSearchText(QStringLiteral("1"));
  _model.refreshModelRow(2);
  EXPECT_EQ(changes.count(), 1);
}

}  // namespace
}  // namespace ambrel::ui
