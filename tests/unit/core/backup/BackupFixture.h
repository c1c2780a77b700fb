// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <semaphore>

#include "core/backup/Backup.h"
#include "core/base/PosixFiles.h"
#include "support/BrokenFiles.h"
#include "support/EventLoop.h"
#include "support/Printing.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel {

// A network drive played by the test. Its operations run on any thread.
class PlayedDrive {
 public:
  DriveMeans means() {
    return {.volumeOf = [this](const QString&) { return mountedVolume(); },
            .hardwareAddressOf =
                [this](const QString& host) {
                  const std::lock_guard lock(_mutex);
                  hostsLookedUp.append(host);
                  return hardwareAddress;
                },
            .sendWakePacket =
                [this](const QString& address) {
                  wakeCalls.append(address);
                  return wakeSucceeds;
                },
            .remountShare =
                [this](const QString& url, const QString&) {
                  if (const auto act = locked(whenRemounted)) act();
                  const std::lock_guard lock(_mutex);
                  remounts.append(url);
                  return remountSucceeds;
                }};
  }
  void setVolume(const std::optional<MountedVolume>& mounted) {
    const std::lock_guard lock(_mutex);
    _volume = mounted;
  }
  QStringList lookedUp() { return locked(hostsLookedUp); }
  qsizetype remountCount() {
    const std::lock_guard lock(_mutex);
    return remounts.size();
  }

  std::optional<QString> hardwareAddress;
  bool wakeSucceeds = true;
  bool remountSucceeds = true;
  std::function<void()> whenRemounted;
  QStringList hostsLookedUp;
  QStringList wakeCalls;
  QStringList remounts;

 private:
  // Without sharing text between threads: the race checker does not see how Qt counts its owners.
  std::optional<MountedVolume> mountedVolume() {
    const std::lock_guard lock(_mutex);
    if (!_volume) return std::nullopt;
    const auto unshared = [](const QString& text) { return QString(text.constData(), text.size()); };
    return MountedVolume{unshared(_volume->source), unshared(_volume->fileSystem)};
  }
  template <typename Value>
  Value locked(const Value& value) {
    const std::lock_guard lock(_mutex);
    return value;
  }
  std::mutex _mutex;
  std::optional<MountedVolume> _volume = MountedVolume{"/dev/sda1", "ext4"};
};

// A backup on real folders, with time, operator and drive played by the test.
class BackupFixture : public ::testing::Test {
 protected:
  BackupFixture()
      : locations(Locations::below(at("home"))),
        target(at("Shots")),
        copies(at("Copies")),
        preferences(locations.preferencesFile),
        statusLine(clock, [] { return Readiness{}; }) {
    QDir().mkpath(target);
    QDir().mkpath(copies);
    restart();
  }

  void restart() {
    backup.reset();
    backup = std::make_unique<Backup>(clock, operatorSeam, files, statusLine, preferences, locations,
                                      BackupSurroundings{.targetDir = [this] { return target; },
                                                         .isImageFileName =
                                                             [this](const QString& name) {
                                                               if (whileLooking) whileLooking();
                                                               return name.endsWith(".jpg");
                                                             }},
                                      drive.means());
    backup->restore();
  }
  void choose(const QString& path) {
    operatorSeam.willChoose(path);
    backup->chooseBackupFolder();
  }
  void switchOn() { choose(copies); }

  QString at(const QString& name) const { return folder.filePath(name); }
  static void write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(path.left(path.lastIndexOf('/')));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  static QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  // A photo below the target folder, filed and told to the backup.
  QString save(const QString& name, const QByteArray& bytes = "photo") {
    const QString path = target + '/' + name;
    write(path, bytes);
    backup->backupSavedFile(path);
    return path;
  }
  QByteArray copyOf(const QString& name) const { return read(copies + '/' + name); }

  bool until(const std::function<bool()>& condition) { return runEventsUntil(condition); }
  bool untilEmpty() {
    return until([this] { return backup->queue().isEmpty() && !backup->state().busy; });
  }
  bool untilBusy() {
    return until([this] { return backup->state().busy; });
  }
  bool untilFailed() {
    return until([this] { return backup->state().offline && !backup->state().busy; });
  }
  // Takes the backup drive away, and brings it back as it was.
  void pullDrive() { ASSERT_TRUE(QDir().rename(copies, copies + ".away")); }
  void plugDrive() { ASSERT_TRUE(QDir().rename(copies + ".away", copies)); }
  // Copies wait before their first byte from now on, until letGo().
  void holdCopies() {
    files.callBefore(BrokenFiles::Operation::CopyToNew, [this](const QString&, const QString&) {
      gate.acquire();
      gate.release();
    });
  }
  void letGo() { gate.release(); }
  StatusText status() const { return {statusLine.text(), statusLine.kind()}; }

  QTemporaryDir folder;
  Locations locations;
  QString target;
  QString copies;
  TestClock clock;
  ScriptedOperator operatorSeam;
  PosixFiles realFiles;
  BrokenFiles files{realFiles};
  Preferences preferences;
  StatusLine statusLine;
  PlayedDrive drive;
  std::counting_semaphore<> gate{0};
  std::counting_semaphore<> looking{0};
  std::function<void()> whileLooking;  // at each file that a search for missing ones comes by
  Heartbeat heartbeat;                 // what happens on another thread wakes no event loop
  std::unique_ptr<Backup> backup;
};

}  // namespace ambrel
