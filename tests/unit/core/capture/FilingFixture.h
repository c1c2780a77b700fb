// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "core/base/PosixFiles.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/PhotoFiler.h"
#include "support/BrokenFiles.h"

namespace ambrel {

// A filing desk with one person selected, a download folder and a target folder, all real.
class FilingFixture : public ::testing::Test {
 protected:
  using Operation = BrokenFiles::Operation;
  static constexpr std::chrono::seconds kLongEnough{240};  // never waited for in full by a test that passes

  struct Filed {
    QString path;  // from the target folder on
    qint64 row;
    bool operator==(const Filed&) const = default;
  };

  FilingFixture() {
    settings.setTargetDir(_folder.filePath("target"));
    EXPECT_TRUE(QDir().mkpath(downloads()));
    startFiler();
  }

  void startFiler() {
    filer.emplace(files, FilingDesk{.targetDir = [this] { return settings.targetDir(); },
                                    .selectedQueueItemName = [this] { return name; },
                                    .enabledSuffixString = [this] { return suffix; },
                                    .captureRow = [this] { return row; },
                                    .counter = [this] { return settings.counter(); },
                                    .advanceCounterPast =
                                        [this](qint64 used) {
                                          settings.advanceCounterPast(used);
                                          ++preferencesSaved;
                                        },
                                    .witness = [this] { return witness; }});
    QObject::connect(&*filer, &PhotoFiler::filed, [this](const QString& path, qint64 onRow) {
      const QString prefix = settings.targetDir() + '/';
      EXPECT_TRUE(path.startsWith(prefix)) << path.toStdString();
      filed.push_back({path.mid(prefix.size()), onRow});
    });
    QObject::connect(&*filer, &PhotoFiler::failed,
                     [this](const QString& message) { failures.push_back(message); });
  }

  QString downloads() const { return _folder.filePath("downloads"); }
  QString inDownloads(const QString& fileName) const { return downloads() + '/' + fileName; }
  QString inTarget(const QString& path) const { return settings.targetDir() + '/' + path; }

  // Writes a download and returns its path.
  QString download(const QString& fileName, const QByteArray& bytes = "photo") {
    write(inDownloads(fileName), bytes);
    return inDownloads(fileName);
  }

  static void write(const QString& path, const QByteArray& bytes) {
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(bytes), bytes.size());
  }

  static QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }

  void file(const QString& path) {
    filer->handleDownloadedPath(path);
    ASSERT_TRUE(filer->finishQueued(kLongEnough));
  }

  // Every file below the target folder, from there on, sorted.
  QStringList filesInTarget() const { return filesBelow(settings.targetDir()); }
  QStringList filesInDownloads() const { return filesBelow(downloads()); }

  static QStringList filesBelow(const QString& folder) {
    QStringList found;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (walk.hasNext())
      found.append(QDir(folder).relativeFilePath(walk.next()));
    found.sort();
    return found;
  }

 private:
  QTemporaryDir _folder;

 protected:
  std::optional<std::string> name = "Bob";
  QString suffix;
  qint64 row = 3;
  FilingWitness witness;
  CaptureSettings settings;
  int preferencesSaved = 0;
  std::vector<Filed> filed;
  std::vector<QString> failures;
  PosixFiles real;
  BrokenFiles files{real};
  std::optional<PhotoFiler> filer;  // last: it uses everything above
};

}  // namespace ambrel
