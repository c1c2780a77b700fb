// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

#include "core/app/AmbrelAppDelegate.h"
#include "core/app/PathLine.h"
#include "support/AppSession.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

using Alert = ScriptedOperator::Alert;
using Operation = BrokenFiles::Operation;

// ---- Launch and shut-down

TEST(Launch, RunsItsStepsInOrderBeforeTheSplash) {
  AppSession session;
  session.app->applicationDidFinishLaunching(session.screen);
  EXPECT_EQ(session.screen.steps,
            (QStringList{"installMainMenu 7.04", "installAppIconIfAvailable 0", "observeAppearance",
                         "installKeyMonitor", "killStrayWorkers", "showSplash 7.04"}));
}

TEST(Launch, BuildsTheWindowWhenTheSplashHasBeenShownLongEnough) {
  AppSession session;
  session.app->applicationDidFinishLaunching(session.screen);
  session.screen.steps.clear();
  session.clock.advance(AmbrelAppDelegate::kSplashTime - 1ms);
  EXPECT_EQ(session.screen.steps, QStringList());
  session.clock.advance(1ms);
  EXPECT_EQ(session.screen.steps,
            (QStringList{"closeSplash", "buildUI", "layoutUI", "applyAppearance", "showWindow"}));
}

TEST(Launch, EndsWithTheReadinessTextOnTheStatusLine) {
  AppSession session;
  EXPECT_EQ(session.app->statusLine().text(), "Starting Ambrel Tether...");
  EXPECT_EQ(session.app->statusLine().kind(), StatusKind::Busy);
  session.launch();
  EXPECT_EQ(session.app->statusLine().text(), "Setup needed");
}

TEST(Launch, BuildsNoSecondWindow) {
  AppSession session;
  session.screen.buildUI("7.04");
  session.launch();
  EXPECT_EQ(session.screen.steps.count("buildUI"), 1);
}

TEST(Launch, RemovesStrayWorkersBeforeAnyOfItsOwnIsStarted) {
  AppSession session;
  session.launch();
  EXPECT_EQ(session.strayRemovals, std::vector<qint64>{0});
}

TEST(Launch, StartsTheWorkerOnTheFirstAutoDetectTick) {
  AppSession session;
  session.launch();
  EXPECT_TRUE(session.link.launches.empty());
  session.clock.advance(2500ms);
  EXPECT_EQ(session.link.launches.size(), 1u);
}

TEST(Launch, AsksForTheLatestReleaseThreeSecondsAfterTheWindowIsBuilt) {
  for (const int milliseconds : {2999, 3000}) {
    AppSession session;
    session.releaseHost = QUrl(QStringLiteral("http://127.0.0.1:1"));
    session.startApplication();
    session.launch();
    session.clock.advance(std::chrono::milliseconds(milliseconds));
    session.quit();
    session.app.reset();
    EXPECT_EQ(Preferences(session.locations.preferencesFile).lastUpdateCheck().has_value(),
              milliseconds == 3000);
  }
}

TEST(Launch, RefusesASecondInstanceWithAnAlertAndEndsIt) {
  AppSession session;
  session.launch();
  AmbrelAppDelegate second(
      session.clock, session.operatorSeam, session.files, session.link,
      Surroundings{session.locations, Bundle(session.path("bundle")), [](qint64) { FAIL(); }});
  RecordingScreen screen;
  second.applicationDidFinishLaunching(screen);
  EXPECT_EQ(
      session.operatorSeam.alerts,
      std::vector<Alert>({{"Ambrel Photo Tether is already open",
                           "Only one instance can run at a time. Please use the existing Ambrel Photo Tether "
                           "window."}}));
  EXPECT_EQ(screen.steps, QStringList{"terminate"});
}

TEST(Launch, NamesTheVersionOfItsBundle) {
  AppSession session;
  session.writeFile(session.path("bundle/Contents/Info.plist"),
                    "<plist><dict><key>CFBundleShortVersionString</key><string>8.1</string></dict></plist>");
  session.startApplication();
  session.app->applicationDidFinishLaunching(session.screen);
  EXPECT_EQ(session.screen.steps.first(), "installMainMenu 8.1");
}

TEST(ShutDown, RunsItsStepsInOrderAndEndsTheWorker) {
  AppSession session;
  session.launch();
  session.connectCamera();
  session.screen.steps.clear();
  session.quit();
  EXPECT_EQ(session.screen.steps, (QStringList{"stopObservingAppearance", "removeKeyMonitor"}));
  EXPECT_EQ(session.link.sent.back(), "QUIT");
  EXPECT_EQ(session.link.terminations, 1);
}

TEST(ShutDown, TreatsTheWorkersExitAsNoLoss) {
  AppSession session;
  session.launch();
  session.connectCamera();
  session.quit();
  session.operatorSeam.alerts.clear();
  session.link.exit();
  session.clock.advance(10s);
  EXPECT_TRUE(session.operatorSeam.alerts.empty());
  EXPECT_EQ(session.link.launches.size(), 1u);
}

TEST(ShutDown, LeavesNoTimerThatActs) {
  AppSession session;
  session.launch();
  session.quit();
  session.clock.advance(60s);
  EXPECT_TRUE(session.link.launches.empty());
}

// A file where the folder should be stands for a disk that takes nothing.
class FullDisk {
 public:
  explicit FullDisk(const AppSession& session)
      : _folder(session.locations.applicationSupport + "/Ambrel Tether") {
    QDir().rename(_folder, _folder + " elsewhere");
    session.writeFile(_folder, "not a folder");
  }
  ~FullDisk() {
    QFile::remove(_folder);
    QDir().rename(_folder + " elsewhere", _folder);
  }

 private:
  const QString _folder;
};

TEST(ListOnAFullDisk, IsSavedOnceThereIsRoomAgainWithoutAnotherChange) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  const QString store = session.locations.dataFile("ambrel_grid.csv");
  {
    const FullDisk full(session);
    session.app->list().setObjectValue("on Friday", Cell::Note, 0);
    session.clock.advance(AmbrelAppDelegate::kSaveAgainPeriod);
  }
  EXPECT_FALSE(session.readFile(store).contains("on Friday"));
  session.clock.advance(AmbrelAppDelegate::kSaveAgainPeriod);
  EXPECT_TRUE(session.readFile(store).contains("on Friday"));
}

TEST(ListOnAFullDisk, IsSavedWhenQuittingIfThereIsRoomByThen) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  {
    const FullDisk full(session);
    session.app->list().setObjectValue("on Friday", Cell::Note, 0);
  }
  session.quit();
  EXPECT_TRUE(session.readFile(session.locations.dataFile("ambrel_grid.csv")).contains("on Friday"));
}

TEST(ListOnAFullDisk, IsNotWrittenAgainWhereTheSaveWentWell) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  const QString store = session.locations.dataFile("ambrel_grid.csv");
  QFile::remove(store);
  session.clock.advance(2 * AmbrelAppDelegate::kSaveAgainPeriod);
  session.quit();
  EXPECT_FALSE(QFile::exists(store));
}

TEST(ListOnAFullDisk, IsForgottenByAReset) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  {
    const FullDisk full(session);
    session.app->list().setObjectValue("on Friday", Cell::Note, 0);
  }
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  session.clock.advance(AmbrelAppDelegate::kSaveAgainPeriod);
  EXPECT_FALSE(QFile::exists(session.locations.dataFile("ambrel_grid.csv")));
}

TEST(ListOnAFailingDisk, IsSavedOnceMoreWhereTheSaveOfQuittingFails) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  for (const int save : {1, 2})
    session.files.failCall(Operation::ReplaceUnflushed, save, "Input/output error");
  session.app->list().setObjectValue("on Friday", Cell::Note, 0);
  session.quit();
  EXPECT_TRUE(session.readFile(session.storePath()).contains("on Friday"));
}

class ListOnAHesitantDisk : public testing::Test {
 protected:
  // Nothing is written before the disk goes on, and nobody waits for it until the application quits.
  void changeTheList(std::chrono::milliseconds timeToFinishWhenQuitting) {
    session.launch();
    session.importNames({"Anna"});
    session.quit();
    session.longestWaitForListStore = 0ms;
    session.timeToFinishWhenQuitting = timeToFinishWhenQuitting;
    session.startApplication();
    session.launch();
    session.files.callBefore(Operation::ReplaceUnflushed,
                             [this](const QString&, const QString&) { goesOn.wait(); });
    session.app->list().setObjectValue("on Friday", Cell::Note, 0);
  }
  bool isSaved() const { return session.readFile(session.storePath()).contains("on Friday"); }

  std::latch goesOn{1};
  AppSession session;
};

TEST_F(ListOnAHesitantDisk, IsSavedOnceMoreWhereASaveFailsThatIsUnderWayWhenQuitting) {
  session.files.failCall(Operation::ReplaceUnflushed, 2, "Input/output error");
  changeTheList(kAsLongAsItTakes);
  std::thread disk([this] { goesOn.count_down(); });
  session.quit();
  disk.join();
  EXPECT_TRUE(isSaved());
  EXPECT_EQ(session.files.calls(Operation::ReplaceUnflushed), 3);
}

TEST_F(ListOnAHesitantDisk, DoesNotHoldUpQuittingBeyondTheTimeForIt) {
  changeTheList(1ms);
  session.quit();
  EXPECT_FALSE(isSaved());
  EXPECT_EQ(session.screen.steps.back(), "removeKeyMonitor");
  goesOn.count_down();
  session.app.reset();
  EXPECT_TRUE(isSaved());
}

TEST(ShutDown, FilesThePhotosThatStillWait) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  const QString target = session.chooseTarget();
  session.connectCamera();
  for (int shot = 0; shot < 5; ++shot) {
    const QString source = session.path(QStringLiteral("shot%1.JPG").arg(shot));
    session.writeFile(source, "photo");
    session.link.say("DOWNLOADED|" + source.toUtf8());
  }
  session.quit();
  EXPECT_EQ(QDir(target + "/Anna").entryList(QDir::Files).size(), 5);
}

TEST(ShutDown, FollowsTheClosingOfTheLastWindow) {
  AppSession session;
  EXPECT_TRUE(session.app->applicationShouldTerminateAfterLastWindowClosed());
}

TEST(SharedAlert, IsShownLaterOnTheMainThread) {
  AppSession session;
  session.app->showAlert("Title", "Text");
  EXPECT_TRUE(session.operatorSeam.alerts.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(session.operatorSeam.alerts, std::vector<Alert>({{"Title", "Text"}}));
}

TEST(Resources, AreFoundInTheBundleInTheOrderAskedFor) {
  AppSession session;
  QDir(session.folder.path()).mkpath("bundle/Contents/Resources");
  session.writeFile(session.path("bundle/Contents/Resources/b.png"), "b");
  EXPECT_EQ(session.app->resourcesNamedAny({"a.icns", "b.png"}),
            QStringList{session.path("bundle/Contents/Resources/b.png")});
}

// ---- What survives a restart

TEST(SavedPaths, BringBackListRowFolderAndCounter) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben", "Cara"});
  const QString target = session.chooseTarget();
  session.app->list().setSelectedRow(1);
  session.app->counterTextDidChange("41");
  session.quit();

  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->list().grid().rowCount(), 3);
  EXPECT_EQ(session.app->list().selectedRow(), 1);
  EXPECT_EQ(session.app->settings().targetDir(), target);
  EXPECT_EQ(session.app->settings().counterText(), "41");
  EXPECT_EQ(session.screen.pathLine, "List: 3 names (from names.csv)  |  Save to: Photos");
}

TEST(SavedPaths, IgnoreAFolderThatIsGoneButKeepItStored) {
  AppSession session;
  session.launch();
  const QString target = session.chooseTarget();
  session.quit();
  QDir().rmdir(target);

  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->settings().targetDir(), QString());
  session.quit();
  EXPECT_EQ(Preferences(session.locations.preferencesFile).lastTargetDir(), target);
}

TEST(SavedPaths, KeepAFolderThatMerelyCannotBeSeenAtTheLaunch) {
  AppSession session;
  session.launch();
  const QString target = session.chooseTarget();
  session.quit();
  QDir().rmdir(target);
  ASSERT_TRUE(QFile::link(target, target));  // a loop: every look fails, and not because nothing is there

  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->settings().targetDir(), target);
}

TEST(SavedPaths, ImportTheLastFileAgainWhenTheStoreIsMissingAndWriteTheStore) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  session.quit();
  session.app.reset();
  ASSERT_TRUE(QFile::remove(session.storePath()));

  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->list().grid().rowCount(), 2);
  EXPECT_TRUE(session.readFile(session.storePath()).contains("Anna"));
}

TEST(SavedPaths, StartWithTheDestinationBothWhateverWasChosen) {
  AppSession session;
  session.launch();
  session.app->selectDestination(2);
  EXPECT_EQ(session.screen.controls.saveModeIndex, 2);
  session.quit();
  session.startApplication();
  session.launch();
  EXPECT_EQ(session.screen.controls.saveModeIndex, 0);
}

TEST(SavedPaths, NeverStoreACounterBelowOne) {
  AppSession session;
  session.launch();
  session.app->counterTextDidChange("12");
  session.app->counterTextDidChange("0");
  session.app->counterTextDidChange("");
  session.app.reset();
  EXPECT_EQ(Preferences(session.locations.preferencesFile).lastCounterValue(), 12);
}

TEST(SavedPaths, SelectTheFirstRowWhenTheStoredOneIsOutsideTheList) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  session.quit();
  session.app.reset();
  Preferences(session.locations.preferencesFile).setLastSelectedRowIndex(7);
  session.startApplication();
  session.launch();
  EXPECT_EQ(session.app->list().selectedRow(), 0);
}

// ---- Intents

TEST(SelectFolder, TellsARunningWorkerAndStartsWatching) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.app->connectCameraManual();
  session.link.say("READY|OK");
  session.link.say("CONNECTED|");
  session.link.sent.clear();
  const QString target = session.chooseTarget();
  const QByteArray folderLine = "SET_DOWNLOAD_DIR|" + target.toUtf8();
  EXPECT_EQ(session.link.sent, (std::vector<QByteArray>{folderLine, folderLine, "PUMP_ACTIVE"}));
  EXPECT_TRUE(session.app->isWatching());
}

TEST(SelectFolder, SaysSoOnTheStatusLine) {
  AppSession session;
  session.launch();
  QStringList texts;
  QObject::connect(&session.app->statusLine(), &StatusLine::changed, session.app.get(),
                   [&](const QString& text, StatusKind) { texts.append(text); });
  session.chooseTarget();
  EXPECT_EQ(texts.first(), "Target folder selected.");
}

TEST(SelectFolder, ChangesNothingWhenCancelled) {
  AppSession session;
  session.launch();
  const QString target = session.chooseTarget();
  session.operatorSeam.willChoose({});
  session.app->selectFolder();
  EXPECT_EQ(session.app->settings().targetDir(), target);
}

TEST(SelectFolder, RefusesAPathWithALineBreak) {
  AppSession session;
  session.launch();
  session.chooseTarget("two\nlines");
  EXPECT_EQ(session.app->settings().targetDir(), QString());
  ASSERT_EQ(session.operatorSeam.alerts.size(), 1u);
  EXPECT_EQ(session.operatorSeam.alerts.front().title, "Folder Cannot Be Used");
}

TEST(SelectDestination, IgnoresAnIndexThatNoButtonHas) {
  AppSession session;
  session.launch();
  session.app->selectDestination(1);
  session.app->selectDestination(3);
  session.app->selectDestination(-1);
  EXPECT_EQ(session.app->settings().saveModeIndex(), 1);
}

TEST(Controls, AreLockedWhileAConnectIsPending) {
  AppSession session;
  session.launch();
  session.app->connectCameraManual();
  EXPECT_FALSE(session.screen.controls.setupUnlocked);
  session.link.say("READY|OK");
  EXPECT_TRUE(session.screen.controls.setupUnlocked);
}

TEST(Controls, OfferTheExportOnlyWithNamesInTheList) {
  AppSession session;
  session.launch();
  EXPECT_FALSE(session.screen.controls.exportEnabled);
  session.importNames({"Anna"});
  session.app->updateControls();
  EXPECT_TRUE(session.screen.controls.exportEnabled);
}

// ---- Reset

// A session in the middle of a shoot, the camera not watched.
class Reset : public ::testing::Test {
 protected:
  Reset() {
    session.app.reset();
    Preferences(session.locations.preferencesFile)
        .setSuffixes({QVariantMap{{"label", "FR"}, {"suffix", "_FR"}, {"on", true}}});
    session.startApplication();
    session.launch();
    session.importNames({"Ben", "Anna"});
    session.chooseTarget();
    session.app->folders().noteFolderWithImage(session.path("Photos/Ben/Ben_0001.JPG"));
    session.app->list().setSearchText("n");
    session.app->list().cycleCaptureFilter();
    session.app->list().cycleSortMode();
    session.app->selectDestination(2);
    session.app->counterTextDidChange("41");
    session.operatorSeam.alerts.clear();
    session.operatorSeam.questions.clear();
  }
  QStringList storedKeys() {
    session.app.reset();
    return QSettings(session.locations.preferencesFile, QSettings::IniFormat).allKeys();
  }
  AppSession session;
};

TEST_F(Reset, AsksFirst) {
  session.operatorSeam.willAnswer(1);
  session.app->resetWorkflow();
  ASSERT_EQ(session.operatorSeam.questions.size(), 1u);
  const Question& question = session.operatorSeam.questions.front();
  EXPECT_EQ(question.title, "Reset Ambrel Tether?");
  EXPECT_EQ(question.message,
            "This will clear the list (names and notes), clear the target folder selection, turn off FR/SS, "
            "reset Destination to Both, and reset the counter to 1. Use Export first if you want to keep the "
            "list.");
  EXPECT_EQ(question.buttons, (QStringList{"Reset", "Cancel"}));
}

TEST_F(Reset, ChangesNothingWhenCancelled) {
  session.operatorSeam.willAnswer(1);
  session.app->resetWorkflow();
  EXPECT_EQ(session.app->list().grid().rowCount(), 2);
  EXPECT_EQ(session.app->settings().targetDir(), session.path("Photos"));
  EXPECT_EQ(session.app->settings().counterText(), "41");
  EXPECT_TRUE(QFileInfo::exists(session.storePath()));
}

TEST_F(Reset, ForgetsTheListAndItsStore) {
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  NameList& list = session.app->list();
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_TRUE(list.filteredRows().empty());
  EXPECT_EQ(list.selectedRow(), -1);
  EXPECT_EQ(list.csvPath(), QString());
  EXPECT_EQ(list.searchText(), QString());
  EXPECT_EQ(list.captureFilter(), CaptureFilter::All);
  EXPECT_EQ(list.sortMode(), SortMode::Ascending);
  EXPECT_FALSE(QFileInfo::exists(session.storePath()));
}

TEST_F(Reset, ForgetsFolderTagsDestinationAndCounter) {
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  EXPECT_EQ(session.app->settings().targetDir(), QString());
  EXPECT_EQ(session.app->folders().folderCount(), 0);
  EXPECT_EQ(session.app->tags().suffixes(), (std::vector<Tag>{{"FR", "_FR", false}}));
  EXPECT_EQ(session.app->settings().saveModeIndex(), 0);
  EXPECT_EQ(session.app->settings().counterText(), "1");
  EXPECT_EQ(session.screen.controls.saveModeIndex, 0);
  EXPECT_FALSE(session.screen.controls.exportEnabled);
  EXPECT_EQ(session.screen.pathLine, pathLine({}));
}

TEST_F(Reset, RemovesTheFourKeysOfTheWorkflowAndKeepsTheTags) {
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  EXPECT_EQ(storedKeys(), QStringList{"AmbrelSuffixes"});
}

TEST_F(Reset, SaysSoAndGoesBackToReadiness) {
  QStringList said;
  QObject::connect(&session.app->statusLine(), &StatusLine::changed,
                   [&said](const QString& text) { said << text; });
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  EXPECT_EQ(said, (QStringList{"Reset complete.", "Setup needed"}));
}

TEST_F(Reset, IsRefusedWhileTheCameraIsWatched) {
  session.connectCamera();
  session.operatorSeam.alerts.clear();
  session.app->resetWorkflow();
  EXPECT_EQ(
      session.operatorSeam.alerts,
      std::vector<Alert>({{"Stop Watching First", "Please stop watching before resetting the app state."}}));
  EXPECT_TRUE(session.operatorSeam.questions.empty());
  EXPECT_EQ(session.app->list().grid().rowCount(), 2);
}

TEST_F(Reset, LeavesAnAppThatStartsAnew) {
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  session.quit();
  session.startApplication();
  session.launch();
  EXPECT_TRUE(session.app->list().grid().isEmpty());
  EXPECT_EQ(session.app->settings().targetDir(), QString());
  EXPECT_EQ(session.app->settings().counterText(), "1");
}

// ---- The operator edits the list

TEST(ListEditing, AsksWhereThePhotosOfARowGoThatIsDroppedOntoAnother) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  session.operatorSeam.willAnswer(1);
  EXPECT_TRUE(session.app->listEditing().acceptDrop({.draggedRow = 0, .ontoRow = true, .displayRow = 1}));
  EXPECT_TRUE(session.operatorSeam.questions.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(session.operatorSeam.questions.size(), 1u);
}

TEST(ListEditing, SavesTheRowOfAnEditAndRefreshesTheWindow) {
  AppSession session;
  session.launch();
  session.app->listEditing().paste("Anna\nBen");
  session.app->listEditing().ctxInsertBelow(1);
  EXPECT_EQ(session.screen.pathLine, pathLine({.rows = 3, .csvPath = {}, .targetDir = {}}));
  EXPECT_TRUE(session.screen.controls.exportEnabled);
  session.app.reset();
  EXPECT_EQ(Preferences(session.locations.preferencesFile).lastSelectedRowIndex(), 2);
}

// ---- The road of one photo

TEST(PhotoRoad, FilesAPhotoUnderTheSelectedNameAndCountsIt) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  const QString target = session.chooseTarget();
  session.connectCamera();
  session.app->list().setSelectedRow(1);
  session.app->list().selectModelRowIfVisible(1, false);
  session.download("IMG_0001.JPG", "bytes of the photo");
  EXPECT_EQ(session.readFile(target + "/Ben/Ben_0001.JPG"), "bytes of the photo");
  EXPECT_FALSE(QFileInfo::exists(session.path("IMG_0001.JPG")));
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(1), 1);
  EXPECT_EQ(session.app->settings().counterText(), "2");
  EXPECT_EQ(session.app->statusLine().text(), "Saved: Ben_0001.JPG");
  EXPECT_EQ(session.app->statusLine().kind(), StatusKind::Watching);
  EXPECT_TRUE(session.readFile(session.storePath()).contains("Ben,,1,"));
}

TEST(PhotoRoad, AppendsTheTagsThatAreOn) {
  AppSession session;
  Preferences(session.locations.preferencesFile)
      .setSuffixes({QVariantMap{{"label", "FR"}, {"suffix", "_FR"}, {"on", true}}});
  session.startApplication();
  session.launch();
  session.importNames({"Jane Doe"});
  const QString target = session.chooseTarget();
  session.connectCamera();
  session.download("a.CR3");
  EXPECT_TRUE(QFileInfo::exists(target + "/Jane Doe_FR/Jane Doe_FR_0001.CR3"));
}

TEST(PhotoRoad, GivesTheTwoFilesOfOneShotTwoNumbers) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  const QString target = session.chooseTarget();
  session.connectCamera();
  session.download("IMG_1.CR3");
  session.download("IMG_1.JPG");
  EXPECT_EQ(QDir(target + "/Anna").entryList(QDir::Files), (QStringList{"Anna_0001.CR3", "Anna_0002.JPG"}));
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 2);
}

TEST(PhotoRoad, FilesUntitledWithoutAListAndCountsNothing) {
  AppSession session;
  session.launch();
  const QString target = session.chooseTarget();
  session.app->connectCameraManual();
  session.link.say("READY|OK");
  session.link.say("CONNECTED|");
  session.download("a.JPG");
  EXPECT_TRUE(QFileInfo::exists(target + "/untitled/untitled_0001.JPG"));
  EXPECT_EQ(session.app->statusLine().text(), "Saved: untitled_0001.JPG");
  EXPECT_EQ(session.app->statusLine().kind(), StatusKind::Good);
}

TEST(PhotoRoad, ReportsAPhotoThatCannotBeFiled) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.connectCamera();
  session.operatorSeam.alerts.clear();
  session.download("empty.JPG", "");
  const QString reason =
      "Source file is 0KB. Laptop storage may be full, or the camera file did not finish writing.";
  EXPECT_EQ(session.operatorSeam.alerts, std::vector<Alert>({{"Write Error", reason}}));
  EXPECT_EQ(session.app->statusLine().text(), reason);
  EXPECT_EQ(session.app->statusLine().kind(), StatusKind::Error);
  EXPECT_TRUE(QFileInfo::exists(session.path("empty.JPG")));
}

// ---- The folders of photos

TEST(FoldersOfPhotos, AreCountedWhenATargetFolderIsChosen) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  QDir(session.folder.path()).mkpath("Photos/Ben_FR");
  session.writeFile(session.path("Photos/Ben_FR/Ben_FR_0001.JPG"), "photo");
  session.chooseTarget();
  ASSERT_TRUE(session.app->photoFiler().finishQueued(10s));
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 0);
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(1), 1);
  EXPECT_EQ(session.app->folders().folderCount(), 1);
}

TEST(FoldersOfPhotos, AreLookedAtAtLaunchWhileTheListKeepsItsOwnCounts) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.download("IMG_1.JPG");
  session.quit();
  session.writeFile(session.path("Photos/Anna/another.jpg"), "photo");
  session.startApplication();
  session.launch();
  ASSERT_TRUE(session.app->photoFiler().finishQueued(10s));
  EXPECT_EQ(session.app->folders().folderCount(), 1);
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 1);
}

TEST(FoldersOfPhotos, ArePutOnRecordWithTheFirstPhotoFiledThere) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.download("IMG_1.JPG");
  session.download("IMG_2.JPG");
  EXPECT_EQ(session.app->folders().folderCount(), 1);
}

TEST(FoldersOfPhotos, CountAPhotoOnceThatIsFiledBesideARescan) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.writeFile(session.path("IMG_1.JPG"), "photo");
  session.writeFile(session.path("IMG_2.JPG"), "photo");
  session.link.say("DOWNLOADED|" + session.path("IMG_1.JPG").toUtf8());
  session.app->folders().rescanOutputFolders();
  session.link.say("DOWNLOADED|" + session.path("IMG_2.JPG").toUtf8());
  ASSERT_TRUE(session.app->photoFiler().finishQueued(10s));
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 2);
}

TEST(FoldersOfPhotos, AreForgottenByAReset) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.download("IMG_1.JPG");
  ASSERT_EQ(session.app->folders().folderCount(), 1);
  session.operatorSeam.willAnswer(0);
  session.app->resetWorkflow();
  EXPECT_EQ(session.app->folders().folderCount(), 0);
}

TEST(FoldersOfPhotos, AreMovedByDroppingARowOntoAnother) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  session.chooseTarget();
  session.download("IMG_1.JPG");
  session.operatorSeam.willAnswer(0);
  ASSERT_TRUE(session.app->listEditing().acceptDrop({.draggedRow = 0, .ontoRow = true, .displayRow = 1}));
  QCoreApplication::processEvents();
  ASSERT_TRUE(session.app->photoFiler().finishQueued(10s));
  EXPECT_EQ(session.operatorSeam.questions.back().title, "Move photos into \"Ben\"");
  EXPECT_EQ(session.readFile(session.path("Photos/Ben/Ben_0001.JPG")), "photo");
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(0), 0);
  EXPECT_EQ(session.app->list().grid().capturedForModelRow(1), 1);
  EXPECT_EQ(session.app->list().selectedRow(), 1);
}

TEST(FoldersOfPhotos, AreMovedToTheEndWhenTheApplicationQuits) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  session.chooseTarget();
  session.download("IMG_1.JPG");
  session.app->folderRename().movePhotosFromRow(0, "Ben", {});
  session.quit();
  EXPECT_EQ(session.readFile(session.path("Photos/Ben/Ben_0001.JPG")), "photo");
  EXPECT_EQ(session.readFile(session.storePath()), "File Name,Notes,Captured,Marker\nAnna,,0,\nBen,,1,");
}

// ---- The preview and the file manager

TEST(Preview, IsShownForTheLastPhotoOfABurst) {
  AppSession session;
  session.launch();
  session.importNames({"Anna"});
  const QString target = session.chooseTarget();
  QStringList wanted;
  QObject::connect(&session.app->preview(), &PreviewList::imageWanted,
                   [&](const QString& path) { wanted << path; });
  session.download("IMG_1.JPG");
  session.download("IMG_2.JPG");
  session.clock.advance(450ms);
  EXPECT_EQ(wanted, QStringList{target + "/Anna/Anna_0002.JPG"});
}

TEST(Preview, IsRevealedWhileItsFileExists) {
  AppSession session;
  session.launch();
  session.app->revealPreviewInFinder();
  EXPECT_EQ(session.operatorSeam.beeps, 1);
  const QString photo = session.path("photo.jpg");
  session.writeFile(photo, "photo");
  session.app->preview().showPreviewPath(photo, PreviewList::ListRefresh::No);
  session.app->preview().imageLoaded(photo);
  session.app->revealPreviewInFinder();
  EXPECT_EQ(session.revealed, QStringList{photo});
  ASSERT_TRUE(QFile::remove(photo));
  session.app->revealPreviewInFinder();
  EXPECT_EQ(session.revealed, QStringList{photo});
  EXPECT_EQ(session.operatorSeam.beeps, 2);
}

TEST(OpenFolder, OpensTheSelectedPersonsFirstFolder) {
  AppSession session;
  session.launch();
  session.importNames({"Anna", "Ben"});
  const QString target = session.chooseTarget();
  QDir(target).mkpath("Anna_FR");
  session.app->openSelectedRowFolder();
  EXPECT_EQ(session.opened, QStringList{target + "/Anna_FR"});
  session.app->ctxOpenFolder(1);
  EXPECT_EQ(session.opened.back(), target);
  EXPECT_EQ(session.app->statusLine().text(), "No photo folder exists yet for \"Ben\".");
  EXPECT_EQ(session.app->statusLine().kind(), StatusKind::Neutral);
}

TEST(OpenFolder, WithoutAPersonOpensTheTargetFolderIfThereIsOne) {
  AppSession session;
  session.launch();
  session.app->openSelectedRowFolder();
  session.app->ctxOpenFolder(0);
  EXPECT_EQ(session.opened, QStringList());
  const QString target = session.chooseTarget();
  session.app->openSelectedRowFolder();
  EXPECT_EQ(session.opened, QStringList{target});
}

}  // namespace
