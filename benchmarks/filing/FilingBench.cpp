// SPDX-License-Identifier: Apache-2.0
// How fast photos are filed: the whole road through the filing thread, and the file-system work of one photo
// beside what QDir and QFile take for the same. Ends with 1 when a goal is missed or a photo is not where it
// belongs.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <functional>
#include <limits>

#include "core/base/PosixFiles.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/FileNames.h"
#include "core/capture/NumberedFolder.h"
#include "core/capture/PhotoFiler.h"
#include "support/Goals.h"

namespace ambrel::bench {
namespace {

constexpr int kPhotos = 3000;
constexpr int kRounds = 5;
constexpr double kPhotosPerSecond = 1500;
constexpr double kTimesFasterThanQt = 4;

QByteArray bytesOfPhoto(int number) {
  return "photo " + QByteArray::number(number);
}

// Makes the downloads anew and returns their paths.
QStringList makeDownloads(const QString& folder) {
  QStringList paths;
  for (int i = 1; i <= kPhotos; ++i) {
    paths.append(folder + QStringLiteral("/IMG_%1.JPG").arg(i));
    QFile file(paths.back());
    require(file.open(QIODevice::WriteOnly) && file.write(bytesOfPhoto(i)) > 0, "no download");
  }
  return paths;
}

// Whether exactly the photos 1 to kPhotos are there, each with its own bytes.
bool allFiled(const QString& target) {
  const QDir folder(target + QStringLiteral("/Bob"));
  if (folder.entryList(QDir::Files | QDir::Hidden).size() != kPhotos) return false;
  for (int i = 1; i <= kPhotos; ++i) {
    QFile file(folder.filePath(photoFileName(QStringLiteral("Bob"), i, QStringLiteral("JPG"))));
    if (!file.open(QIODevice::ReadOnly) || file.readAll() != bytesOfPhoto(i)) return false;
  }
  return true;
}

using Work = std::function<void(const QStringList& downloads, const QString& target)>;

// The best of some rounds, each proven; in milliseconds for one photo.
double millisecondsPerPhoto(const Work& work) {
  double best = std::numeric_limits<double>::max();
  for (int round = 0; round < kRounds; ++round) {
    const QTemporaryDir folder;
    const QString target = folder.filePath(QStringLiteral("target"));
    require(QDir(folder.path()).mkdir(QStringLiteral("downloads")), "no folder");
    const QStringList downloads = makeDownloads(folder.filePath(QStringLiteral("downloads")));
    best = std::min(best, millisecondsOf([&] { work(downloads, target); }) / kPhotos);
    require(allFiled(target), "not every photo is where it belongs");
  }
  return best;
}

void throughTheFilingThread(const QStringList& downloads, const QString& target) {
  PosixFiles files;
  CaptureSettings settings;
  settings.setTargetDir(target);
  PhotoFiler filer(files, {.targetDir = [&] { return settings.targetDir(); },
                           .selectedQueueItemName = [] { return std::string("Bob"); },
                           .enabledSuffixString = [] { return QString(); },
                           .captureRow = [] { return 0; },
                           .counter = [&] { return settings.counter(); },
                           .advanceCounterPast = [&](qint64 used) { settings.advanceCounterPast(used); }});
  for (const QString& path : downloads)
    filer.handleDownloadedPath(path);
  filer.finishQueued(std::chrono::minutes(1));
}

void withOurFileSystemWork(const QStringList& downloads, const QString& target) {
  PosixFiles files;
  qint64 number = 1;
  for (const QString& path : downloads) {
    const NumberedFolder folder(target, QStringLiteral("Bob"), pathExtension(path));
    folder.create();
    number = folder.firstFreeFrom(number).value_or(number);
    if (!files.moveWithoutOverwriting(path, folder.pathOfNumber(number)).ok()) return;
  }
}

void withQDirAndQFile(const QStringList& downloads, const QString& target) {
  qint64 number = 1;
  for (const QString& path : downloads) {
    QDir folder(target + QStringLiteral("/Bob"));
    if (!folder.mkpath(QStringLiteral("."))) return;
    const auto name = [&] { return photoFileName(folder.dirName(), number, QFileInfo(path).suffix()); };
    while (folder.exists(name()))
      ++number;
    if (!QFile::rename(path, folder.filePath(name()))) return;
  }
}

int run() {
  const double ours = millisecondsPerPhoto(withOurFileSystemWork);
  const double qt = millisecondsPerPhoto(withQDirAndQFile);
  Goals goals;
  goals.atMost("filing a photo, whole road (>= 1,500/s)", millisecondsPerPhoto(throughTheFilingThread),
               1000 / kPhotosPerSecond);
  goals.atMostTimes("file-system work of one photo", ours, "QDir + QFile::rename", qt,
                    1 / kTimesFasterThanQt);
  return goals.exitCode();
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return ambrel::bench::run();
}
