// SPDX-License-Identifier: Apache-2.0
#include <QTest>
#include <gtest/gtest.h>

#include "ListFixture.h"
#include "ui/NoteField.h"

namespace ambrel::ui {
namespace {

class NoteFieldTest : public ListFixture {
 protected:
  void select(std::vector<qint64> rows) {
    _list.tableViewSelectionDidChange(rows);
    _field.syncNoteFieldToSelection();
  }
  NoteField _field{_list, nullptr};
};

TEST_F(NoteFieldTest, IsDisabledWithoutACurrentPerson) {
  EXPECT_FALSE(_field.isEnabled());
  EXPECT_EQ(_field.placeholderText(), QStringLiteral("📝 Note for the selected name"));
  EXPECT_EQ(_field.text(), QString());
}

TEST_F(NoteFieldTest, ShowsTheNoteOfTheCurrentPerson) {
  fill({{"Anna", "left early"}, {"Ben"}});
  select({0});
  EXPECT_TRUE(_field.isEnabled());
  EXPECT_EQ(_field.text(), QStringLiteral("left early"));
  EXPECT_EQ(_field.indicatedNote(), QStringLiteral("left early"));
  select({1});
  EXPECT_EQ(_field.text(), QString());
  EXPECT_EQ(_field.placeholderText(), QStringLiteral("📝 Note for Ben — type here, saves automatically"));
}

TEST_F(NoteFieldTest, IsEmptyAndDisabledForSeveralRows) {
  fill({{"Anna", "left early"}, {"Ben"}});
  select({0, 1});
  EXPECT_FALSE(_field.isEnabled());
  EXPECT_EQ(_field.placeholderText(), QStringLiteral("📝 Multiple rows selected"));
  EXPECT_EQ(_field.indicatedNote(), QString());
}

TEST_F(NoteFieldTest, StoresExactlyWhatIsTyped) {
  fill({{"Anna"}});
  select({0});
  QTest::keyClicks(&_field, QStringLiteral("  two  "));
  EXPECT_EQ(_list.grid().text(0, Cell::Note), QStringLiteral("  two  "));
}

TEST_F(NoteFieldTest, KeepsTheCursorOfSomebodyTypingWhenTheListReloads) {
  fill({{"Anna", "left early"}});
  select({0});
  _field.setCursorPosition(4);
  _field.syncNoteFieldToSelection();
  EXPECT_EQ(_field.cursorPosition(), 4);
}

}  // namespace
}  // namespace ambrel::ui
