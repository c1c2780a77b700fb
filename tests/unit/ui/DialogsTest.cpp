// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "ui/AlertDialog.h"
#include "ui/Dialogs.h"
#include "ui/PathChooser.h"

namespace ambrel::ui {
namespace {

class DialogsTest : public ::testing::Test {
 protected:
  AlertDialog* alert() { return qobject_cast<AlertDialog*>(_dialogs.openDialog()); }
  QString openTitle() {
    const auto labels = alert()->findChildren<QLabel*>();
    for (const QLabel* label : labels)
      if (!label->text().isEmpty()) return label->text();
    return {};
  }
  void press(int button) {
    QTest::mouseClick(alert()->buttons().at(static_cast<std::size_t>(button)), Qt::LeftButton);
  }

  Dialogs _dialogs;
};

TEST_F(DialogsTest, ReturnsAtOnceAndAnswersLater) {
  int answered = -1;
  _dialogs.ask(
      {QStringLiteral("Replace current list?"), {}, {QStringLiteral("Replace"), QStringLiteral("Cancel")}},
      [&](const Answer& answer) { answered = answer.button; });
  EXPECT_EQ(answered, -1);
  ASSERT_TRUE(alert());
  EXPECT_TRUE(alert()->isVisible());
  press(1);
  EXPECT_EQ(answered, 1);
  EXPECT_FALSE(_dialogs.openDialog());
}

TEST_F(DialogsTest, BlockOnlyTheWindowThatTheyBelongTo) {
  QWidget window;
  _dialogs.setParentWindow(&window);
  _dialogs.showAlert(QStringLiteral("Camera Disconnected"), QStringLiteral("The camera is gone."), {});
  EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
  EXPECT_EQ(alert()->parentWidget(), &window);
  press(0);
}

TEST_F(DialogsTest, SeveralAlertsWaitInLine) {
  QStringList seen;
  for (const QString& title : {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")})
    _dialogs.showAlert(title, {}, [&seen, title] { seen << title; });
  EXPECT_EQ(openTitle(), QStringLiteral("first"));
  press(0);
  EXPECT_EQ(openTitle(), QStringLiteral("second"));
  press(0);
  press(0);
  EXPECT_EQ(seen, (QStringList{QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")}));
  EXPECT_FALSE(_dialogs.openDialog());
}

TEST_F(DialogsTest, AnAnswerMayAskTheNextQuestion) {
  bool told = false;
  _dialogs.showAlert(QStringLiteral("one"), {},
                     [&] { _dialogs.showAlert(QStringLiteral("two"), {}, [&] { told = true; }); });
  press(0);
  EXPECT_EQ(openTitle(), QStringLiteral("two"));
  press(0);
  EXPECT_TRUE(told);
}

TEST_F(DialogsTest, AnAlertWithoutTitleCarriesTheApplicationsName) {
  _dialogs.showAlert({}, QStringLiteral("text"), {});
  EXPECT_EQ(openTitle(), QStringLiteral("Ambrel Photo Tether"));
  EXPECT_EQ(alert()->buttons().front()->text(), QStringLiteral("OK"));
  press(0);
}

TEST_F(DialogsTest, ACancelledChooserAnswersWithAnEmptyPath) {
  QString path = QStringLiteral("unanswered");
  _dialogs.choosePath({}, [&](const QString& chosen) { path = chosen; });
  ASSERT_TRUE(_dialogs.openDialog());
  _dialogs.openDialog()->reject();
  EXPECT_EQ(path, QString());
}

class ReplacingTest : public DialogsTest {
 protected:
  ReplacingTest() {
    QFile file(_folder.filePath(QStringLiteral("list.csv")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    _dialogs.choosePath({.kind = PathRequest::Kind::SaveFile,
                         .startFolder = _folder.path(),
                         .proposedName = QStringLiteral("list.csv"),
                         .extensions = {QStringLiteral("csv")}},
                        [this](const QString& chosen) { _chosen = chosen; });
    _dialogs.openDialog()->done(QDialog::Accepted);
  }
  QTemporaryDir _folder;
  QString _chosen;
};

TEST_F(ReplacingTest, AsksBeforeAnExistingFileIsReplaced) {
  ASSERT_TRUE(alert());
  EXPECT_TRUE(_chosen.isEmpty());
  press(0);
  EXPECT_EQ(_chosen, _folder.filePath(QStringLiteral("list.csv")));
}

TEST_F(ReplacingTest, GoesBackToTheChooserWhenItIsNot) {
  ASSERT_TRUE(alert());
  press(1);
  EXPECT_TRUE(_chosen.isEmpty());
  EXPECT_TRUE(qobject_cast<PathChooser*>(_dialogs.openDialog()));
  _dialogs.openDialog()->reject();
  EXPECT_TRUE(_chosen.isEmpty());
}

}  // namespace
}  // namespace ambrel::ui
