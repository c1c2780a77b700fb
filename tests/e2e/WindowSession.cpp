// SPDX-License-Identifier: Apache-2.0
#include "e2e/WindowSession.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileDialog>
#include <gtest/gtest.h>

#include "support/EventLoop.h"

namespace ambrel {

using namespace std::chrono_literals;
using ui::NameColumn;

WindowSession::WindowSession() : locations(Locations::below(folder.filePath(QStringLiteral("home")))) {
  qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(camera.gphotoPort()));
  // Other tests run workers of their own beside this one: none of them is a stray.
  app = std::make_unique<AmbrelAppDelegate>(
      clock, dialogs, files, link,
      Surroundings{locations, Bundle(QStringLiteral(AMBREL_BUNDLE)), [](qint64) {}});
  QObject::connect(app.get(), &AmbrelAppDelegate::watchingConfirmed, app.get(), [this] { watched = true; });
  QObject::connect(&app->photoFiler(), &PhotoFiler::filed, app.get(), [this] { ++filed; });
  window = std::make_unique<ui::MainWindow>(*app);
  dialogs.setParentWindow(window.get());
  app->applicationDidFinishLaunching(*window);
  EXPECT_TRUE(waitUntil([this] { return window->isBuilt() && window->isActiveWindow(); }));
}

WindowSession::~WindowSession() {
  app->applicationWillTerminate();
  // Only a running event loop would delete what is to go later.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool WindowSession::waitUntil(const std::function<bool()>& done) {
  return runEventsUntil(done, 15s);
}

void WindowSession::importNames(const QStringList& lines) {
  QFile csv(folder.filePath(QStringLiteral("names.csv")));
  ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
  csv.write("Name\n" + lines.join(QLatin1Char('\n')).toUtf8());
  csv.close();
  hands.key(QStringLiteral("ctrl+i"));
  choosePath(csv.fileName());
  ASSERT_TRUE(waitUntil([&] { return names() == lines; })) << names().join(QLatin1Char('|')).toStdString();
  answerDialog(QStringLiteral("OK"));
}

void WindowSession::chooseTargetFolder() {
  QDir().mkpath(target());
  openSettings();
  clickButton(window->settingsPopover(), QStringLiteral("Change…"));
  choosePath(target());
  ASSERT_TRUE(waitUntil([this] { return app->settings().targetDir() == target(); }));
  hands.key(QStringLiteral("Escape"));
}

void WindowSession::waitForCamera() {
  ASSERT_TRUE(waitUntil([this] { return watched; })) << app->statusLine().text().toStdString();
}

void WindowSession::shoot(const std::string& arguments) {
  const int wanted = filed + 1;
  camera.command("shoot " + arguments);
  ASSERT_TRUE(waitUntil([&] { return filed >= wanted; })) << app->statusLine().text().toStdString();
}

void WindowSession::clickRow(int displayRow, NameColumn column, int button) {
  hands.click(pane()->table()->viewport(), middleOf(displayRow, column), button);
}

void WindowSession::chooseFromRowMenu(int displayRow, ui::RowCommand command) {
  clickRow(displayRow, NameColumn::Name, 3);
  ASSERT_TRUE(waitUntil([this] { return pane()->table()->rowMenu() != nullptr; }));
  const QMenu* menu = pane()->table()->rowMenu();
  const std::vector<ui::RowMenuItem> items = ui::rowMenuItems();
  for (std::size_t i = 0; i < items.size(); ++i)
    if (items[i].command == command)
      return hands.click(menu, menu->actionGeometry(menu->actions()[static_cast<int>(i)]).center());
}

void WindowSession::clickButton(const QWidget* container, const QString& title) {
  for (const ui::AmbrelButton* button : container->findChildren<ui::AmbrelButton*>())
    if (button->text() == title && button->isVisible()) return hands.click(button);
  FAIL() << "no button " << title.toStdString();
}

void WindowSession::answerDialog(const QString& buttonTitle) {
  ASSERT_TRUE(waitUntil([this] { return dialogs.openDialog() && dialogs.openDialog()->isActiveWindow(); }));
  const QDialog* open = dialogs.openDialog();
  clickButton(open, buttonTitle);
  ASSERT_TRUE(waitUntil([&] { return dialogs.openDialog() != open; }));
}

void WindowSession::choosePath(const QString& path) {
  ASSERT_TRUE(waitUntil([this] { return dialogs.openDialog() && dialogs.openDialog()->isActiveWindow(); }));
  const QDialog* open = dialogs.openDialog();
  ASSERT_TRUE(qobject_cast<const QFileDialog*>(open));
  const auto* name = open->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  ASSERT_TRUE(name);
  hands.click(name);
  hands.key(QStringLiteral("ctrl+a"));
  hands.type(path);
  hands.key(QStringLiteral("Return"));
  ASSERT_TRUE(waitUntil([&] { return dialogs.openDialog() != open; }));
}

void WindowSession::openSettings() {
  hands.click(window->topPanel()->gearButton());
  ASSERT_TRUE(waitUntil([this] { return window->settingsPopover()->isVisible(); }));
}

QPoint WindowSession::middleOf(int displayRow, NameColumn column) const {
  const ui::NameTable* table = window->leftPane()->table();
  return table->visualRect(table->model()->index(displayRow, static_cast<int>(column))).center();
}

QStringList WindowSession::names() const {
  QStringList all;
  for (qint64 row = 0; row < app->list().grid().rowCount(); ++row)
    all << app->list().grid().text(row, Cell::Name);
  return all;
}

QStringList WindowSession::filesBelowTarget() const {
  QStringList found;
  QDirIterator walk(target(), QDir::Files, QDirIterator::Subdirectories);
  while (walk.hasNext())
    found << QDir(target()).relativeFilePath(walk.next());
  found.sort();
  return found;
}

}  // namespace ambrel
