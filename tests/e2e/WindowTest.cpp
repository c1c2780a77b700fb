// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <gtest/gtest.h>

#include "e2e/WindowSession.h"
#include "ui/Appearance.h"
#include "unit/core/update/LoopbackServer.h"

namespace ambrel {
namespace {

using ui::NameColumn;
using ui::RowCommand;

// Nobody is asked.
constexpr const char* kNoReleaseService = "";

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}

TEST(Window, ShootsAListFromTheImportToTheFiledPhotos) {
  WindowSession session;
  session.importNames({text("Anna"), text("Ben"), text("Cara")});
  session.chooseTargetFolder();
  session.waitForCamera();
  session.shoot();
  session.clickRow(1);
  session.shoot();
  session.hands.key(text("Down"));
  ASSERT_TRUE(session.waitUntil([&] { return session.list().selectedRow() == 2; }));
  session.shoot();
  EXPECT_EQ(session.filesBelowTarget(),
            QStringList({text("Anna/Anna_0001.JPG"), text("Ben/Ben_0002.JPG"), text("Cara/Cara_0003.JPG")}));
  ASSERT_TRUE(session.waitUntil([&] {
    return session.window->rightPane()->label() == text("Cara_0003.JPG  (3/3)");
  })) << session.window->rightPane()->label().toStdString();
  session.hands.key(text("Left"));
  EXPECT_TRUE(
      session.waitUntil([&] { return session.window->rightPane()->label() == text("Ben_0002.JPG  (2/3)"); }));
  const QModelIndex count = session.pane()->table()->model()->index(2, static_cast<int>(NameColumn::Count));
  EXPECT_EQ(count.data().toString(), text("1"));
}

TEST(Window, KeepsNotesAndMarkersAndNamesThatAreTypedAndClicked) {
  WindowSession session;
  session.importNames({text("Anna"), text("Ben"), text("Cara")});
  session.clickRow(1);
  session.hands.click(session.pane()->noteField());
  session.hands.type(text("glasses off "));
  ASSERT_TRUE(
      session.waitUntil([&] { return session.list().grid().text(1, Cell::Note) == text("glasses off "); }));
  // The arrows leave the field for the next person even while it is typed in.
  session.hands.key(text("Down"));
  ASSERT_TRUE(session.waitUntil([&] { return session.list().selectedRow() == 2; }));

  session.clickRow(0, NameColumn::Marker);
  ASSERT_TRUE(session.waitUntil([&] { return session.list().grid().markerForModelRow(0); }));

  session.chooseFromRowMenu(2, RowCommand::EditNote);
  session.hands.type(text("  late  "));
  session.answerDialog(text("Save"));
  EXPECT_EQ(session.list().grid().text(2, Cell::Note), text("late"));

  session.hands.doubleClick(session.pane()->table()->viewport(), session.middleOf(0));
  ASSERT_TRUE(session.waitUntil([&] { return session.pane()->table()->findChild<QLineEdit*>(); }));
  session.hands.key(text("ctrl+a"));
  session.hands.type(text("Anne"));
  session.hands.key(text("Return"));
  EXPECT_TRUE(session.waitUntil([&] { return session.names().front() == text("Anne"); }));
}

TEST(Window, ReordersRowsByDragging) {
  WindowSession session;
  session.importNames({text("A"), text("B"), text("C"), text("D"), text("E")});
  const QPoint toTheTopOfTheRow(0, -15);
  session.hands.drag(session.pane()->table()->viewport(), session.middleOf(3),
                     session.middleOf(1) + toTheTopOfTheRow);
  ASSERT_TRUE(session.waitUntil([&] { return session.names().join(QString()) == text("ADBCE"); }))
      << session.names().join(QString()).toStdString();
  EXPECT_EQ(session.list().selectedRow(), 1);
}

TEST(Window, MovesPhotosByDroppingARowOntoAnother) {
  WindowSession session;
  session.importNames({text("Anna"), text("Ben"), text("Cara")});
  session.chooseTargetFolder();
  session.waitForCamera();
  session.shoot();
  session.hands.drag(session.pane()->table()->viewport(), session.middleOf(0), session.middleOf(2));
  session.answerDialog(text("Move"));
  ASSERT_TRUE(session.waitUntil([&] {
    return session.filesBelowTarget() == QStringList(text("Cara/Cara_0001.JPG"));
  })) << session.filesBelowTarget().join(QLatin1Char('|')).toStdString();
  EXPECT_TRUE(session.waitUntil([&] { return session.list().grid().capturedForModelRow(2) == 1; }));
}

TEST(Window, RenamesAFolderFromTheMenuOfItsRow) {
  WindowSession session;
  session.importNames({text("Anna"), text("Ben")});
  session.chooseTargetFolder();
  session.waitForCamera();
  session.shoot();
  session.chooseFromRowMenu(0, RowCommand::RenameFolderAndImages);
  ASSERT_TRUE(session.waitUntil([&] { return session.dialogs.openDialog() != nullptr; }));
  session.hands.key(text("ctrl+a"));
  session.hands.type(text("Anne"));
  session.answerDialog(text("Rename"));
  EXPECT_TRUE(session.waitUntil([&] {
    return session.filesBelowTarget() == QStringList(text("Anne/Anne_0001.JPG"));
  })) << session.filesBelowTarget().join(QLatin1Char('|')).toStdString();
}

TEST(Window, SaysWhyADragDuringASearchMovesNothing) {
  WindowSession session;
  session.importNames({text("Anna"), text("Ben"), text("Hannah")});
  session.hands.click(session.pane()->searchField());
  session.hands.type(text("ann"));
  ASSERT_TRUE(session.waitUntil([&] { return session.list().filteredRows().size() == 2; }));
  session.hands.drag(session.pane()->table()->viewport(), session.middleOf(0),
                     session.middleOf(1) + QPoint(0, 60));
  EXPECT_TRUE(session.waitUntil([&] {
    return session.app->statusLine().text().startsWith(text("To reorder rows, set the filter"));
  })) << session.app->statusLine().text().toStdString();
  EXPECT_EQ(session.names(), QStringList({text("Anna"), text("Ben"), text("Hannah")}));
}

TEST(Window, SearchesFiltersSortsPastesAndDeletes) {
  WindowSession session;
  session.importNames({text("Cara"), text("anna"), text("Ben")});
  const auto shown = [&] {
    QString letters;
    for (const qint64 row : session.list().filteredRows())
      letters += session.list().grid().text(row, Cell::Name).left(1);
    return letters;
  };
  const QPoint nameHeader(session.middleOf(0).x(), 10);
  session.hands.click(session.pane()->table()->horizontalHeader()->viewport(), nameHeader);
  ASSERT_TRUE(session.waitUntil([&] { return shown() == text("aBC"); })) << shown().toStdString();
  session.hands.click(session.pane()->searchField());
  session.hands.type(text("an"));
  ASSERT_TRUE(session.waitUntil([&] { return shown() == text("a"); }));
  session.clickButton(session.pane(), text("×"));
  session.clickButton(session.pane(), text("Show: All"));
  ASSERT_TRUE(session.waitUntil([&] { return shown().isEmpty(); }));
  session.clickButton(session.pane(), text("Show: With Photos"));
  session.clickButton(session.pane(), text("Show: Remaining"));

  QApplication::clipboard()->setText(text("Dora\tfront row\nEmil"));
  session.clickRow(0);
  session.hands.key(text("ctrl+v"));
  ASSERT_TRUE(session.waitUntil([&] { return session.names().size() == 5; }));
  EXPECT_EQ(session.list().grid().text(3, Cell::Note), text("front row"));
  session.chooseFromRowMenu(0, RowCommand::DeleteRow);
  EXPECT_TRUE(session.waitUntil([&] { return shown() == text("BCDE"); })) << shown().toStdString();
}

TEST(Window, ResetsTheWorkflowFromTheSettings) {
  WindowSession session;
  session.app->toggleAutoConnect();  // while the camera is watched nothing is reset
  session.importNames({text("Anna"), text("Ben")});
  session.chooseTargetFolder();
  session.openSettings();
  session.clickButton(session.window->settingsPopover(), text("Card"));
  ASSERT_TRUE(session.waitUntil([&] { return session.app->settings().saveModeIndex() == 2; }));
  session.clickButton(session.window->settingsPopover(), text("↻ Reset workflow"));
  session.answerDialog(text("Reset"));
  ASSERT_TRUE(session.waitUntil([&] { return session.names().isEmpty(); }));
  EXPECT_EQ(session.app->settings().targetDir(), QString());
  EXPECT_EQ(session.app->settings().saveModeIndex(), 0);
}

TEST(Window, CopiesPhotosToTheBackupFolderChosenInTheSettingsWhileBackupIsOn) {
  WindowSession session;
  const QString copies = session.folder.filePath(text("Copies"));
  ASSERT_TRUE(QDir().mkpath(copies));
  session.importNames({text("Anna")});
  session.chooseTargetFolder();
  session.openSettings();
  session.clickButton(session.window->settingsPopover(), text("Backup: Off"));
  session.chooseFrom([&] { return session.window->settingsPopover()->backupMenu(); },
                     text("Choose Backup Folder…"));
  session.choosePath(copies);
  ASSERT_TRUE(session.waitUntil([&] { return session.app->backup().isEnabled(); }));
  session.closeSettings();
  session.waitForCamera();
  session.shoot();
  const auto copied = [&] { return session.filesBelow(copies).filter(text(".JPG")); };
  ASSERT_TRUE(session.waitUntil([&] { return copied() == QStringList(text("Anna/Anna_0001.JPG")); }))
      << copied().join(QLatin1Char('|')).toStdString();
  QFile photo(session.target() + text("/Anna/Anna_0001.JPG"));
  QFile copy(copies + text("/Anna/Anna_0001.JPG"));
  ASSERT_TRUE(photo.open(QIODevice::ReadOnly) && copy.open(QIODevice::ReadOnly));
  EXPECT_EQ(photo.readAll(), copy.readAll());

  session.chooseFromMenuBar(text("Backup"), text("Backup Copy: On"));
  ASSERT_TRUE(session.waitUntil([&] { return !session.app->backup().isEnabled(); }));
  session.shoot();
  session.chooseFromMenuBar(text("Backup"), text("Backup Copy: Off"));
  ASSERT_TRUE(session.waitUntil([&] { return session.app->backup().isEnabled(); }));
  session.shoot();
  // The last one being there, the one before it would be, too.
  ASSERT_TRUE(session.waitUntil([&] { return copied().contains(text("Anna/Anna_0003.JPG")); }));
  EXPECT_EQ(copied(), QStringList({text("Anna/Anna_0001.JPG"), text("Anna/Anna_0003.JPG")}));
}

TEST(Window, OffersANewerReleaseByItselfAndFromTheMenu) {
  const LoopbackServer service(answering(200, R"({
    "tag_name": "v99.1", "html_url": "https://releases.example/v99.1",
    "assets": [{"name": "notes.txt", "browser_download_url": "https://releases.example/notes.txt"},
               {"name": "Tether.DMG", "browser_download_url": "https://releases.example/Tether.DMG"}]})"));
  qputenv("AMBREL_RELEASE_API", service.address().toString().toUtf8());
  WindowSession session;
  qputenv("AMBREL_RELEASE_API", kNoReleaseService);
  session.answerDialog(text("Later"));
  EXPECT_EQ(service.requests().size(), 1U);
  EXPECT_TRUE(session.openedInBrowser.isEmpty());
  session.chooseFromMenuBar(session.window->windowTitle(), text("Check for Updates…"));
  session.answerDialog(text("Download"));
  EXPECT_EQ(session.openedInBrowser, QStringList(text("https://releases.example/Tether.DMG")));
  EXPECT_EQ(service.requests().size(), 2U);
}

TEST(Window, QuitsFromTheKeyboardAndByClosing) {
  for (const bool byKey : {true, false}) {
    WindowSession session;
    QApplication::setQuitOnLastWindowClosed(true);
    int quits = 0;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, session.window.get(), [&] { ++quits; });
    QMetaObject::invokeMethod(
        qApp,
        [&] {
          if (byKey) {
            session.hands.key(text("ctrl+q"));
          } else {
            session.window->close();
          }
        },
        Qt::QueuedConnection);
    QApplication::exec();
    EXPECT_EQ(quits, 1);
    QApplication::setQuitOnLastWindowClosed(false);
  }
}

}  // namespace
}  // namespace ambrel

int main(int argc, char** argv) {
  qputenv("LC_ALL", "C.UTF-8");
  // Where the toolkit remembers how its choosers looked last.
  const QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  qputenv("AMBREL_RELEASE_API", ambrel::kNoReleaseService);
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ambrel::ui::applyApplicationAppearance(application);
  return RUN_ALL_TESTS();
}
