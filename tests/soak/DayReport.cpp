// SPDX-License-Identifier: Apache-2.0
// The day's ear on the application, and what it has to tell in the end.
#include <QDir>
#include <QLocale>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/backup/QueueFile.h"
#include "core/list/GridFile.h"
#include "soak/Day.h"

namespace ambrel::soak {
namespace {

using std::chrono::milliseconds;

// Memory is judged after this much of a day; before, it has not settled.
constexpr milliseconds kLongEnoughToJudge = std::chrono::minutes(5);
constexpr double kMostGrowthPerHourMB = 1;
constexpr double kMostGrowthMB = 24;
constexpr double kMostMemoryMB = 300;
constexpr milliseconds kBetweenProgress{30'000};
// A sanitizer keeps memory of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// As a store that was read gives them.
std::vector<Row> wholeRows(std::vector<Row> rows) {
  for (Row& row : rows) {
    row.resize(4);
    if (row[2].empty()) row[2] = "0";
  }
  return rows;
}

// As the disk has it, however the drive misbehaves. The photo has not been moved yet: filing waits for
// answers of this very thread.
std::size_t sizeOf(const QByteArray& path) {
  struct stat status = {};
  return ::syscall(SYS_newfstatat, AT_FDCWD, path.constData(), &status, 0) == 0
             ? static_cast<std::size_t>(status.st_size)
             : 0;
}

QString number(std::size_t count) {
  return QLocale(QLocale::English).toString(static_cast<qulonglong>(count));
}

QString megabytes(double size) {
  return QString::number(size, 'f', 1);
}

QString line(const QString& what, const QString& value) {
  return what.leftJustified(34) + value;
}

QString memoryLine(const Meter::Memory& memory) {
  QString text = QStringLiteral("%1 MB, later %2 MB, at most %3 MB")
                     .arg(megabytes(memory.firstMB), megabytes(memory.lastMB), megabytes(memory.mostMB));
  if (memory.perHour.known)
    text += QStringLiteral("; slope %1 MB per hour of the day, standard error %2")
                .arg(QString::number(memory.perHour.slope, 'f', 2),
                     QString::number(memory.perHour.error, 'f', 2));
  return text;
}

QString courseText(const std::vector<double>& course) {
  QStringList sizes;
  for (const double size : course)
    sizes << QString::number(size, 'f', 2);
  return sizes.join(QLatin1Char(' '));
}

}  // namespace

void Day::note(const QString& text) {
  _diary.write(QStringLiteral("%1 %2\n").arg(now().count(), 7).arg(text).toUtf8());
}

void Day::wrong(const QString& sentence) {
  note(QStringLiteral("WRONG ") + sentence);
  _wrong << sentence;
}

void Day::showProgress() {
  _nextProgress += kBetweenProgress;
  std::printf("%4lld s  %zu photos taken, %zu reported, %zu filed, %zu faults\n",
              static_cast<long long>(now().count() / 1000), _shutter.taken(), _reported, _filed, faults());
  std::fflush(stdout);
}

// ---- The application

void Day::listen() {
  AmbrelAppDelegate* const app = _live.app.get();
  QObject::connect(_live.link.get(), &WorkerLink::blockArrived, app,
                   [this](const QByteArray& block) { workerSaid(block.trimmed()); });
  QObject::connect(app, &AmbrelAppDelegate::watchingConfirmed, app, [this] { _watched = true; });
  QObject::connect(&app->photoFiler(), &PhotoFiler::filed, app, [this](const QString& path) {
    note(QStringLiteral("filed ") + path);
    ++_filed;
    _savedSince = !_dataFaultRuns;
    --_filingsOpen;
  });
  QObject::connect(&app->photoFiler(), &PhotoFiler::failed, app, [this](const QString& message) {
    note(QStringLiteral("not filed: ") + message);
    ++_notFiled;
    --_filingsOpen;
    _holdFire = _faultRuns;
  });
  QObject::connect(&app->statusLine(), &StatusLine::changed, app, [this](const QString& text) {
    note(QStringLiteral("status ") + text);
    const QStringList words = text.split(QLatin1Char(' '));
    if (words.first() == QLatin1String("Moved")) _moved += words.value(1).toULongLong();
    if (words.first() == QLatin1String("Renamed"))
      _renamed += text.section(QLatin1Char('('), -1).section(QLatin1Char(' '), 0, 0).toULongLong();
    if (text.contains(QLatin1String("missing file")) || text.contains(QLatin1String("nothing missing")))
      _missingKnown = true;
  });
}

void Day::workerSaid(const QByteArray& text) {
  note(QStringLiteral("worker ") + QString::fromUtf8(text));
  if (text.startsWith("ERROR|")) {
    ++_workerErrors;
    // The photographer looks up.
    _holdFire = _faultRuns;
  }
  if (!text.startsWith("DOWNLOADED|")) return;
  ++_reported;
  ++_filingsOpen;
  _shutter.reported(sizeOf(text.mid(text.indexOf('|') + 1)));
}

void Day::startApplication() {
  if (!_live.app) _live.make();
  listen();
  if (!_live.launch()) wrong(QStringLiteral("The application does not start."));
  _heartbeat = std::make_unique<Heartbeat>();
}

void Day::quitApplication() {
  _heartbeat.reset();
  const std::vector<Row> rows = wholeRows(_live.app->list().grid().rows());
  _backedUpBefore += _live.app->backup().backupDoneCount();
  const milliseconds before = now();
  _live.quit();
  _longestQuit = std::max(_longestQuit, now() - before);
  note(QStringLiteral("quit in %1 ms").arg((now() - before).count()));
  _watched = false;
  _filingsCutShort += static_cast<std::size_t>(std::max(0, _filingsOpen));
  _filingsOpen = 0;
  if (::testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
    wrong(QStringLiteral("The operator was asked what nobody expected."));
  compareStore(rows);
}

void Day::checkQueueFile() {
  const Result<QStringList> queue =
      readQueueFile(_live.locations.dataFile(QStringLiteral("backup_queue.plist")));
  if (!queue) return wrong(QStringLiteral("The backup queue's file is broken."));
  if (!queue.value().isEmpty())
    wrong(QStringLiteral("%1 photos are left in the backup queue's file.").arg(queue.value().size()));
}

// While the data folder fails the list is in memory alone.
void Day::compareStore(const std::vector<Row>& rows) {
  if (_dataFaultRuns) return;
  ++_storesCompared;
  std::optional<std::vector<Row>> stored;
  // A disk that is kept busy holds up the writing too, and the application does not wait for it.
  (void)waitUntil(
      [&] {
        stored = readGrid(_live.locations.dataFile(QStringLiteral("ambrel_grid.csv")));
        return stored && wholeRows(*stored) == rows;
      },
      std::chrono::seconds(10));
  if (!stored) return wrong(QStringLiteral("The list store cannot be read."));
  if (wholeRows(*stored) != rows)
    wrong(QStringLiteral("The list store is not the list: %1 rows, and %2 in memory.")
              .arg(stored->size())
              .arg(rows.size()));
}

void Day::watchEventLoop() {
  if (!_heartbeat || _heartbeat->longestGap() <= _longestGap) return;
  _longestGap = _heartbeat->longestGap();
  const QString fault = _faultRuns ? nameOf(_plan.faults[_nextFault].mishap) : QStringLiteral("no fault");
  _longestGapDuring = _lastStep + QStringLiteral(", ") + fault;
  note(QStringLiteral("event loop away for %1 ms: %2").arg(_longestGap.count()).arg(_longestGapDuring));
}

// ---- In the end

void Day::judgeMeasures() {
  const Meter::Memory memory = _meter.application();
  if (memory.mostMB > kMostMemoryMB && !kSanitized)
    wrong(QStringLiteral("The application took %1 MB.").arg(megabytes(memory.mostMB)));
  if (_descriptorsAtLast != _descriptorsAtFirst)
    wrong(QStringLiteral("The application had %1 descriptors at first and %2 at last.")
              .arg(_descriptorsAtFirst)
              .arg(_descriptorsAtLast));
  if (_workerDescriptorsAtLast != _workerDescriptorsAtFirst)
    wrong(QStringLiteral("The worker had %1 descriptors at first and %2 at last.")
              .arg(_workerDescriptorsAtFirst)
              .arg(_workerDescriptorsAtLast));
  if (_plan.length < kLongEnoughToJudge || kSanitized || !memory.perHour.known) return;
  for (const Trend& trend : {memory.perHour, _meter.applicationInUse().perHour}) {
    const double surely = trend.slope - 2 * trend.error;
    if (surely > kMostGrowthPerHourMB)
      wrong(QStringLiteral("Memory grows by at least %1 MB per hour of the day.").arg(megabytes(surely)));
  }
  if (memory.lastMB - memory.firstMB > kMostGrowthMB)
    wrong(QStringLiteral("Memory grew by %1 MB.").arg(megabytes(memory.lastMB - memory.firstMB)));
}

QStringList Day::table() const {
  QStringList lines;
  const double minutes = static_cast<double>(_shootingTime.count()) / 60'000;
  lines << line("stands for", QStringLiteral("%1 hours of shooting").arg(_plan.hours(), 0, 'f', 1));
  lines << line("shooting", QStringLiteral("%1 min, %2 photos in %3 bursts, %4 a second")
                                .arg(minutes, 0, 'f', 1)
                                .arg(number(_shutter.taken()), number(_nextBurst))
                                .arg(static_cast<double>(_shutter.taken()) / minutes / 60, 0, 'f', 1));
  if (_account) {
    const Account::Totals& totals = _account->totals();
    lines << line("photos", QStringLiteral("%1 taken, %2 reported, %3 filed")
                                .arg(number(totals.taken), number(totals.reported), number(totals.filed)));
    lines << line("  not filed", QStringLiteral("%1, each with an alert; %2 whole ones unreported")
                                     .arg(number(totals.atSource), number(totals.unreported)));
    lines << line(
        "  not fetched",
        QStringLiteral("%1 left on the card, %2 lost with the camera's memory, all in times of trouble")
            .arg(number(totals.onCardOnly), number(totals.lostInCamera)));
    lines << line("  moved or renamed", QStringLiteral("%1 moved to another person, %2 renamed with a folder")
                                            .arg(number(_moved), number(_renamed)));
    lines << line("  backed up",
                  QStringLiteral("%1, of which %2 had moved before their copy and were asked for; %3 "
                                 "beginnings of such copies left")
                      .arg(number(totals.backedUp), number(totals.backupsAsked), number(totals.stuckCopies)));
  }
  lines << line("acts of the operator", number(_hands.count()));
  for (std::size_t act = 0; act < kActs; ++act)
    lines << line(QStringLiteral("  ") + nameOf(static_cast<Act>(act)),
                  number(_hands.count(static_cast<Act>(act))));
  lines << line("faults", number(_faultsBegun) + QStringLiteral(", and %1 restarts").arg(_restartsDone));
  for (std::size_t mishap = 0; mishap < kMishaps; ++mishap)
    if (_mishaps[mishap] > 0)
      lines << line(QStringLiteral("  ") + nameOf(static_cast<Mishap>(mishap)), number(_mishaps[mishap]));
  lines << line("camera lost beside", number(_lossesBeside));
  lines << line("worker's errors, alerts", number(_workerErrors) + QStringLiteral(", ") + number(_alerts));
  lines << line("to come to rest",
                QStringLiteral("%1 s").arg(static_cast<double>(_convergence.count()) / 1000, 0, 'f', 1));
  lines << line("list stores compared", number(_storesCompared));
  lines << line("memory of the application", memoryLine(_meter.application()));
  lines << line("  in tenths of the day", courseText(_meter.courseMB(10)));
  lines << line("  of that in use", memoryLine(_meter.applicationInUse()));
  lines << line("  in tenths of the day", courseText(_meter.courseInUseMB(10)));
  lines << line(QStringLiteral("  of a worker, %1 s old").arg(_meter.longestWorkerLived().count()),
                memoryLine(_meter.longestWorker()));
  lines << line("  most of any worker", megabytes(_meter.mostOfAnyWorkerMB()) + QStringLiteral(" MB"));
  lines << line("descriptors", QStringLiteral("application %1 and %2, worker %3 and %4")
                                   .arg(_descriptorsAtFirst)
                                   .arg(_descriptorsAtLast)
                                   .arg(_workerDescriptorsAtFirst)
                                   .arg(_workerDescriptorsAtLast));
  lines << line("longest gap of the event loop",
                QStringLiteral("%1 ms (%2)").arg(_longestGap.count()).arg(_longestGapDuring));
  lines << line("longest quit", QStringLiteral("%1 ms").arg(_longestQuit.count()));
  return lines;
}

}  // namespace ambrel::soak
