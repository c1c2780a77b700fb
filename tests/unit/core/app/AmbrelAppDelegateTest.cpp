// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

#include "core/app/AmbrelAppDelegate.h"
#include "support/AppSession.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

using Alert = ScriptedOperator::Alert;

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

}  // namespace
