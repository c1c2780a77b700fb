// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <gtest/gtest.h>

#include "ui/TextEdits.h"

namespace ambrel::ui {
namespace {

TEST(TextEdits, CarriesOutEveryEditCommandOnTheField) {
  QLineEdit field;
  QTest::keyClicks(&field, QStringLiteral("Anna"));
  editText(field, Command::SelectAll);
  EXPECT_EQ(field.selectedText(), QStringLiteral("Anna"));
  editText(field, Command::Copy);
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Anna"));
  editText(field, Command::Cut);
  EXPECT_EQ(field.text(), QString());
  editText(field, Command::Paste);
  EXPECT_EQ(field.text(), QStringLiteral("Anna"));
  editText(field, Command::Undo);
  EXPECT_EQ(field.text(), QString());
  editText(field, Command::Redo);
  EXPECT_EQ(field.text(), QStringLiteral("Anna"));
}

TEST(TextEdits, LeavesTheFieldAloneForOtherCommands) {
  QLineEdit field(QStringLiteral("Anna"));
  editText(field, Command::Quit);
  EXPECT_EQ(field.text(), QStringLiteral("Anna"));
}

}  // namespace
}  // namespace ambrel::ui
