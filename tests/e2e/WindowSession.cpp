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
      Surroundings{.locations = locations,
                   .bundle = Bundle(QStringLiteral(AMBREL_BUNDLE)),
                   .killStrayWorkers = [](qint64) {},
                   .releaseHost = ReleaseService::configuredHost(),
                   .openInBrowser = [this](const QUrl& address) { openedInBrowser << address.toString(); }});
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
  return runEventsUntil(done, 60s);
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
  closeSettings();
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
  const std::vector<ui::RowMenuItem> items = ui::rowMenuItems();
  for (const ui::RowMenuItem& item : items)
    if (item.command == command) return chooseFrom([this] { return pane()->table()->rowMenu(); }, item.title);
}

void WindowSession::chooseFrom(const std::function<const QMenu*()>& menu, const QString& entry) {
  ASSERT_TRUE(waitUntil([&] { return menu() && menu()->isVisible(); })) << entry.toStdString();
  for (QAction* action : menu()->actions())
    if (action->text().replace(QLatin1String("&&"), QLatin1String("&")) == entry)
      return hands.click(menu(), menu()->actionGeometry(action).center());
  FAIL() << "no entry " << entry.toStdString();
}

void WindowSession::chooseFromMenuBar(const QString& menu, const QString& entry) {
  QMenuBar* bar = window->menuBar();
  for (QAction* action : bar->actions()) {
    if (action->text() != menu) continue;
    hands.click(bar, bar->actionGeometry(action).center());
    return chooseFrom([&] { return action->menu(); }, entry);
  }
  FAIL() << "no menu " << menu.toStdString();
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
  waitUntilClosed(open);
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
  ASSERT_TRUE(waitUntil([&] { return name->text() == path; })) << name->text().toStdString();
  hands.key(QStringLiteral("Return"));
  waitUntilClosed(open);
}

void WindowSession::waitUntilClosed(const QDialog* dialog) {
  ASSERT_TRUE(waitUntil([&] { return dialogs.openDialog() != dialog; }));
  if (dialogs.openDialog()) return;
  // Keys go to whichever window the server gives them to, and no window manager returns the focus here.
  window->activateWindow();
  ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
}

void WindowSession::openSettings() {
  hands.click(window->topPanel()->gearButton());
  ASSERT_TRUE(waitUntil([this] { return window->settingsPopover()->isVisible(); }));
}

void WindowSession::closeSettings() {
  hands.key(QStringLiteral("Escape"));
  ASSERT_TRUE(waitUntil([this] { return !window->settingsPopover()->isVisible(); }));
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

QStringList WindowSession::filesBelow(const QString& path) {
  QStringList found;
  QDirIterator walk(path, QDir::Files, QDirIterator::Subdirectories);
  while (walk.hasNext())
    found << QDir(path).relativeFilePath(walk.next());
  found.sort();
  return found;
}

}  // namespace ambrel
