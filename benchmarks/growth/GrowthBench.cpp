// SPDX-License-Identifier: Apache-2.0
// How cost grows with the number of rows or photos, from a thousand to a million: the exponent of each is
// that of the straight line through its points on a double logarithmic scale. n log n is 1.1 over these
// sizes. AMBREL_BENCH_LARGE has photos go up to a million too, in many minutes. Ends with 1 when one grows
// faster than that, with 2 when the work was not done.
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <memory>
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
constexpr double kMostKeyPressMs = 50;
constexpr std::size_t kRounds = 3;
constexpr double kLongestRepeatedMs = 20'000;  // what takes longer is measured once
constexpr int kMillion = 1'000'000;

// A million files take longer to make than all the rest, so they are asked for.
int mostPhotos() {
  return std::getenv("AMBREL_BENCH_LARGE") ? kMillion : kMillion / 10;
}

// One round of what is measured; gives its milliseconds.
using Round = std::function<double()>;

// Measures at each size what `prepare` makes ready for it, as the median of some rounds.
void measureGrowth(Goals& goals, const std::string& name, int largest,
                   const std::function<Round(int)>& prepare) {
  std::vector<double> logSizes;
  std::vector<double> logTimes;
  for (int size = 1'000; size <= largest; size *= 10) {
    const Round round = prepare(size);
    std::vector<double> times;
    do {
      times.push_back(round());
    } while (times.size() < kRounds && times.back() < kLongestRepeatedMs);
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
  double longestKeyPress = 0;
  measureGrowth(goals, "key press", kMillion, [&](int rows) {
    session.show(peopleWithNotes(rows));
    return [&] {
      list.setSearchText(QStringLiteral("x"));
      list.setSearchText(QString());
      const double taken = processorMillisecondsOf([&] { list.setSearchText(QStringLiteral("a")); });
      require(!list.filteredRows().empty(), "nothing found");
      list.setSearchText(QString());
      longestKeyPress = std::max(longestKeyPress, taken);
      return taken;
    };
  });
  goals.atMost("longest key press in a million rows", longestKeyPress, kMostKeyPressMs);
  measureGrowth(goals, "sort", kMillion, [&](int rows) {
    return [&, rows] {
      session.show(peopleWithNotes(rows));
      const double taken = processorMillisecondsOf([&] { list.cycleSortMode(); });
      require(list.sortMode() == SortMode::Ascending, "not sorted");
      list.cycleSortMode();
      list.cycleSortMode();
      return taken;
    };
  });
  measureGrowth(goals, "store written and flushed", kMillion, [&](int rows) {
    session.show(peopleWithNotes(rows));
    return [&] {
      return millisecondsOf([&] {
        require(session.store.save(list.editableGrid()), "store not saved");
        session.store.finishFlush();
      });
    };
  });
  measureGrowth(goals, "paste", kMillion, [&](int rows) {
    QString clipboard;
    for (const Row& row : peopleWithNotes(rows))
      clipboard += std_to_ns(row[0]) + QLatin1Char('\t') + std_to_ns(row[1]) + QStringLiteral("\r\n");
    return [&session, &list, rows, clipboard] {
      session.show({});
      const double taken = processorMillisecondsOf([&] { session.editing.paste(clipboard); });
      require(list.grid().rowCount() == rows, "not pasted");
      return taken;
    };
  });
}

void makeFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  require(file >= 0 && ::write(file, "photo", 5) == 5 && ::close(file) == 0, "no file");
}

void measureCounting(Goals& goals, const QString& folder) {
  int there = 0;
  measureGrowth(goals, "photos counted", mostPhotos(), [&](int photos) {
    for (; there < photos; ++there) {
      const QString person = folder + QStringLiteral("/Person %1").arg(there / 10);
      if (there % 10 == 0) require(QDir().mkpath(person), "no folder");
      makeFile(person.toStdString() + '/' + std::to_string(there) + ".JPG");
    }
    return [&folder, photos] {
      FolderScan scan;
      PhotoCounts counts;
      const double taken =
          millisecondsOf([&] { counts = scan.scan(folder.toStdString(), std::chrono::system_clock::now()); });
      require(
          counts.ofName("Person 7") == 10 && counts.folders().size() == static_cast<std::size_t>(photos / 10),
          "the counts are wrong");
      return taken;
    };
  });
}

// All of one person, so that the number to be given grows as well.
void measureFiling(Goals& goals, const QString& folder) {
  measureGrowth(goals, "photos of one person filed", mostPhotos(), [&](int photos) {
    return [&folder, photos] {
      const QString downloads = folder + QStringLiteral("/downloads");
      const QString target = folder + QStringLiteral("/filed");
      require(QDir().mkpath(downloads) && QDir().mkpath(target), "no folder");
      for (int i = 0; i < photos; ++i)
        makeFile(downloads.toStdString() + "/IMG_" + std::to_string(i) + ".JPG");
      double taken = 0;
      {
        FilingSession session(target);
        taken = millisecondsOf([&] {
          for (int i = 0; i < photos; ++i)
            session.filer.handleDownloadedPath(downloads + QStringLiteral("/IMG_%1.JPG").arg(i));
          require(session.filer.finishQueued(std::chrono::minutes(30)), "not filed in time");
        });
      }
      require(QDir(target + QStringLiteral("/Bob")).entryList(QDir::Files).size() == photos,
              "photos are missing");
      QDir(target).removeRecursively();
      return taken;
    };
  });
}

void measureQueue(Goals& goals, const QString& folder) {
  PosixFiles files;
  const Locations locations = Locations::below(folder);
  measureGrowth(goals, "queue saved and loaded", kMillion, [&](int photos) {
    const auto queue = std::make_shared<BackupQueue>(files, locations);
    for (int i = 0; i < photos; ++i)
      queue->append(QStringLiteral("/shots/Ann %1/Ann %1_%2.JPG").arg(i / 10).arg(i));
    return [&, queue, photos] {
      return millisecondsOf([&] {
        queue->saveBackupQueue();
        queue->finishWriting();
        BackupQueue again(files, locations);
        again.loadBackupQueue();
        require(again.size() == photos, "the queue is not in its file");
      });
    };
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
  measureQueue(goals, folder.filePath(QStringLiteral("queue")));
  measureCounting(goals, folder.filePath(QStringLiteral("target")));
  measureFiling(goals, folder.path());
  return goals.exitCode();
}
