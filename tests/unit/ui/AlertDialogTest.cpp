// SPDX-License-Identifier: Apache-2.0
#include <QTest>
#include <gtest/gtest.h>

#include "ui/AlertDialog.h"

namespace ambrel::ui {
namespace {

Question question() {
  Accessory accessory{.size = {360, 60}, .focusFirstField = true};
  accessory.labels.push_back({QRect(4, 40, 150, 16), QStringLiteral("Button label"), true});
  accessory.textFields.push_back({QRect(4, 10, 150, 24), QStringLiteral("FR"), QStringLiteral("label")});
  accessory.textFields.push_back({QRect(168, 10, 180, 24), QString(), QStringLiteral("_suffix")});
  accessory.checkBoxes.push_back({QRect(4, 0, 300, 20), QStringLiteral("Move photos too"), true});
  return {QStringLiteral("Customize Suffixes"),
          QStringLiteral("Up to 5."),
          {QStringLiteral("Save"), QStringLiteral("Other"), QStringLiteral("Cancel")},
          accessory};
}

TEST(AlertDialog, PutsTheDefaultButtonRightmost) {
  AlertDialog dialog(question(), nullptr);
  dialog.open();
  ASSERT_EQ(dialog.buttons().size(), 3U);
  EXPECT_EQ(dialog.buttons()[0]->text(), QStringLiteral("Save"));
  EXPECT_GT(dialog.buttons()[0]->x(), dialog.buttons()[1]->x());
  EXPECT_GT(dialog.buttons()[1]->x(), dialog.buttons()[2]->x());
}

TEST(AlertDialog, AnswersWithTheButtonPressedAndWhatStandsInTheControls) {
  AlertDialog dialog(question(), nullptr);
  dialog.open();
  QTest::keyClicks(dialog.textFields()[1], QStringLiteral("_FR"));
  QTest::mouseClick(dialog.buttons()[1], Qt::LeftButton);
  const Answer answer = dialog.answer();
  EXPECT_EQ(answer.button, 1);
  EXPECT_EQ(answer.texts, (QStringList{QStringLiteral("FR"), QStringLiteral("_FR")}));
  EXPECT_EQ(answer.checks, std::vector<bool>{true});
  EXPECT_FALSE(dialog.isVisible());
}

TEST(AlertDialog, ReturnTakesTheFirstButton) {
  AlertDialog dialog(question(), nullptr);
  dialog.open();
  QTest::keyClick(dialog.textFields()[0], Qt::Key_Return);
  EXPECT_EQ(dialog.answer().button, 0);
  EXPECT_FALSE(dialog.isVisible());
}

TEST(AlertDialog, EscapeAndClosingTakeTheLastButton) {
  AlertDialog escaped(question(), nullptr);
  escaped.open();
  QTest::keyClick(&escaped, Qt::Key_Escape);
  EXPECT_EQ(escaped.answer().button, 2);
  AlertDialog closed(question(), nullptr);
  closed.open();
  closed.close();
  EXPECT_EQ(closed.answer().button, 2);
}

TEST(AlertDialog, LaysOutTheAccessoryFromItsBottomLeftCorner) {
  AlertDialog dialog(question(), nullptr);
  EXPECT_EQ(dialog.textFields()[0]->geometry(), QRect(4, 26, 150, 24));
  EXPECT_EQ(dialog.textFields()[1]->placeholderText(), QStringLiteral("_suffix"));
}

TEST(AlertDialog, GrowsToItsHighestControl) {
  Question tall = question();
  tall.accessory->textFields[0].rect = QRect(4, tall.accessory->size.height() - 4, 150, 24);
  AlertDialog dialog(tall, nullptr);
  const QLineEdit* highest = dialog.textFields()[0];
  EXPECT_EQ(highest->y(), 0);
  EXPECT_EQ(highest->parentWidget()->height(), tall.accessory->size.height() + 20);
}

TEST(AlertDialog, StartsInItsFirstFieldWithTheTextSelected) {
  AlertDialog dialog(question(), nullptr);
  dialog.open();
  EXPECT_EQ(dialog.focusWidget(), dialog.textFields()[0]);
  EXPECT_EQ(dialog.textFields()[0]->selectedText(), QStringLiteral("FR"));
}

TEST(AlertDialog, ShowsWhichBoxHasTheFocusWhetherItIsCheckedOrNot) {
  for (const bool checked : {false, true}) {
    Accessory accessory{.size = {320, 60}};
    accessory.checkBoxes.push_back({{0, 30, 320, 20}, QStringLiteral("One"), checked});
    accessory.checkBoxes.push_back({{0, 0, 320, 20}, QStringLiteral("Two"), checked});
    AlertDialog dialog({QStringLiteral("Title"), {}, {QStringLiteral("OK")}, accessory}, nullptr);
    dialog.show();
    dialog.activateWindow();
    QCoreApplication::processEvents();
    const QList<QCheckBox*> boxes = dialog.findChildren<QCheckBox*>();
    ASSERT_EQ(boxes.size(), 2);
    boxes[1]->setFocus(Qt::TabFocusReason);
    const QImage without = boxes[0]->grab().toImage();
    boxes[0]->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(boxes[0]->hasFocus());
    const QImage with = boxes[0]->grab().toImage();
    int changed = 0;
    for (int x = 0; x < with.width(); ++x)
      changed += with.pixel(x, 0) != without.pixel(x, 0) ? 1 : 0;
    EXPECT_GT(changed, 200) << checked;
  }
}

}  // namespace
}  // namespace ambrel::ui
