// SPDX-License-Identifier: Apache-2.0
// How cost grows with the number of rows or photos, from a thousand to a million: the exponent of each is
// that of the straight line through its points on a double logarithmic scale. n log n is 1.1 over these
// sizes. AMBREL_BENCH_LARGE has photos go up to a million too, in some minutes. Ends with 1 when one grows
// faster than that, with 2 when the work was not done.
#include <QDir>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>

#include "core/backup/BackupQueue.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/FolderScan.h"
#include "support/Benchmark.h"
#include "support/FilingSession.h"
#include "support/ListSession.h"

namespace ambrel::bench {
namespace {

constexpr double kMostExponent = 1.2;  // n log n, and room for caches that are too small for a million rows
constexpr double kMostKeyPressMs = 50;
constexpr std::size_t kRounds = 3;
constexpr double kLongestRepeatedMs = 5'000;  // what takes longer is measured once
constexpr int kMillion = 1'000'000;
constexpr int kPhotosEach = 10;

// A million photos take longer than all the rest, so they are asked for.
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

// Gives one small file as many names as are asked for: making a million files would take longer than what is
// done with them.
class PhotoNames {
 public:
  explicit PhotoNames(std::string original) : _original(std::move(original)) { makeOriginal(); }
  void add(const std::string& path) {
    if (::link(_original.c_str(), path.c_str()) == 0) return;
    require(errno == EMLINK, "no file");
    makeOriginal();
    require(::link(_original.c_str(), path.c_str()) == 0, "no file");
  }

 private:
  void makeOriginal() const {
    ::unlink(_original.c_str());  // it lives on under the names that it has
    const int file = ::open(_original.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    require(file >= 0 && ::write(file, "photo", 5) == 5 && ::close(file) == 0, "no file");
  }
  const std::string _original;
};

// `where` becomes part of each line's name.
void measureCounting(Goals& goals, const QString& folder, const std::string& where) {
  const std::string target = folder.toStdString() + "/counted";
  PhotoNames names(folder.toStdString() + "/photo");
  int there = 0;
  measureGrowth(goals, "photos counted" + where, mostPhotos(), [&](int photos) {
    for (; there < photos; ++there) {
      const std::string person = target + "/Person " + std::to_string(there / kPhotosEach);
      if (there % kPhotosEach == 0) std::filesystem::create_directories(person);
      names.add(person + '/' + std::to_string(there) + ".JPG");
    }
    return [&target, photos] {
      FolderScan scan;
      PhotoCounts counts;
      const double taken =
          millisecondsOf([&] { counts = scan.scan(target, std::chrono::system_clock::now()); });
      const int people = photos / kPhotosEach;
      require(counts.folders().size() == static_cast<std::size_t>(people), "folders are missing");
      for (int person = 0; person < people; ++person)
        require(counts.ofName("Person " + std::to_string(person)) == kPhotosEach, "the counts are wrong");
      return taken;
    };
  });
  std::filesystem::remove_all(target);
}

// Whether exactly the photos 1 to `photos` are there.
bool allFiled(const QString& person, int photos) {
  using std::filesystem::directory_iterator;
  if (std::distance(directory_iterator(person.toStdString()), directory_iterator()) != photos) return false;
  for (int i = 1; i <= photos; ++i) {
    const QString path =
        person + QLatin1Char('/') + photoFileName(QStringLiteral("Bob"), i, QStringLiteral("JPG"));
    if (::access(QFile::encodeName(path).constData(), F_OK) != 0) return false;
  }
  return true;
}

// All of one person, so that the number to be given grows as well.
void measureFiling(Goals& goals, const QString& folder, const std::string& where) {
  measureGrowth(goals, "photos filed" + where, mostPhotos(), [&](int photos) {
    return [&folder, photos] {
      const QString downloads = folder + QStringLiteral("/downloads");
      const QString target = folder + QStringLiteral("/filed");
      require(QDir().mkpath(downloads) && QDir().mkpath(target), "no folder");
      PhotoNames names(folder.toStdString() + "/photo");
      const auto download = [&](int i) { return downloads + QStringLiteral("/IMG_%1.JPG").arg(i); };
      for (int i = 0; i < photos; ++i)
        names.add(download(i).toStdString());
      double taken = 0;
      {
        FilingSession session(target);
        taken = millisecondsOf([&] {
          for (int i = 0; i < photos; ++i)
            session.filer.handleDownloadedPath(download(i));
          require(session.filer.finishQueued(std::chrono::minutes(30)), "not filed in time");
        });
      }
      require(allFiled(target + QStringLiteral("/Bob"), photos), "photos are missing");
      require(std::filesystem::is_empty(downloads.toStdString()), "downloads were left");
      std::filesystem::remove_all(target.toStdString());
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

void measure(Goals& goals, const QString& folder) {
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  measureList(goals, folder + QStringLiteral("/home"));
  measureQueue(goals, folder + QStringLiteral("/queue"));
  const bool fits = ScratchFolder::memoryHasRoom(qint64{mostPhotos()} * 5 / 4);
  const ScratchFolder photos(fits ? ScratchFolder::Place::Memory : ScratchFolder::Place::Disk);
  const std::string where = fits ? ", in memory" : "";
  measureCounting(goals, photos.path(), where);
  measureFiling(goals, photos.path(), where);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
