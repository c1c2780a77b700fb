// SPDX-License-Identifier: Apache-2.0
#include "support/LiveApplication.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace ambrel {
namespace {

// A thread that hangs would outlive everything else.
PosixFiles& files() {
  static PosixFiles files;
  return files;
}

}  // namespace

LiveApplication::LiveApplication(const QString& home)
    : locations(Locations::below(home)), _temporary(locations.temporary) {
  make();
}

LiveApplication::~LiveApplication() {
  quit();
}

void LiveApplication::make() {
  screen = RecordingScreen();
  // The single-instance lock is held until the process ends, which a restart played in one process does not.
  if (_starts++ > 0) locations.temporary = _temporary + QStringLiteral("/start%1").arg(_starts);
  QDir().mkpath(locations.temporary);
  link = std::make_unique<ProcessLink>();
  // Other tests run workers of their own beside this one: none of them is a stray.
  app = std::make_unique<AmbrelAppDelegate>(clock, operatorSeam, files(), *link,
                                            Surroundings{locations, Bundle(AMBREL_BUNDLE), [](qint64) {}});
}

bool LiveApplication::launch() {
  app->applicationDidFinishLaunching(screen);
  return waitUntil([this] { return screen.isBuilt(); });
}

void LiveApplication::quit() {
  if (!app) return;
  app->applicationWillTerminate();
  app.reset();
  link.reset();
}

void LiveApplication::importNames(const QString& csvFile, const QStringList& names) {
  QFile csv(csvFile);
  ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
  csv.write("Name\n" + names.join('\n').toUtf8());
  csv.close();
  operatorSeam.willChoose(csvFile);
  app->listTransfer().loadCSV();
}

void LiveApplication::chooseTarget(const QString& folder) {
  QDir().mkpath(folder);
  operatorSeam.willChoose(folder);
  app->selectFolder();
}

void LiveApplication::chooseBackup(const QString& folder) {
  QDir().mkpath(folder);
  operatorSeam.willChoose(folder);
  app->backup().chooseBackupFolder();
}

void LiveApplication::select(qint64 row) {
  app->list().setSelectedRow(row);
  app->list().selectModelRowIfVisible(row, false);
}

bool LiveApplication::waitUntil(const std::function<bool()>& done, std::chrono::seconds limit) {
  const QDeadlineTimer deadline(limit);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

}  // namespace ambrel
