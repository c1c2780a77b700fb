// SPDX-License-Identifier: Apache-2.0
#include "integration/app/LiveSession.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>
#include <iostream>

namespace ambrel {

LiveSession::LiveSession() : locations(Locations::below(folder.filePath("home"))) {
  qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(camera.gphotoPort()));
  // Other tests run workers of their own beside this one: none of them is a stray.
  app = std::make_unique<AmbrelAppDelegate>(clock, operatorSeam, files, link,
                                            Surroundings{locations, Bundle(AMBREL_BUNDLE), [](qint64) {}});
  QObject::connect(&link, &WorkerLink::blockArrived, app.get(), [this](const QByteArray& block) {
    _transcript += block;
    if (block.startsWith("ERROR|")) errors.append(QString::fromUtf8(block.mid(6)).trimmed());
    if (block.startsWith("DOWNLOADED|")) reported.append(QString::fromUtf8(block.mid(11)).trimmed());
  });
  QObject::connect(app.get(), &AmbrelAppDelegate::watchingConfirmed, app.get(), [this] { watched = true; });
  QObject::connect(&app->photoFiler(), &PhotoFiler::filed, app.get(),
                   [this](const QString& path, qint64 row) {
                     filed.push_back({path, row});
                   });
}

LiveSession::~LiveSession() {
  app->applicationWillTerminate();
}

void LiveSession::shootWith(const QStringList& names) {
  app->applicationDidFinishLaunching(screen);
  ASSERT_TRUE(waitUntil([this] { return screen.isBuilt(); }));
  QFile csv(folder.filePath("names.csv"));
  ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
  csv.write("Name\n" + names.join('\n').toUtf8());
  csv.close();
  operatorSeam.willChoose(csv.fileName());
  app->listTransfer().loadCSV();
  QDir().mkpath(target());
  operatorSeam.willChoose(target());
  app->selectFolder();
  app->connectCameraManual();
  ASSERT_TRUE(waitUntil([this] { return watched; }));
}

void LiveSession::select(qint64 row) {
  app->list().setSelectedRow(row);
  app->list().selectModelRowIfVisible(row, false);
}

void LiveSession::shoot(const std::string& arguments, std::size_t count) {
  const std::size_t wanted = filed.size() + count;
  camera.command("shoot " + arguments);
  ASSERT_TRUE(waitUntil([&] { return filed.size() >= wanted; }))
      << "filed " << filed.size() << " of " << wanted
      << "; status: " << app->statusLine().text().toStdString();
}

bool LiveSession::waitUntil(const std::function<bool()>& done, std::chrono::seconds limit) {
  const QDeadlineTimer deadline(limit);
  while (!done()) {
    if (deadline.hasExpired()) {
      std::cerr << "The worker said:\n" << _transcript.toStdString();
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

QStringList LiveSession::filesBelowTarget() const {
  QStringList found;
  QDirIterator walk(target(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
  while (walk.hasNext())
    found.append(walk.next());
  found.sort();
  return found;
}

}  // namespace ambrel
