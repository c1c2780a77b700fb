// SPDX-License-Identifier: Apache-2.0
#include <condition_variable>
#include <mutex>
#include <optional>

#include "FoldersFixture.h"
#include "core/capture/FolderRename.h"
#include "support/BrokenFiles.h"
#include "support/Printing.h"
#include "support/ScriptedOperator.h"

namespace ambrel {
namespace {

using Alert = ScriptedOperator::Alert;
using Alerts = std::vector<Alert>;
using Operation = BrokenFiles::Operation;

class FolderRenameTest : public FoldersFixture {
 protected:
  FolderRenameTest() {
    std::filesystem::create_directory(backup);
    preferences.setSuffixes({QVariantMap{{"label", "FR"}, {"suffix", "_FR"}, {"on", false}},
                             QVariantMap{{"label", "none"}, {"suffix", ""}, {"on", true}}});
    tags.loadSuffixes();
  }

  QString inTargetDir(const QString& name) const { return targetDir + '/' + name; }
  void serveAll() {
    serve();
    ASSERT_TRUE(rename.finishMirroring(kLongEnough));
  }
  void move(qint64 row, const QString& name, const QStringList& suffixes = {}) {
    rename.movePhotosFromRow(row, name, suffixes);
    serveAll();
  }
  void apply(const QString& folder, const QString& name) {
    rename.applyFolderRename(folder, name);
    serveAll();
  }
  Names rowNames() const {
    Names names;
    for (const Row& row : list.grid().rows())
      names.push_back(row.empty() ? "(no cells)" : row[0]);
    return names;
  }

  std::string backup = path(QStringLiteral("Backup")).toStdString();
  bool backupOn = false;
  std::function<void(const std::function<void()>&)> waitForRest = [](const auto& act) { act(); };
  ScriptedOperator operatorSeam;
  Tags tags{preferences, operatorSeam, statusLine};
  BrokenFiles broken{files};
  FolderRename rename{broken,
                      thread,
                      folders,
                      list,
                      tags,
                      operatorSeam,
                      statusLine,
                      {.targetDir = [this] { return targetDir; },
                       .backupDestForSource =
                           [this](const QString& folder) {
                             return backupOn ? QString::fromStdString(backup) + folder.mid(targetDir.size())
                                             : QString();
                           },
                       .whenBackupRests = [this](const std::function<void()>& act) { waitForRest(act); },
                       .unfinishedCopySuffix = ".ambrel_tmp"}};
};

// ---- Moving the photos of a row

TEST_F(FolderRenameTest, MovesAPersonsPhotosToANewName) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Ann_0002.JPG", "Ann_FR/Ann_FR_0001.JPG"});
  startWith({{"Ann", "front row", "3", "1"}, {"Cat"}});
  move(0, "Bea", {"_FR"});
  EXPECT_EQ(allInTarget(),
            (Names{"Bea/", "Bea/Bea_0001.JPG", "Bea/Bea_0002.JPG", "Bea_FR/", "Bea_FR/Bea_FR_0001.JPG"}));
  EXPECT_EQ(list.grid().rows(),
            (std::vector<Row>{{"Ann", "front row", "0", "1"}, {"Bea", "", "3", ""}, {"Cat"}}));
  EXPECT_EQ(list.selectedRow(), 1);
  EXPECT_EQ(statusLine.text(), "Moved 3 photos to \"Bea\" (new row added).");
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nAnn,front row,0,1\nBea,,3,\nCat,,0,");
}

TEST_F(FolderRenameTest, MergesIntoANameThatHasPhotosAndJumpsToItsRow) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann/Ann_0002.JPG"});
  makeFiles({"Bea/Bea_0001.JPG", "Bea/Bea_0002.JPG", "Bea/Bea_0003.JPG", "Bea/Bea_0004.JPG"});
  startWith({{"Ann"}, {"Cat"}, {"Bea", "note"}});
  move(0, "Bea");
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Bea_0001.JPG", "Bea/Bea_0002.JPG", "Bea/Bea_0003.JPG",
                                  "Bea/Bea_0004.JPG", "Bea/Bea_0005.JPG", "Bea/Bea_0006.JPG"}));
  EXPECT_EQ(rowNames(), (Names{"Ann", "Cat", "Bea"}));
  EXPECT_EQ(list.selectedRow(), 2);
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{0, 0, 6}));
  EXPECT_EQ(statusLine.text(), "Moved 2 photos to \"Bea\".");
}

TEST_F(FolderRenameTest, ASuffixThatIsNotCheckedStaysWhereItIs) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_FR/Ann_FR_0001.JPG"});
  startWith({{"Ann"}});
  move(0, "Bea");
  EXPECT_EQ(allInTarget(), (Names{"Ann_FR/", "Ann_FR/Ann_FR_0001.JPG", "Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(statusLine.text(), "Moved 1 photo to \"Bea\" (new row added).");
}

TEST_F(FolderRenameTest, ACheckedSuffixWithoutAFolderIsPassedOver) {
  makeFile("Ann_FR/Ann_FR_0001.JPG");
  startWith({{"Ann"}});
  move(0, "Bea", {"_SS", "_FR"});
  EXPECT_EQ(allInTarget(), (Names{"Bea_FR/", "Bea_FR/Bea_FR_0001.JPG"}));
  EXPECT_EQ(statusLine.text(), "Moved 1 photo to \"Bea\" (new row added).");
}

TEST_F(FolderRenameTest, ANameThatDiffersInLetterCaseAloneMovesNothing) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}});
  for (const char* name : {"ann", " ANN ", "", "  "})
    move(0, name);
  move(7, "Bea");
  move(-1, "Bea");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_EQ(steps, QStringList());
}

TEST_F(FolderRenameTest, ARowWithoutCellsHasNothingToMove) {
  startWith({{}});
  rename.promptMoveFromRow(0, std::nullopt);
  move(0, "Bea");
  EXPECT_EQ(rowNames(), Names{"(no cells)"});
  EXPECT_TRUE(operatorSeam.questions.empty());
}

TEST_F(FolderRenameTest, AnExistingRowIsFoundInAnyLetterCaseWhileTheFolderIsNamedAsTyped) {
  makeFiles({"Joe/Joe_0001.JPG", "Ann/Ann_0001.JPG"});
  startWith({{"Joe"}, {}, {"Ann"}, {"ANN"}});
  move(0, " ann ");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG", "ann/", "ann/ann_0001.JPG"}));
  EXPECT_EQ(rowNames(), (Names{"Joe", "(no cells)", "Ann", "ANN"}));
  EXPECT_EQ(list.selectedRow(), 2);
  EXPECT_EQ(statusLine.text(), "Moved 1 photo to \"ann\".");
}

TEST_F(FolderRenameTest, ANewRowHasTheNameAsTypedAndTheFolderItsSafeForm) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}});
  move(0, " B/C %1 ");
  EXPECT_EQ(allInTarget(), (Names{"B-C %1/", "B-C %1/B-C %1_0001.JPG"}));
  EXPECT_EQ(rowNames(), (Names{"Ann", "B/C %1"}));
  EXPECT_EQ(statusLine.text(), "Moved 1 photo to \"B/C %1\" (new row added).");
}

TEST_F(FolderRenameTest, WithoutATargetFolderOnlyTheListChanges) {
  targetDir.clear();
  startWith({{"Ann", "", "4"}});
  move(0, "Bea");
  EXPECT_EQ(rowNames(), (Names{"Ann", "Bea"}));
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{4, 0}));
  EXPECT_EQ(statusLine.text(), "Moved 0 photos to \"Bea\" (new row added).");
}

TEST_F(FolderRenameTest, APersonWithoutFoldersStillGetsTheRow) {
  startWith({{"Ann"}});
  move(0, "Bea", {"_FR"});
  EXPECT_EQ(rowNames(), (Names{"Ann", "Bea"}));
  EXPECT_EQ(statusLine.text(), "Moved 0 photos to \"Bea\" (new row added).");
}

TEST_F(FolderRenameTest, ATargetFolderThatIsGoneMovesNothing) {
  startWith({{"Ann"}});
  targetDir = path("missing");
  move(0, "Bea");
  EXPECT_EQ(statusLine.text(), "Moved 0 photos to \"Bea\" (new row added).");
  EXPECT_FALSE(QFileInfo::exists(targetDir));
}

TEST_F(FolderRenameTest, TheFirstProblemIsShownAndTheOtherFoldersAreMovedAllTheSame) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_A/Ann_A_0001.JPG", "Ann_B/Ann_B_0001.JPG"});
  startWith({{"Ann"}});
  broken.failCall(Operation::Move, 1, "Read-only file system");
  broken.failCall(Operation::Move, 2, "Input/output error");
  move(0, "Bea", {"_A", "_B"});
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG", "Ann_A/", "Ann_A/Ann_A_0001.JPG", "Bea_B/",
                                  "Bea_B/Bea_B_0001.JPG"}));
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Move Problem", "Read-only file system"}}));
  EXPECT_FALSE(statusWasSet());
  EXPECT_EQ(rowNames(), (Names{"Ann", "Bea"}));
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{2, 1}));
}

TEST_F(FolderRenameTest, NamesWithTheSameSafeFormAreAProblemAndStillTwoRows) {
  makeFile("a-b/a-b_0001.JPG");
  startWith({{"a/b"}});
  move(0, "a:b");
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Move Problem", "That is already the folder's name."}}));
  EXPECT_EQ(rowNames(), (Names{"a/b", "a:b"}));
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{1, 1}));
}

TEST_F(FolderRenameTest, AFolderWhoseSuffixIsNoTextStaysAndIsReported) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_\xff/1.JPG"});
  startWith({{"Ann"}});
  operatorSeam.willAnswer({.button = 0, .texts = {"Bea"}, .checks = {false, true}});
  rename.ctxRenameFolderAndImages(0);
  serveAll();
  EXPECT_EQ(allInTarget(), (Names{"Ann_\xff/", "Ann_\xff/1.JPG", "Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Move Problem", "Please enter a valid name."}}));
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{1, 1}));
}

TEST_F(FolderRenameTest, EndsWithCountsFilterSelectionAndWatchInThisOrder) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann", "", "1"}});
  move(0, "Bea");
  EXPECT_EQ(steps, (QStringList{"reload",                                 // the rescan
                                "reload", "select", "select and scroll",  // the row
                                "reload",                                 // its count
                                "reload", "select", "select and scroll", "path labels", "auto watch",
                                "status: Moved 1 photo to \"Bea\" (new row added)."}));
}

TEST_F(FolderRenameTest, APhotoThatArrivesBeforeTheCountsBelongsToTheDestination) {
  makeFile("Cat/Cat_0001.JPG");
  startWith({{"Ann"}, {"Bea", "", "0"}, {"Cat", "", "1"}});
  std::optional<std::string> name;
  qint64 row = -1;
  // What filing asks, as soon as the folders have been looked at anew.
  QObject::connect(&folders, &PhotoFolders::pathLabelsStale, [&] {
    thread.add([&](SerialThread::Line& mainThread) {
      mainThread.ask([&] {
        name = list.selectedQueueItemName();
        row = list.captureRow();
      });
    });
  });
  move(2, "Dan");
  EXPECT_EQ(name, "Dan");
  EXPECT_EQ(row, 3);
  EXPECT_EQ(list.selectedRow(), 3);
}

TEST_F(FolderRenameTest, TheRowsShownAreThoseOfTheListAsSoonAsARowIsAdded) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann", "", "1"}, {"Cat"}});
  std::vector<qint64> shown;
  QObject::connect(&folders, &PhotoFolders::pathLabelsStale, [&] {
    thread.add([&](SerialThread::Line& mainThread) { mainThread.ask([&] { shown = list.filteredRows(); }); });
  });
  move(0, "Bea");
  EXPECT_EQ(shown, (std::vector<qint64>{0, 1, 2}));
}

TEST_F(FolderRenameTest, TheFilterSeesTheNewCounts) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann", "", "1"}, {"Bea", "", "0"}});
  list.cycleCaptureFilter();  // those with photos
  move(0, "Bea");
  EXPECT_EQ(shownNames(), QStringList{"Bea"});
}

TEST_F(FolderRenameTest, FindsItsRowsAgainWhenTheListIsEditedMeanwhile) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}, {"Cat"}});
  rename.movePhotosFromRow(0, "Bea", {});
  list.editableGrid().insert(0, {"Zoe"});
  serveAll();
  EXPECT_EQ(rowNames(), (Names{"Zoe", "Ann", "Bea", "Cat"}));
  EXPECT_EQ(list.selectedRow(), 2);
}

TEST_F(FolderRenameTest, AddsTheRowAtTheEndWhenTheOldOneIsDeletedMeanwhile) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}, {"Cat"}});
  rename.movePhotosFromRow(0, "Bea", {});
  list.editableGrid().remove(0);
  serveAll();
  EXPECT_EQ(rowNames(), (Names{"Cat", "Bea"}));
  EXPECT_EQ(counts(), (std::vector<std::int64_t>{0, 1}));
}

// ---- The move dialog

TEST_F(FolderRenameTest, TheDialogOffersTheSuffixesOfTagsAndFolders) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_Lee/1.JPG", "Ann_Lee/2.JPG"});
  startWith({{"Ann"}});
  operatorSeam.willAnswer(1);
  rename.ctxRenameFolderAndImages(0);
  ASSERT_EQ(operatorSeam.questions.size(), 1u);
  const Accessory& area = *operatorSeam.questions[0].accessory;
  ASSERT_EQ(area.checkBoxes.size(), 2u);
  EXPECT_EQ(area.checkBoxes[0].title, "_FR   (no photos)");
  EXPECT_EQ(area.checkBoxes[1].title, "_Lee   (2 photos)");
  EXPECT_EQ(area.textFields[0].text, "Ann");
}

TEST_F(FolderRenameTest, TheDialogOffersTagsAloneWithoutATargetFolder) {
  targetDir.clear();
  startWith({{"Ann"}});
  operatorSeam.willAnswer(1);
  rename.ctxRenameFolderAndImages(0);
  ASSERT_EQ(operatorSeam.questions[0].accessory->checkBoxes.size(), 1u);
  EXPECT_EQ(operatorSeam.questions[0].accessory->checkBoxes[0].title, "_FR   (no photos)");
}

TEST_F(FolderRenameTest, AFileNamedLikeASuffixFolderIsNoneToMove) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_FR"});
  startWith({{"Ann"}});
  operatorSeam.willAnswer(1);
  rename.ctxRenameFolderAndImages(0);
  ASSERT_EQ(operatorSeam.questions[0].accessory->checkBoxes.size(), 1u);
  EXPECT_EQ(operatorSeam.questions[0].accessory->checkBoxes[0].title, "_FR   (no photos)");
  EXPECT_FALSE(operatorSeam.questions[0].accessory->checkBoxes[0].checked);
}

TEST_F(FolderRenameTest, TheFirstButtonMovesWhatIsCheckedToTheTrimmedName) {
  makeFiles({"Ann/Ann_0001.JPG", "Ann_FR/Ann_FR_0001.JPG", "Ann_Lee/Ann_Lee_0001.JPG"});
  startWith({{"Ann"}});
  operatorSeam.willAnswer({.button = 0, .texts = {"  Bea "}, .checks = {false, true}});
  rename.ctxRenameFolderAndImages(0);
  serveAll();
  EXPECT_EQ(allInTarget(), (Names{"Ann_FR/", "Ann_FR/Ann_FR_0001.JPG", "Bea/", "Bea/Bea_0001.JPG", "Bea_Lee/",
                                  "Bea_Lee/Bea_Lee_0001.JPG"}));
}

TEST_F(FolderRenameTest, CancelMovesNothing) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}});
  operatorSeam.willAnswer({.button = 1, .texts = {"Bea"}});
  rename.ctxRenameFolderAndImages(0);
  serveAll();
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_EQ(steps, QStringList());
}

TEST_F(FolderRenameTest, AFixedTargetTakesThePhotosWithoutAName) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Ann"}, {"Bea"}});
  operatorSeam.willAnswer(0);
  rename.promptMoveFromRow(0, "Bea");
  serveAll();
  EXPECT_EQ(operatorSeam.questions[0].title, "Move photos into \"Bea\"");
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(list.selectedRow(), 1);
}

// ---- Renaming any folder

TEST_F(FolderRenameTest, RenamingAFolderNeedsATargetFolder) {
  targetDir.clear();
  rename.renameFolderInteractive();
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"No Target Folder", "Choose a target folder first."}}));
  EXPECT_TRUE(operatorSeam.requests.empty());
}

TEST_F(FolderRenameTest, AsksForTheFolderAndItsNewName) {
  makeFile("Ann/Ann_0001.JPG");
  startWith({{"Bea"}});
  operatorSeam.willChoose(inTargetDir("Ann/"));
  operatorSeam.willAnswer({.button = 0, .texts = {" Bea "}});
  rename.renameFolderInteractive();
  serveAll();
  ASSERT_EQ(operatorSeam.requests.size(), 1u);
  EXPECT_EQ(operatorSeam.requests[0].kind, PathRequest::Kind::OpenFolder);
  EXPECT_EQ(operatorSeam.requests[0].message, "Choose the photo folder that was filed under the wrong name.");
  EXPECT_EQ(operatorSeam.requests[0].button, "Choose");
  EXPECT_EQ(operatorSeam.requests[0].startFolder, targetDir);
  ASSERT_EQ(operatorSeam.questions.size(), 1u);
  const Question& question = operatorSeam.questions[0];
  EXPECT_EQ(question.title, "Rename Photo Folder");
  EXPECT_EQ(question.message, "Rename \"Ann\" and the images inside it to:");
  EXPECT_EQ(question.buttons, (QStringList{"Rename", "Cancel"}));
  EXPECT_EQ(question.accessory->textFields[0].rect.size(), QSize(320, 24));
  EXPECT_EQ(question.accessory->textFields[0].text, "Ann");
  EXPECT_EQ(allInTarget(), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(counts(), std::vector<std::int64_t>{1});
  EXPECT_EQ(folders.folderCount(), 1);
  EXPECT_EQ(statusLine.text(), "Renamed folder to \"Bea\" (1 photo updated).");
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
}

TEST_F(FolderRenameTest, CancellingEitherDialogChangesNothing) {
  makeFile("Ann/Ann_0001.JPG");
  operatorSeam.willChoose("");
  rename.renameFolderInteractive();
  operatorSeam.willChoose(inTargetDir("Ann"));
  operatorSeam.willAnswer({.button = 1, .texts = {"Bea"}});
  rename.renameFolderInteractive();
  serveAll();
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_EQ(steps, QStringList());
}

TEST_F(FolderRenameTest, AnAllBlankNameBecomesUntitled) {
  makeFile("Ann/Ann_0001.JPG");
  apply(inTargetDir("Ann"), "   ");
  EXPECT_EQ(allInTarget(), (Names{"untitled/", "untitled/untitled_0001.JPG"}));
  EXPECT_EQ(statusLine.text(), "Renamed folder to \"untitled\" (1 photo updated).");
}

TEST_F(FolderRenameTest, TheFoldersOwnNameIsRefused) {
  makeFile("Ann/Ann_0001.JPG");
  apply(inTargetDir("Ann"), " Ann ");
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Rename Failed", "That is already the folder's name."}}));
  EXPECT_FALSE(statusWasSet());
}

TEST_F(FolderRenameTest, ANameThatIsNoTextIsRefused) {
  makeFile("Ann/Ann_0001.JPG");
  apply(inTargetDir("Ann"), QString(QChar(0xD800)));
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Rename Failed", "Please enter a valid name."}}));
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_FALSE(statusWasSet());
}

TEST_F(FolderRenameTest, AFolderThatCannotBeMovedIsReported) {
  makeFile("Ann/Ann_0001.JPG");
  broken.failAlways(Operation::Move, "");
  apply(inTargetDir("Ann"), "Bea");
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Rename Failed", "Could not rename the folder."}}));
}

TEST_F(FolderRenameTest, AFolderOutsideTheTargetFolderIsRenamedWithoutTheBackup) {
  backupOn = true;
  makeFile("../elsewhere/Ann/Ann_0001.JPG");
  makeFile("../Backup/Ann/Ann_0001.JPG");
  apply(path("elsewhere/Ann"), "Bea");
  EXPECT_EQ(allBelow(path("elsewhere").toStdString()), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
}

// ---- The backup follows

TEST_F(FolderRenameTest, TheBackupsCopyIsRenamedLikewise) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "Ann_FR/Ann_FR_0001.JPG"});
  makeFiles({"../Backup/Ann/Ann_0001.JPG", "../Backup/Ann_FR/Ann_FR_0001.JPG", "../Backup/Bea/Bea_0007.JPG"});
  startWith({{"Ann"}});
  move(0, "Bea", {"_FR"});
  EXPECT_EQ(allBelow(backup),
            (Names{"Bea/", "Bea/Bea_0007.JPG", "Bea/Bea_0008.JPG", "Bea_FR/", "Bea_FR/Bea_FR_0001.JPG"}));
}

TEST_F(FolderRenameTest, ACopyThatIsBeingMadeGoesWithTheNameThatItWasMadeFor) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  makeFiles({"../Backup/Ann/Ann_0002.JPG.ambrel_tmp", "../Backup/Ann/Ann_FR_0003.JPG.ambrel_tmp",
             "../Backup/Ann/Other_0004.JPG.ambrel_tmp", "../Backup/Ann/Ann_0005.txt"});
  apply(inTargetDir("Ann"), "Ann_FR");
  EXPECT_EQ(allBelow(backup),
            (Names{"Ann_FR/", "Ann_FR/Ann_0005.txt", "Ann_FR/Ann_FR_0001.JPG",
                   "Ann_FR/Ann_FR_0003.JPG.ambrel_tmp", "Ann_FR/Other_0004.JPG.ambrel_tmp"}));
}

TEST_F(FolderRenameTest, TheBackupFollowsEvenWhenTheRenameIsRefused) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  broken.failCall(Operation::Move, 1, "Read-only file system");
  apply(inTargetDir("Ann"), "Bea");
  EXPECT_EQ(allInTarget(), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_EQ(allBelow(backup), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  EXPECT_EQ(operatorSeam.alerts, Alerts({{"Rename Failed", "Read-only file system"}}));
}

TEST_F(FolderRenameTest, ANameThatIsRefusedReachesNoBackup) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  apply(inTargetDir("Ann"), "Ann");
  EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
}

TEST_F(FolderRenameTest, ANameOfTwoDotsLeadsNoCopyOutOfTheBackupFolder) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  apply(inTargetDir("Ann"), "..");
  EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
}

TEST_F(FolderRenameTest, ABackupThatFailsIsNotReported) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  broken.failCall(Operation::Move, 3, "No such device");  // after the folder and its photo
  apply(inTargetDir("Ann"), "Bea");
  EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  EXPECT_TRUE(operatorSeam.alerts.empty());
  EXPECT_EQ(statusLine.text(), "Renamed folder to \"Bea\" (1 photo updated).");
}

TEST_F(FolderRenameTest, AFolderWithoutACopyLeavesTheBackupAlone) {
  backupOn = true;
  makeFile("Ann/Ann_0001.JPG");
  apply(inTargetDir("Ann"), "Bea");
  EXPECT_EQ(allBelow(backup), Names());
}

TEST_F(FolderRenameTest, TellsWhenARenameBeginsWhatItMovedAndThatTheBackupHasFollowed) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  QStringList told;
  QObject::connect(&rename, &FolderRename::renameBegins, [&] { told.append("begins"); });
  QObject::connect(&rename, &FolderRename::photosMoved, [&](const Renamed& renamed) {
    told.append(QStringLiteral("moved %1").arg(renamed.moved.at(0).files.size()));
    EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  });
  QObject::connect(&rename, &FolderRename::backupFollowed, [&] {
    told.append("followed");
    EXPECT_EQ(allBelow(backup), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  });
  apply(inTargetDir("Ann"), "Bea");
  EXPECT_EQ(told, (QStringList{"begins", "moved 1", "followed"}));
}

TEST_F(FolderRenameTest, TellsTheEndOfARenameThatTheBackupHasNoPartIn) {
  int begun = 0;
  int followed = 0;
  QObject::connect(&rename, &FolderRename::renameBegins, [&] { ++begun; });
  QObject::connect(&rename, &FolderRename::backupFollowed, [&] { ++followed; });
  makeFile("Ann/Ann_0001.JPG");
  apply(inTargetDir("Ann"), "Bea");
  apply(inTargetDir("Bea"), "Bea");
  EXPECT_EQ(begun, 2);
  EXPECT_EQ(followed, 2);
}

TEST_F(FolderRenameTest, TheBackupFollowsWhenItRestsOrWhenTheApplicationQuits) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  std::function<void()> atRest;
  waitForRest = [&](const std::function<void()>& act) { atRest = act; };
  rename.applyFolderRename(inTargetDir("Ann"), "Bea");
  serve();
  EXPECT_EQ(allBelow(backup), (Names{"Ann/", "Ann/Ann_0001.JPG"}));
  ASSERT_TRUE(atRest);
  EXPECT_TRUE(rename.finishMirroring(kLongEnough));
  EXPECT_EQ(allBelow(backup), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
  atRest();
  EXPECT_TRUE(rename.finishMirroring(kLongEnough));
  EXPECT_EQ(allBelow(backup), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
}

TEST_F(FolderRenameTest, ABackupDriveThatHangsHoldsUpNeitherTheReportNorFiling) {
  backupOn = true;
  makeFiles({"Ann/Ann_0001.JPG", "../Backup/Ann/Ann_0001.JPG"});
  std::mutex hanging;
  std::unique_lock hold(hanging);
  broken.callBefore(Operation::Move, [&](const QString& from, const QString&) {
    if (from.startsWith(QString::fromStdString(backup))) hanging.lock(), hanging.unlock();
  });
  rename.applyFolderRename(inTargetDir("Ann"), "Bea");
  serve();
  EXPECT_EQ(statusLine.text(), "Renamed folder to \"Bea\" (1 photo updated).");
  EXPECT_FALSE(rename.finishMirroring(std::chrono::milliseconds(1)));
  hold.unlock();
  EXPECT_TRUE(rename.finishMirroring(kLongEnough));
  EXPECT_EQ(allBelow(backup), (Names{"Bea/", "Bea/Bea_0001.JPG"}));
}

}  // namespace
}  // namespace ambrel
