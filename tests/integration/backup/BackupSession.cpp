// SPDX-License-Identifier: Apache-2.0
// A backup in a process of its own: BackupSession HOME PHOTOS PACE. Makes PHOTOS photos below HOME/Shots, one
// every PACE milliseconds, tells the backup to HOME/Copies of each, and ends when all of them are copied, or
// when its input does. Its delays pass twenty times as fast as the application's. Says on standard output
// "failed" at each copy that fails, "slow" at each that takes long, and, before it ends, "gap N": the longest
// time in milliseconds that its event loop was away.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "core/backup/Backup.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "support/AbsentOperator.h"
#include "support/EventLoop.h"

namespace ambrel {
namespace {

constexpr int kHurry = 20;

class HurriedClock : public SystemClock {
 public:
  TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                    std::function<void()> action) override {
    return SystemClock::callAfter(delay / kHurry, context, std::move(action));
  }
  TimerId callEvery(std::chrono::milliseconds period, const QObject* context,
                    std::function<void()> action) override {
    return SystemClock::callEvery(period / kHurry, context, std::move(action));
  }
};

void say(const QByteArray& line) {
  std::puts(line.constData());
  std::fflush(stdout);
}

void makePhoto(const QString& path, int number) {
  QFile file(path);
  QByteArray bytes(100'000 + number * 997, static_cast<char>('a' + number % 26));
  bytes.replace(bytes.size() / 2, 8, QByteArray::number(number).rightJustified(8, '0'));
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) std::abort();
}

int run(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const QString home = QFile::decodeName(argv[1]);
  const int photos = std::atoi(argv[2]);
  const QString target = home + "/Shots";
  QDir().mkpath(target + "/Bob");
  static PosixFiles files;
  HurriedClock clock;
  AbsentOperator nobody;
  const Locations locations = Locations::below(home);
  Preferences preferences(locations.preferencesFile);
  preferences.setBackupDir(home + "/Copies");
  preferences.setBackupEnabled(true);
  StatusLine statusLine(clock, [] { return Readiness{}; });
  Backup backup(clock, nobody, files, statusLine, preferences, locations,
                {.targetDir = [&] { return target; }, .isImageFileName = [](const QString&) { return true; }},
                {});
  backup.restore();

  BackupState before;
  int made = 0;
  QObject::connect(&backup, &Backup::changed, &application, [&] {
    const BackupState now = backup.state();
    if (now.offline && !before.offline) say("failed");
    if (now.slow && !before.slow) say("slow");
    before = now;
    if (made == photos && backup.queue().isEmpty()) QCoreApplication::quit();
  });
  SystemClock shutter;
  shutter.callEvery(std::chrono::milliseconds(std::atoi(argv[3])), &application, [&] {
    if (made == photos) return;
    const QString path = target + QStringLiteral("/Bob/Bob_%1.JPG").arg(made, 4, 10, QLatin1Char('0'));
    makePhoto(path, made);
    ++made;
    backup.backupSavedFile(path);
  });
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
  const Heartbeat heartbeat;
  QCoreApplication::exec();
  say("gap " + QByteArray::number(static_cast<qint64>(heartbeat.longestGap().count())));
  backup.stop();
  return 0;
}

}  // namespace
}  // namespace ambrel

int main(int argc, char** argv) {
  return argc == 4 ? ambrel::run(argc, argv) : 2;
}
