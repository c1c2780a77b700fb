// SPDX-License-Identifier: Apache-2.0
#include <future>
#include <mutex>
#include <set>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

#include "core/capture/PhotoFiler.h"
#include "unit/core/capture/FilingFixture.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

using PhotoFilerTest = FilingFixture;

constexpr std::uint64_t kTotal = std::uint64_t{1} << 40;

}  // namespace

// ---- Names and numbers

TEST_F(PhotoFilerTest, FilesAPhotoUnderTheSelectedNameAndCountsItOnItsRow) {
  file(download("IMG_0001.JPG", "bytes"));
  ASSERT_EQ(filed.size(), 1U);
  EXPECT_EQ(filed[0].path, "Bob/Bob_0001.JPG");
  EXPECT_EQ(filed[0].row, 3);
  EXPECT_EQ(read(inTarget("Bob/Bob_0001.JPG")), "bytes");
  EXPECT_TRUE(filesInDownloads().isEmpty());
  EXPECT_EQ(settings.counterText(), "2");
  EXPECT_TRUE(failures.empty());
}

TEST_F(PhotoFilerTest, KnowsOfEveryDownloadUntilItIsFiledOrHasFailed) {
  EXPECT_FALSE(filer->hasQueued());
  filer->handleDownloadedPath(download("IMG_0001.JPG"));
  filer->handleDownloadedPath(inDownloads("gone.JPG"));
  EXPECT_TRUE(filer->hasQueued());
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_FALSE(filer->hasQueued());
  EXPECT_EQ(filed.size() + failures.size(), 2U);
}

TEST_F(PhotoFilerTest, SavesThePreferencesWithEveryNumber) {
  settings.setCounterText("50");
  file(download("a.JPG"));
  EXPECT_EQ(preferencesSaved, 1);
  file(download("b.JPG"));
  EXPECT_EQ(preferencesSaved, 2);
}

TEST_F(PhotoFilerTest, FilesWithoutASelectedNameAsUntitledOnNoRow) {
  name.reset();
  row = -1;
  file(download("IMG.JPG"));
  EXPECT_EQ(filed, (std::vector{FilingFixture::Filed{"untitled/untitled_0001.JPG", -1}}));
}

TEST_F(PhotoFilerTest, UntitledPhotosCarryTheTagsToo) {
  name.reset();
  suffix = "_FR";
  file(download("IMG.JPG"));
  EXPECT_EQ(filesInTarget(), QStringList{"untitled_FR/untitled_FR_0001.JPG"});
}

TEST_F(PhotoFilerTest, SanitisesTheNameForFolderAndFile) {
  name = "  a/b:c  ";
  file(download("IMG.JPG"));
  name = "   ";
  file(download("IMG.JPG"));
  name = "\tBob";
  file(download("IMG.JPG"));
  EXPECT_EQ(filesInTarget(),
            (QStringList{"-Bob/-Bob_0003.JPG", "a-b-c/a-b-c_0001.JPG", "untitled/untitled_0002.JPG"}));
}

TEST_F(PhotoFilerTest, FilesANameThatIsNoValidTextAsUntitled) {
  name = "\xff\xfe";
  file(download("IMG.JPG"));
  EXPECT_EQ(filesInTarget(), QStringList{"untitled/untitled_0001.JPG"});
}

TEST_F(PhotoFilerTest, FilesNamesOfAnyScriptByteForByte) {
  const char* const rightToLeft = "\u202eevil";
  for (const char* text : {"José", "Jose\xcc\x81", "李小龙", "🙂", "%1 %2", "-rf", rightToLeft}) {
    name = text;
    file(download("IMG.JPG", text));
    EXPECT_EQ(read(inTarget(filed.back().path)), text);
  }
  EXPECT_EQ(filed.size(), 7U);
  EXPECT_TRUE(failures.empty());
}

TEST_F(PhotoFilerTest, PadsTheNumberAndLetsItGrowPastFourDigits) {
  settings.setCounterText("9999");
  file(download("a.JPG"));
  file(download("b.JPG"));
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_10000.JPG", "Bob/Bob_9999.JPG"}));
  EXPECT_EQ(settings.counterText(), "10001");
}

TEST_F(PhotoFilerTest, KeepsTheLetterCaseOfTheExtension) {
  file(download("a.JPG"));
  file(download("b.cr3"));
  file(download("c.tar.Jpeg"));
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_0001.JPG", "Bob/Bob_0002.cr3", "Bob/Bob_0003.Jpeg"}));
}

TEST_F(PhotoFilerTest, ADownloadWithoutExtensionBecomesAJPG) {
  file(download("IMG"));
  file(download("IMG."));
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_0001.JPG", "Bob/Bob_0002.JPG"}));
}

TEST_F(PhotoFilerTest, KeepsCountingPastATakenNumber) {
  settings.setCounterText("5");
  write(inTarget("Bob/Bob_0005.JPG"), "five");
  write(inTarget("Bob/Bob_0006.JPG"), "six");
  file(download("IMG.JPG", "new"));
  EXPECT_EQ(read(inTarget("Bob/Bob_0005.JPG")), "five");
  EXPECT_EQ(read(inTarget("Bob/Bob_0006.JPG")), "six");
  EXPECT_EQ(read(inTarget("Bob/Bob_0007.JPG")), "new");
  EXPECT_EQ(settings.counterText(), "8");
}

TEST_F(PhotoFilerTest, LooksNeitherForGapsNorForTheHighestNumber) {
  settings.setCounterText("3");
  for (int number = 1; number <= 10; ++number)
    write(inTarget(QStringLiteral("Bob/Bob_%1.JPG").arg(number, 4, 10, QLatin1Char('0'))), "old");
  write(inTarget("Bob/Bob_0020.JPG"), "old");
  file(download("IMG.JPG"));
  EXPECT_EQ(filed.at(0).path, "Bob/Bob_0011.JPG");
}

TEST_F(PhotoFilerTest, AnotherExtensionDoesNotBlockANumber) {
  settings.setCounterText("5");
  write(inTarget("Bob/Bob_0005.CR3"), "raw");
  file(download("IMG.JPG", "jpeg"));
  EXPECT_EQ(read(inTarget("Bob/Bob_0005.JPG")), "jpeg");
  EXPECT_EQ(read(inTarget("Bob/Bob_0005.CR3")), "raw");
  EXPECT_EQ(settings.counterText(), "6");
}

TEST_F(PhotoFilerTest, RawAndJpegOfOneShotGetConsecutiveNumbers) {
  filer->handleDownloadedPath(download("IMG_1.CR3"));
  filer->handleDownloadedPath(download("IMG_1.JPG"));
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_0001.CR3", "Bob/Bob_0002.JPG"}));
}

TEST_F(PhotoFilerTest, AFolderOrADanglingLinkTakesANumberToo) {
  ASSERT_TRUE(QDir().mkpath(inTarget("Bob/Bob_0001.JPG")));
  ASSERT_TRUE(QFile::link("/nowhere/at/all", inTarget("Bob/Bob_0002.JPG")));
  file(download("IMG.JPG"));
  EXPECT_EQ(filed.at(0).path, "Bob/Bob_0003.JPG");
}

TEST_F(PhotoFilerTest, ACounterBelowOneOrWithoutNumberCountsAsOne) {
  settings.setCounterText("0");
  file(download("a.JPG"));
  EXPECT_EQ(settings.counterText(), "2");
  settings.setCounterText("");
  file(download("b.JPG"));
  EXPECT_EQ(filed.back().path, "Bob/Bob_0002.JPG");
  EXPECT_EQ(settings.counterText(), "3");
}

TEST_F(PhotoFilerTest, TheLargestNumberOfAllFailsInsteadOfStartingAgain) {
  settings.setCounterText("99999999999999999999");
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Unable to write file."}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, ACounterTypedWhileAPhotoIsBeingFiledIsKept) {
  settings.setCounterText("12");
  std::promise<void> moving;
  std::promise<void> typed;
  files.callBefore(Operation::Move, [&](const QString&, const QString&) {
    moving.set_value();
    typed.get_future().wait();
  });
  filer->handleDownloadedPath(download("IMG.JPG"));
  while (preferencesSaved == 0)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  moving.get_future().wait();
  settings.setCounterText("50");
  typed.set_value();
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_EQ(filed.at(0).path, "Bob/Bob_0012.JPG");
  EXPECT_EQ(settings.counterText(), "50");
}

TEST_F(PhotoFilerTest, ACounterTypedBetweenTheTwoLooksAtItIsKept) {
  settings.setCounterText("12");
  filer.reset();
  bool first = true;
  filer.emplace(files,
                FilingDesk{.targetDir = [this] { return settings.targetDir(); },
                           .selectedQueueItemName = [] { return std::string("Bob"); },
                           .enabledSuffixString = [] { return QString(); },
                           .captureRow = [] { return 0; },
                           .counter =
                               [&] {
                                 const qint64 counter = settings.counter();
                                 if (std::exchange(first, false)) settings.setCounterText("50");
                                 return counter;
                               },
                           .advanceCounterPast = [this](qint64 used) { settings.advanceCounterPast(used); }});
  file(download("IMG.JPG"));
  EXPECT_EQ(filesInTarget(), QStringList{"Bob/Bob_0012.JPG"});
  EXPECT_EQ(settings.counterText(), "50");
}

TEST_F(PhotoFilerTest, ATagIsAppendedToFolderAndFileName) {
  name = "Jane Doe";
  suffix = "_FR";
  settings.setCounterText("7");
  file(download("IMG.CR3"));
  EXPECT_EQ(filesInTarget(), QStringList{"Jane Doe_FR/Jane Doe_FR_0007.CR3"});
}

TEST_F(PhotoFilerTest, ATagWithASlashFilesDeeper) {
  name = "Jane";
  suffix = "_A/B";
  file(download("IMG.JPG", "bytes"));
  EXPECT_EQ(filesInTarget(), QStringList{"Jane_A/B/Jane_A/B_0001.JPG"});
  EXPECT_EQ(read(inTarget(filed.at(0).path)), "bytes");
}

TEST_F(PhotoFilerTest, ANameOfTwoDotsFilesBesideTheTargetFolderAndOverwritesNothing) {
  name = "..";
  write(inTarget("../.._0001.JPG"), "old");
  file(download("IMG.JPG", "new"));
  EXPECT_EQ(filed.at(0).path, "../.._0002.JPG");
  EXPECT_EQ(read(inTarget("../.._0001.JPG")), "old");
  EXPECT_EQ(read(inTarget("../.._0002.JPG")), "new");
}

TEST_F(PhotoFilerTest, TheNameIsReadBeforeTheRowSoASelectionThatChangesInBetweenCountsOnTheSecond) {
  filer.reset();
  std::string selected = "First";
  qint64 selectedRow = 1;
  std::vector<FilingFixture::Filed> outcome;
  filer.emplace(files, FilingDesk{.targetDir = [this] { return settings.targetDir(); },
                                  .selectedQueueItemName = [&] { return selected; },
                                  .enabledSuffixString =
                                      [&] {
                                        QMetaObject::invokeMethod(
                                            &settings, [&] { selectedRow = 2; }, Qt::QueuedConnection);
                                        return QString();
                                      },
                                  .captureRow = [&] { return selectedRow; },
                                  .counter = [this] { return settings.counter(); },
                                  .advanceCounterPast = [](qint64) {}});
  QObject::connect(&*filer, &PhotoFiler::filed, [&](const QString& path, qint64 onRow) {
    outcome.push_back({path, onRow});
  });
  filer->handleDownloadedPath(download("IMG.JPG"));
  while (outcome.empty())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(outcome, (std::vector{FilingFixture::Filed{inTarget("First/First_0001.JPG"), 2}}));
}

// ---- Intake

TEST_F(PhotoFilerTest, AnEmptyPathIsIgnoredWithoutAWord) {
  file("");
  file(" \t\r\n ");
  EXPECT_TRUE(filed.empty());
  EXPECT_TRUE(failures.empty());
}

TEST_F(PhotoFilerTest, TrimsAndStandardisesThePath) {
  download("IMG.JPG", "bytes");
  file("  " + downloads() + "//./x/../IMG.JPG\r\n");
  EXPECT_EQ(read(inTarget("Bob/Bob_0001.JPG")), "bytes");
}

TEST_F(PhotoFilerTest, ExpandsATildeToTheHomeFolder) {
  const QByteArray home = qgetenv("HOME");
  qputenv("HOME", QFile::encodeName(downloads()));
  download("IMG.JPG", "bytes");
  filer->handleDownloadedPath("~/IMG.JPG");
  qputenv("HOME", home);
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_EQ(read(inTarget("Bob/Bob_0001.JPG")), "bytes");
}

TEST_F(PhotoFilerTest, TheSamePathAgainWhileItIsBeingFiledIsDropped) {
  const QString source = download("IMG.JPG");
  bool again = false;
  files.callBefore(Operation::Move, [&](const QString&, const QString&) { again = true; });
  filer->handleDownloadedPath(source);
  filer->handleDownloadedPath(source);
  filer->handleDownloadedPath(downloads() + "/./IMG.JPG");
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_TRUE(again);
  EXPECT_EQ(filed.size(), 1U);
  EXPECT_TRUE(failures.empty());
}

TEST_F(PhotoFilerTest, ALaterReportOfTheSamePathIsFiledAgain) {
  file(download("IMG.JPG", "first"));
  file(download("IMG.JPG", "second"));
  EXPECT_EQ(filed.size(), 2U);
  EXPECT_EQ(read(inTarget("Bob/Bob_0002.JPG")), "second");
}

TEST_F(PhotoFilerTest, APathCanBeReportedAgainByTheTimeItsOutcomeIsHeard) {
  const QString source = inDownloads("IMG.JPG");
  QObject::connect(&*filer, &PhotoFiler::failed, [&] {
    if (failures.size() == 1) filer->handleDownloadedPath(download("IMG.JPG"));
  });
  file(source);
  EXPECT_EQ(failures.size(), 1U);
  EXPECT_EQ(filed.size(), 1U);
}

TEST_F(PhotoFilerTest, FilesInTheOrderOfArrival) {
  for (int i = 0; i < 50; ++i)
    filer->handleDownloadedPath(download(QString::number(i) + ".JPG", QByteArray::number(i)));
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  ASSERT_EQ(filed.size(), 50U);
  for (int i = 0; i < 50; ++i)
    EXPECT_EQ(read(inTarget(filed[static_cast<std::size_t>(i)].path)), QByteArray::number(i));
  EXPECT_EQ(filed.back().path, "Bob/Bob_0050.JPG");
}

TEST_F(PhotoFilerTest, FilesFromTheEventLoopWithoutAnyoneWaiting) {
  filer->handleDownloadedPath(download("a.JPG"));
  filer->handleDownloadedPath(download("b.JPG"));
  while (filed.size() < 2)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_0001.JPG", "Bob/Bob_0002.JPG"}));
}

TEST_F(PhotoFilerTest, NeverHoldsTheReadinessTextBack) {
  bool renaming = true;
  files.callBefore(Operation::Move, [&](const QString&, const QString&) { renaming = filer->isRenaming(); });
  file(download("IMG.JPG"));
  EXPECT_FALSE(renaming);
}

// ---- Failures

TEST_F(PhotoFilerTest, AMissingSourceSaysSo) {
  file(inDownloads("IMG.JPG"));
  EXPECT_EQ(failures, (std::vector<QString>{"Source file disappeared before it could be written."}));
  EXPECT_EQ(settings.counterText(), "1");
  EXPECT_TRUE(filesInTarget().isEmpty());
}

TEST_F(PhotoFilerTest, AnEmptySourceIsNotFiledAndStays) {
  const QString source = download("IMG.JPG", "");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Source file is 0KB. Laptop storage may be full, or the camera "
                                            "file did not finish writing."}));
  EXPECT_TRUE(QFile::exists(source));
  EXPECT_EQ(settings.counterText(), "1");
}

TEST_F(PhotoFilerTest, AFolderOrAPipeReportedAsAPhotoIsLeftAlone) {
  ASSERT_TRUE(QDir().mkpath(inDownloads("folder.JPG")));
  ASSERT_EQ(::mkfifo(QFile::encodeName(inDownloads("pipe.JPG")).constData(), 0600), 0);
  file(inDownloads("folder.JPG"));
  file(inDownloads("pipe.JPG"));
  EXPECT_EQ(failures.size(), 2U);
  EXPECT_TRUE(QFileInfo(inDownloads("folder.JPG")).isDir());
  EXPECT_TRUE(QFileInfo::exists(inDownloads("pipe.JPG")));
  EXPECT_TRUE(filesInTarget().isEmpty());
}

TEST_F(PhotoFilerTest, APathIsNeverCutAtANul) {
  const QString source = download("IMG.JPG");
  file(source + QChar::Null + "rest");
  EXPECT_EQ(failures, (std::vector<QString>{"Source file disappeared before it could be written."}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, ATagThatHoldsANulFilesNothingAndSaysSo) {
  const QString source = download("IMG.JPG");
  suffix = QString("_A") + QChar::Null + "B";
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Invalid argument"}));
  EXPECT_TRUE(QFile::exists(source));
  EXPECT_TRUE(filesInTarget().isEmpty());
}

TEST_F(PhotoFilerTest, AFreeSpaceOfExactlyTheHeadRoomPassesAndAByteLessFails) {
  const QString source = download("IMG.JPG", "12345");
  files.setVolumeSpace({5 + PhotoFiler::kHeadRoom - 1, kTotal});
  file(source);
  EXPECT_EQ(
      failures,
      (std::vector<QString>{"Laptop storage is full or almost full. Free up space before continuing."}));
  EXPECT_TRUE(QFile::exists(source));
  EXPECT_EQ(settings.counterText(), "1");

  files.setVolumeSpace({5 + PhotoFiler::kHeadRoom, kTotal});
  file(source);
  EXPECT_EQ(filed.size(), 1U);
}

TEST_F(PhotoFilerTest, AnUnknownFreeSpaceNeverBlocks) {
  files.setVolumeSpace({0, kTotal});
  file(download("IMG.JPG"));
  EXPECT_EQ(filed.size(), 1U);
}

TEST_F(PhotoFilerTest, TheHeadRoomIsThatOfTheTargetFoldersVolume) {
  QString asked;
  files.callBefore(Operation::Space, [&](const QString& path, const QString&) { asked = path; });
  file(download("IMG.JPG"));
  EXPECT_EQ(asked, settings.targetDir());
}

TEST_F(PhotoFilerTest, WithoutATargetFolderThePhotoStays) {
  settings.setTargetDir("");
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"No target folder is selected."}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, AFailedMoveBecomesACopyAndTheSourceGoes) {
  files.failAlways(Operation::Move, "Invalid cross-device link");
  const QString source = download("IMG.JPG", "bytes");
  file(source);
  EXPECT_EQ(filed.size(), 1U);
  EXPECT_EQ(read(inTarget("Bob/Bob_0001.JPG")), "bytes");
  EXPECT_FALSE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, ASourceThatCannotBeDeletedAfterACopyIsNoFailure) {
  files.failAlways(Operation::Move, "Invalid cross-device link");
  files.failAlways(Operation::Remove, "Read-only file system");
  const QString source = download("IMG.JPG", "bytes");
  file(source);
  EXPECT_EQ(filed.size(), 1U);
  EXPECT_TRUE(failures.empty());
  EXPECT_EQ(read(source), "bytes");
}

TEST_F(PhotoFilerTest, WhenMoveAndCopyFailTheCopysOwnReasonIsShownAndTheSourceStays) {
  files.failAlways(Operation::Move, "Invalid cross-device link");
  files.failAlways(Operation::Copy, "No space left on device");
  const QString source = download("IMG.JPG", "bytes");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"No space left on device"}));
  EXPECT_EQ(read(source), "bytes");
  EXPECT_TRUE(filesInTarget().isEmpty());
}

TEST_F(PhotoFilerTest, AFailedCopyWithoutAReasonHasAWordOfItsOwn) {
  files.failAlways(Operation::Move, "");
  files.failAlways(Operation::Copy, "");
  file(download("IMG.JPG"));
  EXPECT_EQ(failures, (std::vector<QString>{"Unable to write file."}));
}

TEST_F(PhotoFilerTest, TheNumberOfAFailedPhotoIsNotUsedAgain) {
  files.failCall(Operation::Move, 1, "Input/output error");
  files.failCall(Operation::Copy, 1, "Input/output error");
  file(download("a.JPG"));
  file(download("b.JPG"));
  EXPECT_EQ(filesInTarget(), QStringList{"Bob/Bob_0002.JPG"});
}

TEST_F(PhotoFilerTest, AFolderThatCannotBeMadeShowsInTheMove) {
  write(inTarget("Bob"), "a file where the folder should be");
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Not a directory"}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, ANameTooLongForTheFileSystemFailsAndStays) {
  name = std::string(300, 'x');
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"File name too long"}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, AFolderNameThatFitsWhileTheFileNameDoesNotFailsAndStays) {
  name = std::string(250, 'x');
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"File name too long"}));
  EXPECT_TRUE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, AnEmptyResultIsDeletedAndReported) {
  files.callAfter(Operation::Move, [](const QString&, const QString& to) { write(to, ""); });
  file(download("IMG.JPG"));
  EXPECT_EQ(failures, (std::vector<QString>{"Final file was written as 0KB. Check laptop storage."}));
  EXPECT_TRUE(filesInTarget().isEmpty());
  EXPECT_TRUE(filed.empty());
}

TEST_F(PhotoFilerTest, AnEmptyCopyIsDeletedAfterItsSourceIsGone) {
  files.failAlways(Operation::Move, "Invalid cross-device link");
  files.callAfter(Operation::Copy, [](const QString&, const QString& to) { write(to, ""); });
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Final file was written as 0KB. Check laptop storage."}));
  EXPECT_TRUE(filesInTarget().isEmpty());
  EXPECT_FALSE(QFile::exists(source));
}

TEST_F(PhotoFilerTest, AResultThatVanishedIsReported) {
  files.callAfter(Operation::Move, [](const QString&, const QString& to) { QFile::remove(to); });
  file(download("IMG.JPG"));
  EXPECT_EQ(failures, (std::vector<QString>{"Final file was written as 0KB. Check laptop storage."}));
}

TEST_F(PhotoFilerTest, AResultWhoseSizeCannotBeReadGoesBackInsteadOfBeingDeleted) {
  QString kept;
  files.callAfter(Operation::Move, [&](const QString& from, const QString& to) {
    if (from != inDownloads("IMG.JPG")) return;
    // A link to itself: the name is there, but no size is to be had.
    kept = from + ".kept";
    EXPECT_TRUE(QFile::rename(to, kept));
    EXPECT_TRUE(QFile::link(to, to));
  });
  const QString source = download("IMG.JPG", "bytes");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"Final file was written as 0KB. Check laptop storage."}));
  EXPECT_TRUE(filesInTarget().isEmpty());
  EXPECT_TRUE(QFileInfo(source).isSymLink());
}

TEST_F(PhotoFilerTest, AnExceptionIsCaughtAndItsReasonShown) {
  files.callBefore(Operation::Move,
                   [](const QString&, const QString&) { throw std::runtime_error("out of patience"); });
  const QString source = download("IMG.JPG");
  file(source);
  EXPECT_EQ(failures, (std::vector<QString>{"out of patience"}));
  EXPECT_TRUE(QFile::exists(source));

  files.callBefore(Operation::Move, nullptr);
  file(source);
  EXPECT_EQ(filed.size(), 1U);
}

TEST_F(PhotoFilerTest, AnExceptionOfAnUnknownKindIsCaughtToo) {
  files.callBefore(Operation::Move, [](const QString&, const QString&) { throw 42; });
  file(download("IMG.JPG"));
  EXPECT_EQ(failures, (std::vector<QString>{"Unable to write file."}));
}

TEST_F(PhotoFilerTest, EveryFailureIsReportedAnew) {
  for (int i = 0; i < 3; ++i)
    file(inDownloads("IMG.JPG"));
  EXPECT_EQ(failures.size(), 3U);
}

// ---- Other programs in the same folder

TEST_F(PhotoFilerTest, ANumberTakenBetweenTestAndMoveIsPassedOver) {
  int rivals = 0;
  files.callBefore(Operation::Move, [&](const QString&, const QString& to) {
    if (++rivals <= 3) write(to, "rival");
  });
  file(download("IMG.JPG", "photo"));
  EXPECT_EQ(filed.at(0).path, "Bob/Bob_0004.JPG");
  EXPECT_EQ(settings.counterText(), "5");
  for (const char* path : {"Bob/Bob_0001.JPG", "Bob/Bob_0002.JPG", "Bob/Bob_0003.JPG"})
    EXPECT_EQ(read(inTarget(path)), "rival");
  EXPECT_EQ(read(inTarget("Bob/Bob_0004.JPG")), "photo");
}

TEST_F(PhotoFilerTest, ANumberTakenDuringACopyIsPassedOver) {
  files.failAlways(Operation::Move, "Invalid cross-device link");
  int rivals = 0;
  files.callBefore(Operation::Copy, [&](const QString&, const QString& to) {
    if (++rivals == 1) write(to, "rival");
  });
  file(download("IMG.JPG", "photo"));
  EXPECT_EQ(read(inTarget("Bob/Bob_0001.JPG")), "rival");
  EXPECT_EQ(read(inTarget("Bob/Bob_0002.JPG")), "photo");
  EXPECT_EQ(filesInTarget(), (QStringList{"Bob/Bob_0001.JPG", "Bob/Bob_0002.JPG"}));
}

// Another program that wants the very numbers that filing has just found free. It makes its files
// exclusively, as a decent program does.
class Rival {
 public:
  ~Rival() { stop(); }
  void want(const QString& path) {
    const std::lock_guard lock(_mutex);
    _wanted = path;
    _changed.notify_all();
  }
  std::set<QString> stop() {
    want({});
    if (_thread.joinable()) _thread.join();
    return _taken;
  }

 private:
  void run() {
    std::unique_lock lock(_mutex);
    QString path = kNothingYet;
    for (;;) {
      _changed.wait(lock, [&] { return _wanted != path; });
      path = _wanted;
      if (path.isEmpty()) return;
      lock.unlock();
      QFile file(path);
      const bool taken = file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write("rival") == 5;
      file.close();
      lock.lock();
      if (taken) _taken.insert(path);
    }
  }

  const QString kNothingYet = QStringLiteral("nothing yet");
  std::mutex _mutex;
  std::condition_variable _changed;
  QString _wanted = kNothingYet;
  std::set<QString> _taken;
  std::thread _thread{[this] { run(); }};
};

TEST_F(PhotoFilerTest, OverwritesNothingWhileAnotherProgramRacesForEveryNumber) {
  constexpr int kRounds = 10'000;
  Rival rival;
  files.callBefore(Operation::Move, [&](const QString&, const QString& to) { rival.want(to); });
  for (int i = 0; i < kRounds; ++i)
    filer->handleDownloadedPath(download(QString::number(i) + ".JPG", "photo " + QByteArray::number(i)));
  ASSERT_TRUE(filer->finishQueued(kLongEnough));
  const std::set<QString> taken = rival.stop();

  ASSERT_EQ(filed.size(), static_cast<std::size_t>(kRounds));
  for (std::size_t i = 0; i < filed.size(); ++i)
    ASSERT_EQ(read(inTarget(filed[i].path)), "photo " + QByteArray::number(static_cast<int>(i)));
  for (const QString& path : taken)
    ASSERT_EQ(read(path), "rival") << path.toStdString();
  ASSERT_EQ(filesInTarget().size(), static_cast<qsizetype>(filed.size() + taken.size()));
  RecordProperty("rival_won", static_cast<int>(taken.size()));
}

// ---- Quitting

TEST_F(PhotoFilerTest, FinishesWhatIsQueuedWhenQuitting) {
  for (int i = 0; i < 20; ++i)
    filer->handleDownloadedPath(download(QString::number(i) + ".JPG"));
  EXPECT_TRUE(filer->finishQueued(kLongEnough));
  EXPECT_EQ(filed.size(), 20U);
  EXPECT_TRUE(filesInDownloads().isEmpty());
}

TEST_F(PhotoFilerTest, QuittingWithPhotosStillQueuedLeavesThemWhereTheyWereDownloaded) {
  for (int i = 0; i < 20; ++i)
    filer->handleDownloadedPath(download(QString::number(i) + ".JPG", "photo"));
  filer.reset();
  EXPECT_EQ(filesInDownloads().size() + filesInTarget().size(), 20);
  EXPECT_TRUE(filed.empty());
}

TEST_F(PhotoFilerTest, QuittingNeverWaitsForAMoveThatIsStuck) {
  std::promise<void> stuck;
  std::promise<void> release;
  files.callBefore(Operation::Move, [&, hold = release.get_future().share()](const QString&, const QString&) {
    stuck.set_value();
    hold.wait();
  });
  files.failAlways(Operation::Move, "Input/output error");
  const QString first = download("1.JPG");
  const QString second = download("2.JPG");
  filer->handleDownloadedPath(first);
  filer->handleDownloadedPath(second);
  const std::future<void> isStuck = stuck.get_future();
  while (isStuck.wait_for(0s) != std::future_status::ready)
    EXPECT_FALSE(filer->finishQueued(1ms));
  filer.reset();
  release.set_value();
  EXPECT_TRUE(QFile::exists(first));
  EXPECT_TRUE(QFile::exists(second));
  EXPECT_EQ(files.calls(Operation::Copy), 0);
}

// ---- The witness

namespace {

// What a witness hears, with whether the photo lay there at that moment.
class WitnessTest : public PhotoFilerTest {
 protected:
  WitnessTest() {
    witness = {.willFile = [this](const QString& path) { hear("will", path); },
               .didNotFile = [this](const QString& path) { hear("did not", path); }};
  }
  void hear(const QString& what, const QString& path) {
    heard.append(what + ' ' + QFileInfo(path).fileName() + (QFile::exists(path) ? " there" : ""));
  }
  QStringList heard;
};

}  // namespace

TEST_F(WitnessTest, HearsOfAPhotoBeforeItTakesItsName) {
  file(download("IMG_1.JPG"));
  EXPECT_EQ(heard, QStringList{"will Bob_0001.JPG"});
  EXPECT_EQ(filed, (std::vector<Filed>{{"Bob/Bob_0001.JPG", 3}}));
}

TEST_F(WitnessTest, HearsOfEveryNameThatAnotherProgramTakesFirst) {
  files.callBefore(Operation::Move, [this](const QString&, const QString& to) {
    if (to.endsWith("Bob_0001.JPG")) write(to, "another program's");
  });
  file(download("IMG_1.JPG"));
  EXPECT_EQ(heard, (QStringList{"will Bob_0001.JPG", "did not Bob_0001.JPG there", "will Bob_0002.JPG"}));
}

TEST_F(WitnessTest, HearsThatAPhotoCannotBeFiled) {
  files.failAlways(Operation::Move, "broken");
  files.failAlways(Operation::Copy, "broken");
  file(download("IMG_1.JPG"));
  EXPECT_EQ(heard, (QStringList{"will Bob_0001.JPG", "did not Bob_0001.JPG"}));
}

TEST_F(WitnessTest, HearsOfAResultThatIsTakenAwayAgain) {
  files.callAfter(Operation::Move,
                  [](const QString&, const QString& to) { ASSERT_TRUE(QFile::resize(to, 0)); });
  file(download("IMG_1.JPG"));
  EXPECT_EQ(heard, (QStringList{"will Bob_0001.JPG", "did not Bob_0001.JPG"}));
}

TEST_F(WitnessTest, HearsOfAnExceptionToo) {
  files.callBefore(Operation::Move,
                   [](const QString&, const QString&) { throw std::runtime_error("thrown"); });
  file(download("IMG_1.JPG"));
  EXPECT_EQ(heard, (QStringList{"will Bob_0001.JPG", "did not Bob_0001.JPG"}));
}

TEST_F(WitnessTest, IsAskedForAnewWithEveryPhoto) {
  file(download("IMG_1.JPG"));
  witness = {};
  file(download("IMG_2.JPG"));
  EXPECT_EQ(heard, QStringList{"will Bob_0001.JPG"});
  EXPECT_EQ(filed.size(), 2u);
}
