// SPDX-License-Identifier: Apache-2.0
#include "faults/FaultSession.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <csignal>
#include <memory>
#include <unistd.h>

#include "core/app/AmbrelAppDelegate.h"
#include "core/backup/QueueFile.h"
#include "core/base/PosixFiles.h"
#include "core/platform/QuitSignals.h"
#include "core/worker/ProcessLink.h"
#include "faults/FaultPlan.h"
#include "faults/Photos.h"
#include "support/LongWait.h"
#include "support/RecordingScreen.h"
#include "support/TestClock.h"

namespace ambrel::faults {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kLongestWait{5000};  // real time
constexpr seconds kBetweenPhotos{2};        // played time
constexpr seconds kOneRetryPeriod{25};

void report(const QString& line) {
  say(line.toUtf8().constData());
}

class Witness : public Operator {
 public:
  void showAlert(const QString& title, const QString& message, std::function<void()> dismissed) override {
    report(QStringLiteral("alert ") + title + QStringLiteral(": ") + message.simplified());
    if (dismissed) dismissed();
  }
  void ask(const Question& question, std::function<void(const Answer&)>) override {
    report(QStringLiteral("question ") + question.title);
  }
  void choosePath(const PathRequest&, std::function<void(const QString&)>) override {}
  void beep() override {}
};

// Only the thread that writes the queue comes here.
void noteWhatLeavesTheQueue(const char* from, const char* to) {
  const QString queueFile = QFile::decodeName(to);
  if (!queueFile.endsWith(QLatin1String("/backup_queue.plist"))) return;
  static QStringList before = readQueueFile(queueFile).value();
  const QStringList now = readQueueFile(QFile::decodeName(from)).value();
  for (QString path : before) {
    if (now.contains(path)) continue;
    note("off queue",
         path.replace(QLatin1String("/Photos/"), QLatin1String("/Copies/")).toUtf8().constData());
  }
  before = now;
}

class Session {
 public:
  Session(const QString& home, const QString& bundle, const std::function<void()>& shutter)
      : _shutter(shutter),
        _app(std::make_unique<AmbrelAppDelegate>(_clock, _witness, files(), _link,
                                                 Surroundings{.locations = Locations::below(home),
                                                              .bundle = Bundle(bundle),
                                                              .killStrayWorkers = [](qint64) {},
                                                              .longestWaitForListStore = kAsLongAsItTakes})) {
    QObject::connect(&_app->photoFiler(), &PhotoFiler::filed, &_here, [this](const QString& path) {
      note("filed", path.toUtf8().constData());
      report(QStringLiteral("filed ") + path);
      ++_answered;
    });
    QObject::connect(&_app->photoFiler(), &PhotoFiler::failed, &_here, [this](const QString& message) {
      report(QStringLiteral("failed ") + message);
      ++_answered;
    });
    QObject::connect(&_app->statusLine(), &StatusLine::changed, &_here,
                     [this] { report(QStringLiteral("status ") + _app->statusLine().text()); });
    QObject::connect(_app.get(), &AmbrelAppDelegate::watchingConfirmed, &_here, [this] { _watching = true; });
  }

  // Before anything can ask for the end.
  void endWhenAsked(QuitSignals& signals) {
    QObject::connect(&signals, &QuitSignals::quitRequested, &_here, [this] { _endAsked = true; });
  }

  void launch() {
    _app->applicationDidFinishLaunching(_screen);
    _clock.advance(AmbrelAppDelegate::kSplashTime);
    if (!_screen.isBuilt()) report(QStringLiteral("not launched"));
  }

  void shoot(bool burst) {
    _app->connectCameraManual();
    if (!wait([this] { return _watching; })) return report(QStringLiteral("not watching"));
    if (burst) {
      select(0);
      ::kill(static_cast<pid_t>(_link.processId()), SIGUSR2);
      (void)wait([this] { return _answered == kPhotos; });
    } else {
      for (int photo = 1; photo <= kPhotos && !_endAsked; ++photo)
        shootOne(photo);
    }
    if (_answered != kPhotos && !_endAsked) report(QStringLiteral("unanswered"));
  }

  // Lets the backup and what is written behind come to rest; played time passes as long as something waits.
  void settle(seconds longest) {
    for (seconds passed{0}; !_endAsked; passed += seconds(1)) {
      rest();
      if (_app->backup().queue().isEmpty() || passed >= longest) break;
      _clock.advance(seconds(1));
    }
  }

  void quit() {
    QElapsedTimer elapsed;
    elapsed.start();
    _app->applicationWillTerminate();
    report(QStringLiteral("quit %1").arg(elapsed.elapsed()));
    _app.reset();
  }

 private:
  // A thread that hangs would outlive everything else.
  static PosixFiles& files() {
    static PosixFiles files;
    return files;
  }

  void select(qint64 row) {
    _app->list().setSelectedRow(row);
    _app->list().selectModelRowIfVisible(row, false);
  }

  // The last photo is the first person's again.
  void shootOne(int photo) {
    select((photo - 1) % 3);
    if (_shutter) {
      _shutter();
    } else {
      ::kill(static_cast<pid_t>(_link.processId()), SIGUSR1);
    }
    (void)wait([&] { return _answered == photo; });
    settle(kBetweenPhotos);
  }

  bool wait(const std::function<bool()>& done) {
    const QDeadlineTimer deadline(kLongestWait);
    while (!done() && !_endAsked && !deadline.hasExpired())
      events(milliseconds(5));
    return done() || _endAsked;
  }

  static void events(milliseconds longest) {
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(longest);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  // Nothing is being copied, no photo waits for the queue's file, and no thread has changed a file for a
  // moment.
  void rest() {
    const QDeadlineTimer deadline(kLongestWait);
    int quiet = 0;
    while (quiet < 2 && !_endAsked && !deadline.hasExpired()) {
      const std::uint32_t before = changes();
      events(milliseconds(1));
      const BackupQueue& queue = _app->backup().queue();
      const bool mayGo = queue.isEmpty() || queue.firstMayGo();
      const bool atRest = changes() == before && mayGo && !_app->backup().state().busy;
      quiet = atRest ? quiet + 1 : 0;
    }
  }

  QObject _here;
  const std::function<void()> _shutter;
  TestClock _clock;
  Witness _witness;
  ProcessLink _link;
  RecordingScreen _screen;
  std::unique_ptr<AmbrelAppDelegate> _app;
  int _answered = 0;
  bool _endAsked = false;
  bool _watching = false;
};

}  // namespace

void noteQueueFile() {
  watchRenames(noteWhatLeavesTheQueue);
}

void runSession(const QString& home, const QString& bundle, Task task, const std::function<void()>& shutter) {
  // Qt complains of every file that it cannot write.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  int argc = 1;
  char name[] = "fault_cases";
  char* argv[] = {name, nullptr};
  QCoreApplication application(argc, argv);
  {
    QuitSignals signals;
    Session session(home, bundle, shutter);
    session.endWhenAsked(signals);
    session.launch();
    if (task != Task::Recover) session.shoot(task == Task::Burst);
    session.settle(kOneRetryPeriod);
    session.quit();
  }
  say("end");
  ::_exit(0);
}

}  // namespace ambrel::faults
