// SPDX-License-Identifier: Apache-2.0
#include <QHeaderView>
#include <QTemporaryDir>
#include <QTreeView>
#include <gtest/gtest.h>

#include "ui/PathChooser.h"

namespace ambrel::ui {
namespace {

TEST(PathChooser, OffersFilesOfTheGivenTypesInEitherLetterCase) {
  EXPECT_EQ(nameFilter({QStringLiteral("csv"), QStringLiteral("txt")}),
            QStringLiteral("CSV files (*.csv *.CSV *.txt *.TXT)"));
  EXPECT_EQ(nameFilter({}), QStringLiteral("All files (*)"));
}

TEST(PathChooser, NeverAsksInAnEventLoopOfItsOwn) {
  for (const auto kind :
       {PathRequest::Kind::OpenFile, PathRequest::Kind::OpenFolder, PathRequest::Kind::SaveFile}) {
    const PathChooser chooser({.kind = kind}, nullptr);
    EXPECT_TRUE(chooser.testOption(QFileDialog::DontUseNativeDialog));
    EXPECT_TRUE(chooser.testOption(QFileDialog::DontConfirmOverwrite));
  }
}

TEST(PathChooser, ChoosesFoldersOnlyWhereAFolderIsAskedFor) {
  const PathChooser chooser({.kind = PathRequest::Kind::OpenFolder, .button = QStringLiteral("Choose")},
                            nullptr);
  EXPECT_EQ(chooser.fileMode(), QFileDialog::Directory);
  EXPECT_TRUE(chooser.testOption(QFileDialog::ShowDirsOnly));
  EXPECT_EQ(chooser.labelText(QFileDialog::Accept), QStringLiteral("Choose"));
}

TEST(PathChooser, ProposesANameAndAddsTheExtensionWhenSaving) {
  const QTemporaryDir folder;
  PathChooser chooser({.kind = PathRequest::Kind::SaveFile,
                       .startFolder = folder.path(),
                       .proposedName = QStringLiteral("ambrel-list.csv"),
                       .extensions = {QStringLiteral("csv")}},
                      nullptr);
  EXPECT_EQ(chooser.defaultSuffix(), QStringLiteral("csv"));
  chooser.open();
  static_cast<QDialog&>(chooser).done(QDialog::Accepted);
  EXPECT_EQ(chooser.chosenPath(), folder.filePath(QStringLiteral("ambrel-list.csv")));
}

TEST(PathChooser, GivesTheNamesTheRoomThatTheOtherColumnsLeave) {
  PathChooser chooser({}, nullptr);
  chooser.open();
  const auto* files = chooser.findChild<QTreeView*>(QStringLiteral("treeView"));
  ASSERT_TRUE(files);
  const QHeaderView* header = files->header();
  EXPECT_GE(header->sectionSize(3),
            header->fontMetrics().horizontalAdvance(QStringLiteral("22 Nov 2026 08:26:15")));
  const int names = header->sectionSize(0);
  chooser.resize(chooser.width() + 100, chooser.height());
  QCoreApplication::processEvents();
  EXPECT_EQ(header->length(), files->viewport()->width());
  EXPECT_GT(header->sectionSize(0), names + 50);
}

TEST(PathChooser, GivesNoPathWhenCancelled) {
  PathChooser chooser({}, nullptr);
  chooser.open();
  chooser.reject();
  EXPECT_EQ(chooser.chosenPath(), QString());
}

}  // namespace
}  // namespace ambrel::ui
