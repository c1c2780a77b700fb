// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
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

TEST(PathChooser, GivesNoPathWhenCancelled) {
  PathChooser chooser({}, nullptr);
  chooser.open();
  chooser.reject();
  EXPECT_EQ(chooser.chosenPath(), QString());
}

}  // namespace
}  // namespace ambrel::ui
