// SPDX-License-Identifier: Apache-2.0
// Ends the application at the moment at which a photo has taken its name and nobody has heard of it yet, and
// at the moment just before, for each photo of a burst; and at random moments, as often as asked. Then
// launches it again and checks that every photo in the target folder has its backup or is queued for one.
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "faults/KillFolders.h"
#include "support/AbsentOperator.h"
#include "support/LongWait.h"
#include "support/RecordingScreen.h"
#include "support/TestClock.h"
#include "support/TestLink.h"

namespace ambrel {
namespace {

constexpr int kPhotos = 8;
constexpr int kLongestDelayMicroseconds = 40'000;

// Ends the process around the n-th photo that is moved; 0 for never.
class EndingFiles : public PosixFiles {
 public:
  EndingFiles(int photo, bool afterTheMove) : _photo(photo), _after(afterTheMove) {}
  MoveResult moveWithoutOverwriting(const QString& from, const QString& to) override {
    const bool last = ++_moved == _photo;
    if (last && !_after) end();
    MoveResult moved = PosixFiles::moveWithoutOverwriting(from, to);
    if (last) end();
    return moved;
  }

 private:
  static void end() { ::kill(::getpid(), SIGKILL); }
  const int _photo;
  const bool _after;
  std::atomic<int> _moved{0};
};

// The whole application but for its window and its worker, launched on the folders that it finds.
class Launch {
 public:
  Launch(const Folders& folders, int endAtPhoto, bool afterTheMove) : _files(endAtPhoto, afterTheMove) {
    _app = std::make_unique<AmbrelAppDelegate>(_clock, _operator, _files, _link,
                                               Surroundings{.locations = Locations::below(folders.home),
                                                            .bundle = Bundle(folders.home),
                                                            .killStrayWorkers = [](qint64) {},
                                                            .longestWaitForListStore = kAsLongAsItTakes});
    _app->applicationDidFinishLaunching(_screen);
    _clock.advance(AmbrelAppDelegate::kSplashTime);
  }
  AmbrelAppDelegate& app() { return *_app; }

 private:
  TestClock _clock;
  AbsentOperator _operator;
  EndingFiles _files;
  TestLink _link;
  RecordingScreen _screen;
  std::unique_ptr<AmbrelAppDelegate> _app;
};

QString download(const Folders& folders, int number) {
  return folders.home + QStringLiteral("/IMG_%1.JPG").arg(number);
}

// The process that is ended: files the photos of a burst.
int fileBurst(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const Folders folders(QFile::decodeName(argv[2]));
  Launch launch(folders, std::atoi(argv[3]), std::strcmp(argv[4], "after") == 0);
  int filed = 0;
  QObject::connect(&launch.app().photoFiler(), &PhotoFiler::filed, [&filed] { ++filed; });
  for (int number = 1; number <= kPhotos; ++number)
    launch.app().photoFiler().handleDownloadedPath(download(folders, number));
  while (filed < kPhotos)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return 0;
}

QStringList filesBelow(const QString& folder) {
  QStringList found;
  for (QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); walk.hasNext();)
    found.append(walk.next());
  return found;
}

// The next launch; says what is neither copied nor queued.
int launchAgain(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const Folders folders(QFile::decodeName(argv[2]));
  Launch launch(folders, 0, false);
  if (!launch.app().backup().isEnabled()) return 2;
  int lost = 0;
  for (const QString& photo : filesBelow(folders.target)) {
    const QString copy = launch.app().backup().backupDestForSource(photo);
    if (launch.app().backup().queue().paths().contains(photo)) continue;
    if (QFile::exists(copy) && bytesOf(copy) == bytesOf(photo)) continue;
    std::printf("%s is neither queued nor copied\n", qPrintable(photo));
    ++lost;
  }
  return lost;
}

int resultOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) std::abort();
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

class Killer {
 public:
  explicit Killer(const char* program) : _program(program) {}

  void endAt(int photo, const char* moment) {
    const QTemporaryDir home(QStringLiteral("filing-kill-XXXXXX"));
    const Folders folders = prepared(home);
    const pid_t child = start("--file", folders, std::to_string(photo), moment);
    check(folders, resultOf(child), QStringLiteral("%1 photo %2").arg(moment).arg(photo));
  }
  void endAtRandom() {
    const QTemporaryDir home(QStringLiteral("filing-kill-XXXXXX"));
    const Folders folders = prepared(home);
    const pid_t child = start("--file", folders, "0", "-");
    std::this_thread::sleep_for(std::chrono::microseconds(_random() % kLongestDelayMicroseconds));
    ::kill(child, SIGKILL);
    const int result = resultOf(child);
    check(folders, result == 0 ? -SIGKILL : result, QStringLiteral("at random"));
  }
  int cases() const { return _cases; }
  int violations() const { return _violations; }
  void report() const {
    std::printf("%d photos filed when the process ended\n", _filed);
    std::printf("%d cases, %d violations\n", _cases, _violations);
  }

 private:
  static Folders prepared(const QTemporaryDir& home) {
    const Folders folders(QDir(home.path()).absolutePath());
    QDir().mkpath(folders.target);
    QDir().mkpath(folders.copies);
    Preferences preferences(Locations::below(folders.home).preferencesFile);
    preferences.setLastTargetDir(folders.target);
    preferences.setBackupDir(folders.copies);
    preferences.setBackupEnabled(true);
    for (int number = 1; number <= kPhotos; ++number) {
      QFile file(download(folders, number));
      const QByteArray bytes = "photo " + QByteArray::number(number);
      if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) std::abort();
    }
    return folders;
  }

  pid_t start(const char* mode, const Folders& folders, const std::string& photo, const char* moment) {
    const pid_t child = fork();
    if (child == 0) {
      execl(_program, _program, mode, QFile::encodeName(folders.home).constData(), photo.c_str(), moment,
            nullptr);
      _exit(2);
    }
    return child;
  }

  void check(const Folders& folders, int result, const QString& when) {
    ++_cases;
    _filed += static_cast<int>(filesBelow(folders.target).size());
    const bool killed = result == -SIGKILL;
    const int lost = resultOf(start("--launch", folders, "0", "-"));
    if (killed && lost == 0) return;
    ++_violations;
    std::printf("violation, killed %s: first run %d, launch %d\n", qPrintable(when), result, lost);
  }

  const char* _program;
  std::mt19937 _random{std::random_device{}()};
  int _cases = 0;
  int _violations = 0;
  int _filed = 0;
};

}  // namespace
}  // namespace ambrel

int main(int argc, char** argv) {
  if (argc == 5 && std::strcmp(argv[1], "--file") == 0) return ambrel::fileBurst(argc, argv);
  if (argc == 5 && std::strcmp(argv[1], "--launch") == 0) return ambrel::launchAgain(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s RANDOM_KILLS\n", argv[0]);
    return 2;
  }
  ambrel::Killer killer(argv[0]);
  for (int photo = 1; photo <= ambrel::kPhotos; ++photo) {
    killer.endAt(photo, "before");
    killer.endAt(photo, "after");
  }
  for (int i = 0; i < std::atoi(argv[1]); ++i)
    killer.endAtRandom();
  killer.report();
  return killer.violations() == 0 ? 0 : 1;
}
