// SPDX-License-Identifier: Apache-2.0
// How fast photos are filed: the whole road through the filing thread, and the file-system work of one photo
// beside what QDir and QFile take for the same. Ends with 1 when a goal is missed or a photo is not where it
// belongs.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>
#include <vector>

#include "core/base/PosixFiles.h"
#include "core/capture/FileNames.h"
#include "core/capture/NumberedFolder.h"
#include "support/Benchmark.h"
#include "support/FilingSession.h"

namespace ambrel::bench {
namespace {

constexpr int kPhotos = 30;  // of one person
constexpr int kRounds = 70;
constexpr double kPhotosPerSecond = 1500;
constexpr double kTimesFasterThanQt = 4;

QByteArray bytesOfPhoto(int number) {
  return "photo " + QByteArray::number(number);
}

using Downloads = QStringList;

// Makes the downloads anew and returns their paths.
Downloads makeDownloads(const QString& folder) {
  Downloads paths;
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

using FileAll = std::function<void(const Downloads& downloads, const QString& target)>;

// One round in folders of its own, proven afterwards.
void runRound(const QString& parent, const FileAll& fileAll) {
  const QTemporaryDir folder(parent + QStringLiteral("/round-XXXXXX"));
  const QString target = folder.filePath(QStringLiteral("target"));
  require(QDir(folder.path()).mkdir(QStringLiteral("downloads")), "no folder");
  fileAll(makeDownloads(folder.filePath(QStringLiteral("downloads"))), target);
  require(allFiled(target), "not every photo is where it belongs");
}

void throughTheSerialThread(const Downloads& downloads, const QString& target) {
  FilingSession session(target);
  for (const QString& path : downloads)
    session.filer.handleDownloadedPath(path);
  require(session.filer.finishQueued(std::chrono::minutes(10)), "not filed in time");
}

void withOurFileSystemWork(const QString& download, const QString& target, qint64& number) {
  PosixFiles files;
  const NumberedFolder folder(target, QStringLiteral("Bob"), pathExtension(download));
  folder.create();
  number = folder.firstFreeFrom(number).value_or(number);
  require(files.moveWithoutOverwriting(download, folder.pathOfNumber(number)).ok(), "not moved");
}

// Finds the next number by listing the folder.
void withQDirAndQFile(const QString& download, const QString& target, qint64& number) {
  const QDir folder(target + QStringLiteral("/Bob"));
  require(folder.mkpath(QStringLiteral(".")), "no folder");
  const QStringList taken = folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
  const QString extension = QFileInfo(download).suffix();
  const auto name = [&] { return photoFileName(QStringLiteral("Bob"), number, extension); };
  while (taken.contains(name()))
    ++number;
  require(QFile::rename(download, folder.filePath(name())), "not moved");
}

// The same without the listing.
void withQDirExistsAndQFile(const QString& download, const QString& target, qint64& number) {
  const QDir folder(target + QStringLiteral("/Bob"));
  require(folder.mkpath(QStringLiteral(".")), "no folder");
  const QString extension = QFileInfo(download).suffix();
  const auto name = [&] { return photoFileName(QStringLiteral("Bob"), number, extension); };
  while (folder.exists(name()))
    ++number;
  require(QFile::rename(download, folder.filePath(name())), "not moved");
}

// What no program gets below.
void withTheSystemAlone(const QString& download, const QString& target, qint64& number) {
  QDir().mkdir(target);
  QDir().mkdir(target + QStringLiteral("/Bob"));
  const QByteArray from = QFile::encodeName(download);
  const QByteArray to =
      QFile::encodeName(target + QStringLiteral("/Bob/") +
                        photoFileName(QStringLiteral("Bob"), number++, QStringLiteral("JPG")));
  require(::rename(from.constData(), to.constData()) == 0, "not moved");
}

// Adds the microseconds that each photo of a round took.
template <typename FileOne>
void timeEach(const QString& folder, FileOne fileOne, std::vector<double>& times) {
  runRound(folder, [&](const Downloads& downloads, const QString& target) {
    qint64 number = 1;
    for (const QString& path : downloads) {
      times.push_back(1000 * millisecondsOf([&] { fileOne(path, target, number); }));
    }
  });
}

void measure(Goals& goals, const QString& folder) {
  // The rounds take turns, so that whatever else the machine does meets all of them alike.
  std::vector<double> road;
  std::vector<double> ours;
  std::vector<double> qtListing;
  std::vector<double> qtExists;
  std::vector<double> limit;
  for (int round = 0; round < kRounds; ++round) {
    runRound(folder, [&](const Downloads& downloads, const QString& target) {
      road.push_back(millisecondsOf([&] { throughTheSerialThread(downloads, target); }) / kPhotos);
    });
    timeEach(folder, withOurFileSystemWork, ours);
    timeEach(folder, withQDirAndQFile, qtListing);
    timeEach(folder, withQDirExistsAndQFile, qtExists);
    timeEach(folder, withTheSystemAlone, limit);
  }
  goals.atMost("filing a photo, whole road (>= 1,500/s)", road, 1000 / kPhotosPerSecond);
  goals.atMostTimes("file-system work of one photo", ours, "QDir + QFile::rename", qtListing,
                    1 / kTimesFasterThanQt, "us");
  goals.mention("QDir::exists + QFile::rename", qtExists, "us");
  goals.mention("rename alone (with two mkdir)", limit, "us");
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
