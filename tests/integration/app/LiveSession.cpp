// SPDX-License-Identifier: Apache-2.0
#include "integration/app/LiveSession.h"

#include <QDirIterator>
#include <gtest/gtest.h>
#include <iostream>

namespace ambrel {

LiveSurroundings::LiveSurroundings() {
  qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(camera.gphotoPort()));
}

LiveSession::LiveSession() : LiveApplication(folder.filePath("home")) {
  QObject::connect(link.get(), &WorkerLink::blockArrived, app.get(), [this](const QByteArray& block) {
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

void LiveSession::shootWith(const QStringList& names) {
  ASSERT_TRUE(launch());
  importNames(folder.filePath("names.csv"), names);
  chooseTarget(target());
  app->connectCameraManual();
  ASSERT_TRUE(waitUntil([this] { return watched; }));
}

void LiveSession::shoot(const std::string& arguments, std::size_t count) {
  const std::size_t wanted = filed.size() + count;
  camera.command("shoot " + arguments);
  ASSERT_TRUE(waitUntil([&] { return filed.size() >= wanted; }))
      << "filed " << filed.size() << " of " << wanted
      << "; status: " << app->statusLine().text().toStdString();
}

bool LiveSession::waitUntil(const std::function<bool()>& done, std::chrono::seconds limit) {
  if (LiveApplication::waitUntil(done, limit)) return true;
  std::cerr << "The worker said:\n" << _transcript.toStdString();
  return false;
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
