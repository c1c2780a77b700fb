// SPDX-License-Identifier: Apache-2.0
#include "support/AppSession.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace ambrel {

AppSession::AppSession() : locations(Locations::below(folder.filePath("home"))) {
  QDir(folder.path()).mkpath("bundle/Contents/MacOS");
  const QString worker = folder.filePath("bundle/Contents/MacOS/ambrel_cpp_worker");
  writeFile(worker, "#!/bin/sh\n");
  QFile::setPermissions(worker, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  startApplication();
}

void AppSession::startApplication() {
  app.reset();
  screen = RecordingScreen();
  // The single-instance lock is held until the process ends, which a restart played in one process does not.
  locations.temporary = folder.filePath(QStringLiteral("temporary%1").arg(++_starts));
  QDir().mkpath(locations.temporary);
  app = std::make_unique<AmbrelAppDelegate>(
      clock, operatorSeam, files, link,
      Surroundings{.locations = locations,
                   .bundle = Bundle(folder.filePath("bundle")),
                   .killStrayWorkers =
                       [this](qint64 own) {
                         strayRemovals.push_back(own);
                         screen.note("killStrayWorkers");
                       },
                   .releaseHost = releaseHost,
                   .openFolder = [this](const QString& opening) { opened << opening; },
                   .revealFile = [this](const QString& file) { revealed << file; },
                   .longestWaitForListStore = longestWaitForListStore,
                   .timeToFinishWhenQuitting = timeToFinishWhenQuitting});
}

void AppSession::launch() {
  app->applicationDidFinishLaunching(screen);
  clock.advance(AmbrelAppDelegate::kSplashTime);
}

void AppSession::quit() {
  app->applicationWillTerminate();
}

void AppSession::writeFile(const QString& path, const QByteArray& bytes) const {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray AppSession::readFile(const QString& path) const {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

void AppSession::importNames(const QStringList& names) {
  const QString csv = path("names.csv");
  writeFile(csv, "Name\n" + names.join('\n').toUtf8() + "\n");
  operatorSeam.willChoose(csv);
  if (!app->list().grid().isEmpty()) operatorSeam.willAnswer(0);
  app->listTransfer().loadCSV();
}

QString AppSession::chooseTarget(const QString& name) {
  QDir(folder.path()).mkpath(name);
  operatorSeam.willChoose(path(name));
  app->selectFolder();
  return path(name);
}

void AppSession::connectCamera() {
  app->connectCameraManual();
  link.say("READY|OK");
  link.say("CONNECTED|");
  link.say("PUMP_ACTIVE_READY|");
}

void AppSession::download(const QString& fileName, const QByteArray& bytes) {
  const QString source = path(fileName);
  writeFile(source, bytes);
  link.say("DOWNLOADED|" + source.toUtf8());
  EXPECT_TRUE(app->photoFiler().finishQueued(std::chrono::seconds(10)));
  QCoreApplication::processEvents();
}

}  // namespace ambrel
