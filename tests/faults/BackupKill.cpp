// SPDX-License-Identifier: Apache-2.0
// Starts a process that backs photos up, kills it at a random moment, and checks what it leaves: no copy but
// whole ones under their names, and no photo that is neither copied nor queued. Then lets a process finish
// the work, and checks that every photo is there, byte for byte, and nothing else. As often as asked.
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "core/backup/Backup.h"
#include "core/backup/QueueFile.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "faults/KillFolders.h"
#include "support/AbsentOperator.h"

namespace ambrel {
namespace {

using Random = std::mt19937;

constexpr int kPhotos = 50;
constexpr int kLargestPhoto = 300'000;
// Half of the kills strike early: a fast disk takes no longer for all of the photos.
constexpr std::array<std::int64_t, 2> kLongestDelaysMicroseconds = {25'000, 100'000};

// Nothing is wrong with the drive.
class NothingToTell : public AbsentOperator {
 public:
  void showAlert(const QString& title, const QString& message, std::function<void()> dismissed) override {
    AbsentOperator::showAlert(title, message, std::move(dismissed));
    std::exit(3);
  }
};

QString photoName(int number) {
  return QStringLiteral("Person %1/Person_%2.JPG").arg(number % 7).arg(number, 4, 10, QLatin1Char('0'));
}

// The process that is to be killed: goes on with the queue that it finds, and is told of the photos from the
// given number on. It ends by itself when the queue is empty.
int backUp(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const Folders folders(QFile::decodeName(argv[2]));
  const int firstPhoto = std::atoi(argv[3]);
  static PosixFiles files;
  SystemClock clock;
  NothingToTell nobody;
  const Locations locations = Locations::below(folders.home);
  Preferences preferences(locations.preferencesFile);
  StatusLine statusLine(clock, [] { return Readiness{}; });
  Backup backup(clock, nobody, files, statusLine, preferences, locations,
                {.targetDir = [&] { return folders.target; },
                 .isImageFileName = [](const QString& name) { return name.endsWith(".JPG"); }},
                {});
  backup.restore();
  backup.processBackupQueue();
  for (int number = firstPhoto; number < kPhotos; ++number)
    backup.backupSavedFile(folders.target + '/' + photoName(number));
  QObject::connect(&backup, &Backup::changed, &application, [&] {
    if (backup.queue().isEmpty()) QCoreApplication::quit();
  });
  if (backup.queue().isEmpty()) return 0;
  return QCoreApplication::exec();
}

class Killer {
 public:
  explicit Killer(const char* program) : _program(program), _random(std::random_device{}()) {}

  // What was found wrong; empty when all is well.
  QString startAndKill() {
    const QTemporaryDir home(QStringLiteral("backup-kill-XXXXXX"));
    const Folders folders(QDir(home.path()).absolutePath());
    prepare(folders);
    bool queued = false;
    const int kills = 1 + static_cast<int>(_random() % 3);
    for (int i = 0; i < kills; ++i) {
      kill(start(folders, queued ? kPhotos : 0));
      if (const QString wrong = findWrong(folders, queued); !wrong.isEmpty()) return wrong;
      if (std::exchange(_failed, false)) return QStringLiteral("a run failed");
    }
    const pid_t last = start(folders, queued ? kPhotos : 0);
    int status = 0;
    if (waitpid(last, &status, 0) != last || status != 0) return QStringLiteral("the last run failed");
    return findUnfinished(folders);
  }

  void report() const {
    std::printf("%d kills, %d of them during a copy, %d with a part of the photos copied\n", _kills,
                _duringACopy, _partCopied);
  }

 private:
  void prepare(const Folders& folders) {
    QDir().mkpath(folders.copies);
    Preferences preferences(Locations::below(folders.home).preferencesFile);
    preferences.setBackupDir(folders.copies);
    preferences.setBackupEnabled(true);
    for (int number = 0; number < kPhotos; ++number) {
      const QString path = folders.target + '/' + photoName(number);
      QDir().mkpath(path.left(path.lastIndexOf('/')));
      QFile file(path);
      const auto size = static_cast<qsizetype>(1 + _random() % kLargestPhoto);
      QByteArray bytes(size, static_cast<char>(_random()));
      bytes[size / 2] = static_cast<char>(number);
      if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != size) std::abort();
    }
  }

  static QString queueFile(const Folders& folders) {
    return Locations::below(folders.home).dataFile(QStringLiteral("backup_queue.plist"));
  }

  pid_t start(const Folders& folders, int firstPhoto) {
    const pid_t child = fork();
    if (child == 0) {
      execl(_program, _program, "--back-up", QFile::encodeName(folders.home).constData(),
            std::to_string(firstPhoto).c_str(), nullptr);
      _exit(2);
    }
    return child;
  }

  void kill(pid_t child) {
    std::this_thread::sleep_for(std::chrono::microseconds(
        _random() % static_cast<std::size_t>(kLongestDelaysMicroseconds[_random() % 2])));
    ::kill(child, SIGKILL);
    int status = 0;
    if (waitpid(child, &status, 0) != child) std::abort();
    _kills += WIFSIGNALED(status) ? 1 : 0;
    _failed |= WIFEXITED(status) && WEXITSTATUS(status) != 0;
  }

  // After a kill: a name without the temporary ending stands for a whole copy; and once all photos count as
  // queued, each is in the queue until it has its copy.
  QString findWrong(const Folders& folders, bool& queued) {
    const Result<QStringList> queue = readQueueFile(queueFile(folders));
    if (!queue) return QStringLiteral("the queue file is broken");
    int copied = 0;
    QString missing;
    bool midCopy = false;
    for (int number = 0; number < kPhotos; ++number) {
      const QString source = folders.target + '/' + photoName(number);
      const QString copy = folders.copies + '/' + photoName(number);
      midCopy |= QFile::exists(copy + CopyPlace::kTemporarySuffix);
      const bool exists = QFile::exists(copy);
      copied += exists ? 1 : 0;
      if (exists && bytesOf(copy) != bytesOf(source)) return copy + QStringLiteral(" is not its photo");
      if (!exists && !queue.value().contains(source)) missing = source;
    }
    if (queued && !missing.isEmpty()) return missing + QStringLiteral(" is lost");
    queued = missing.isEmpty();
    _duringACopy += midCopy ? 1 : 0;
    _partCopied += copied > 0 && copied < kPhotos ? 1 : 0;
    return {};
  }

  static QString findUnfinished(const Folders& folders) {
    int files = 0;
    for (QDirIterator walk(folders.copies, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         walk.hasNext(); walk.next()) {
      ++files;
    }
    if (files != kPhotos) return QStringLiteral("%1 files in the backup").arg(files);
    for (int number = 0; number < kPhotos; ++number) {
      const QString name = '/' + photoName(number);
      if (bytesOf(folders.copies + name) != bytesOf(folders.target + name)) {
        return name + QStringLiteral(" differs at the end");
      }
    }
    return {};
  }

  const char* _program;
  Random _random;
  bool _failed = false;
  int _kills = 0;
  int _duringACopy = 0;
  int _partCopied = 0;
};

}  // namespace
}  // namespace ambrel

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--back-up") == 0) return ambrel::backUp(argc, argv);
  const QByteArray asked = qgetenv("AMBREL_BACKUP_KILLS");
  const int cases = !asked.isEmpty() ? asked.toInt() : argc == 2 ? std::atoi(argv[1]) : 0;
  if (cases <= 0) {
    std::fprintf(stderr, "usage: %s CASES\n", argv[0]);
    return 2;
  }
  ambrel::Killer killer(argv[0]);
  int violations = 0;
  for (int i = 0; i < cases; ++i) {
    const QString wrong = killer.startAndKill();
    if (wrong.isEmpty()) continue;
    ++violations;
    std::printf("violation: %s\n", wrong.toUtf8().constData());
  }
  killer.report();
  std::printf("%d cases, %d violations\n", cases, violations);
  return violations == 0 ? 0 : 1;
}
