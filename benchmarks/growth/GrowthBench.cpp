// SPDX-License-Identifier: Apache-2.0
// How cost grows with the number of rows or photos, from a thousand to a million: the exponent of each is
// that of the straight line through its points on a double logarithmic scale. n log n is 1.1 over these
// sizes. Ends with 1 when one grows faster than that, with 2 when the work was not done.
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

#include "core/backup/BackupQueue.h"
#include "core/base/Text.h"
#include "core/capture/FolderScan.h"
#include "support/FilingSession.h"
#include "support/Goals.h"
#include "support/ListSession.h"

namespace ambrel::bench {
namespace {

constexpr double kMostExponent = 1.2;  // n log n, and room for caches that are too small for a million rows
constexpr int kRounds = 3;
constexpr int kMillion = 1'000'000;
constexpr int kMostFiles = 100'000;  // a million files take longer to make than all the rest
constexpr int kMostFiled = 10'000;
constexpr int kMostQueued = 100'000;  // a queue file of a million is larger than what is still read

// Measures `work` at each size, as the median of some rounds; `work` gives the milliseconds.
void measureGrowth(Goals& goals, const std::string& name, int largest,
                   const std::function<double(int)>& work) {
  std::vector<double> logSizes;
  std::vector<double> logTimes;
  for (int size = 1'000; size <= largest; size *= 10) {
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round)
      times.push_back(work(size));
    goals.mention(name + ", " + std::to_string(size), times);
    logSizes.push_back(std::log10(size));
    logTimes.push_back(std::log10(median(times)));
  }
  const auto mean = [](const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values)
      sum += value;
    return sum / static_cast<double>(values.size());
  };
  double above = 0;
  double below = 0;
  for (std::size_t i = 0; i < logSizes.size(); ++i) {
    const double fromMiddle = logSizes[i] - mean(logSizes);
    above += fromMiddle * (logTimes[i] - mean(logTimes));
    below += fromMiddle * fromMiddle;
  }
  goals.atMost(name + ": exponent", above / below, kMostExponent, "");
}

void measureList(Goals& goals, const QString& folder) {
  Session session(folder);
  NameList& list = session.list;
  measureGrowth(goals, "key press", kMillion, [&](int rows) {
    session.show(peopleWithNotes(rows));
    list.setSearchText(QStringLiteral("x"));
    list.setSearchText(QString());
    const double taken = processorMillisecondsOf([&] { list.setSearchText(QStringLiteral("a")); });
    require(!list.filteredRows().empty(), "nothing found");
    list.setSearchText(QString());
    return taken;
  });
  measureGrowth(goals, "sort", kMillion, [&](int rows) {
    session.show(peopleWithNotes(rows));
    const double taken = processorMillisecondsOf([&] { list.cycleSortMode(); });
    require(list.sortMode() == SortMode::Ascending, "not sorted");
    list.cycleSortMode();
    list.cycleSortMode();
    return taken;
  });
  measureGrowth(goals, "store written and flushed", kMillion, [&](int rows) {
    session.show(peopleWithNotes(rows));
    const double taken = millisecondsOf([&] {
      require(session.store.save(list.editableGrid()), "store not saved");
      session.store.finishFlush();
    });
    return taken;
  });
  measureGrowth(goals, "paste", kMillion, [&](int rows) {
    QString clipboard;
    for (const Row& row : peopleWithNotes(rows))
      clipboard += std_to_ns(row[0]) + QLatin1Char('\t') + std_to_ns(row[1]) + QStringLiteral("\r\n");
    session.show({});
    const double taken = processorMillisecondsOf([&] { session.editing.paste(clipboard); });
    require(list.grid().rowCount() == rows, "not pasted");
    return taken;
  });
}

void makeFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  require(file >= 0 && ::close(file) == 0, "no file");
}

void measureFiles(Goals& goals, const QString& folder) {
  measureGrowth(goals, "photos counted", kMostFiles, [&](int photos) {
    const QString target = folder + QStringLiteral("/target");
    for (int i = 0; i < photos; ++i) {
      const QString person = target + QStringLiteral("/Person %1").arg(i / 10);
      if (i % 10 == 0) require(QDir().mkpath(person), "no folder");
      makeFile(person.toStdString() + '/' + std::to_string(i) + ".JPG");
    }
    FolderScan scan;
    PhotoCounts counts;
    const double taken =
        millisecondsOf([&] { counts = scan.scan(target.toStdString(), std::chrono::system_clock::now()); });
    require(
        counts.ofName("Person 7") == 10 && counts.folders().size() == static_cast<std::size_t>(photos / 10),
        "the counts are wrong");
    QDir(target).removeRecursively();
    return taken;
  });
  measureGrowth(goals, "photos of one person filed", kMostFiled, [&](int photos) {
    const QString downloads = folder + QStringLiteral("/downloads");
    const QString target = folder + QStringLiteral("/filed");
    require(QDir().mkpath(downloads), "no folder");
    for (int i = 0; i < photos; ++i)
      makeFile(downloads.toStdString() + "/IMG_" + std::to_string(i) + ".JPG");
    double taken = 0;
    {
      FilingSession session(target);
      taken = millisecondsOf([&] {
        for (int i = 0; i < photos; ++i)
          session.filer.handleDownloadedPath(downloads + QStringLiteral("/IMG_%1.JPG").arg(i));
        require(session.filer.finishQueued(std::chrono::minutes(10)), "not filed in time");
      });
    }
    require(QDir(target + QStringLiteral("/Bob")).entryList(QDir::Files).size() == photos,
            "photos are missing");
    QDir(target).removeRecursively();
    return taken;
  });
}

void measureQueue(Goals& goals, const QString& folder) {
  PosixFiles files;
  const Locations locations = Locations::below(folder + QStringLiteral("/queue"));
  measureGrowth(goals, "queue saved and loaded", kMostQueued, [&](int photos) {
    BackupQueue queue(files, locations);
    for (int i = 0; i < photos; ++i)
      queue.append(QStringLiteral("/photos/2026-05-04 School/Person %1/Person %1_%2.JPG").arg(i / 10).arg(i));
    return millisecondsOf([&] {
      queue.saveBackupQueue();
      queue.finishWriting();
      BackupQueue again(files, locations);
      again.loadBackupQueue();
      require(again.size() == photos, "the queue is not in its file");
    });
  });
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  using namespace ambrel::bench;
  const QCoreApplication application(argc, argv);
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  const QTemporaryDir folder;
  Goals goals;
  measureList(goals, folder.filePath(QStringLiteral("home")));
  measureQueue(goals, folder.path());
  measureFiles(goals, folder.path());
  return goals.exitCode();
}
