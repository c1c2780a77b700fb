// SPDX-License-Identifier: Apache-2.0
// How long the list store takes to write and to read, and a large list to import.
#include <QFile>
#include <QSaveFile>
#include <QTextStream>
#include <fcntl.h>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/base/Text.h"
#include "core/list/GridText.h"
#include "core/list/ListStore.h"
#include "core/list/NameList.h"
#include "support/Benchmark.h"
#include "support/Turns.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = 100'000;
constexpr int kRounds = 31;
constexpr int kImportedRows = 3'000'000;
constexpr double kMegabyte = 1e6;

std::vector<Row> peopleWithNotes() {
  std::vector<Row> rows;
  for (int i = 0; i < kRows; ++i) {
    const std::string number = std::to_string(i);
    rows.push_back({"Person Number " + number, i % 3 == 0 ? "front row, left " + number : "left early",
                    std::to_string(i % 12), i % 40 == 0 ? "1" : ""});
  }
  return rows;
}

// The real Files, with a note of any flush on the thread that asks for the save.
class FlushWatch : public PosixFiles {
 public:
  Result<void> flush(const QString& path) override {
    if (std::this_thread::get_id() == _main) flushedOnMain = true;
    return PosixFiles::flush(path);
  }
  bool flushedOnMain = false;

 private:
  const std::thread::id _main = std::this_thread::get_id();
};

void writeAndFlush(const QString& path, const QByteArray& bytes) {
  const int file = open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  require(write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size(),
          "short write");
  require(fsync(file) == 0 && close(file) == 0, "flush failed");
}

void writeWithTextStream(const QString& path, const std::vector<Row>& rows) {
  QSaveFile file(path);
  require(file.open(QIODevice::WriteOnly), "save file");
  QTextStream out(&file);
  for (const Row& row : rows)
    out << std_to_ns(row[0]) << ',' << std_to_ns(row[1]) << ',' << std_to_ns(row[2]) << ','
        << std_to_ns(row[3]) << '\n';
  out.flush();
  require(file.commit(), "save file");
}

void measureStore(Goals& goals, const QString& folder) {
  NameGrid grid;
  grid.replaceAll(peopleWithNotes());
  const QByteArray ready = writeGrid(grid.rows(), GridColumns::All);
  FlushWatch files;
  const Locations locations = Locations::below(folder);
  ListStore store(files, locations);
  int change = 0;
  std::vector<double> onMain;
  const Turn limit = [&] {
    return millisecondsOf([&] { writeAndFlush(folder + QStringLiteral("/limit"), ready); });
  };
  const Turn whole = [&] {
    grid.setCaptured(++change, kRows / 2);
    return millisecondsOf([&] {
      onMain.push_back(millisecondsOf([&] { require(store.save(grid), "store not saved"); }));
      store.finishFlush();
    });
  };
  const Turn textStream = [&] {
    return millisecondsOf([&] { writeWithTextStream(folder + QStringLiteral("/peer"), grid.rows()); });
  };
  const Turn load = [&] {
    std::optional<std::vector<Row>> loaded;
    const double taken = millisecondsOf([&] { loaded = store.load(); });
    require(loaded == grid.rows(), "the store does not hold the list");
    return taken;
  };
  whole();
  onMain.clear();
  const auto taken = inTurns(kRounds, {limit, whole, textStream, load});
  std::printf("list store, %d rows, %.1f MB\n", kRows, static_cast<double>(ready.size()) / kMegabyte);
  goals.atMostTimes("one row changed, store written and flushed", taken[1], "ready buffer + flush", taken[0],
                    1.3);
  goals.atMost("flushes on the main thread", files.flushedOnMain ? 1 : 0, 0, "");
  goals.mention("  of that on the main thread", onMain);
  goals.mention("  QTextStream + QSaveFile", taken[2]);
  goals.atMost("store loaded", taken[3], 60);
}

QByteArray largeImport() {
  QByteArray bytes("Name,Class\n");
  for (int i = 0; i < kImportedRows; ++i)
    bytes += "Person Number " + QByteArray::number(1'000'000 + i) + ",class 3a, x\r\n";
  return bytes;
}

struct Import {
  double processorMilliseconds = 0;  // what other programs take meanwhile does not count
  double peakMegabytes = 0;
};

// In a process of its own, so that the peak of its memory is that of the import.
Import measureImport(const QString& folder, const QString& file) {
  int ends[2];
  require(pipe(ends) == 0, "pipe");
  const pid_t child = fork();
  if (child == 0) {
    PosixFiles files;
    SystemClock clock;
    StatusLine statusLine(clock, [] { return Readiness{}; });
    const Locations locations = Locations::below(folder);
    Preferences preferences(locations.preferencesFile);
    ListStore store(files, locations);
    NameList list(store, preferences, statusLine);
    const double taken = processorMillisecondsOf([&] { list.importFirstColumnFromCSV(file); });
    require(list.grid().rowCount() == kImportedRows &&
                list.filteredRows().size() == static_cast<std::size_t>(kImportedRows) &&
                list.grid().bytes(kImportedRows - 1, Cell::Name) == "Person Number 3999999",
            "names are missing");
    require(write(ends[1], &taken, sizeof taken) == sizeof taken, "pipe");
    _exit(0);
  }
  Import result;
  require(read(ends[0], &result.processorMilliseconds, sizeof(double)) == sizeof(double),
          "the import failed");
  rusage usage = {};
  int status = 0;
  require(wait4(child, &status, 0, &usage) == child && status == 0, "the import failed");
  close(ends[0]);
  close(ends[1]);
  result.peakMegabytes = static_cast<double>(usage.ru_maxrss) * 1024 / kMegabyte;
  return result;
}

double linesIntoMemory(const QString& path) {
  return processorMillisecondsOf([&] {
    std::ifstream in(QFile::encodeName(path).toStdString());
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
      lines.push_back(line);
    require(lines.size() == kImportedRows + 1, "peer lost lines");
  });
}

void measureImports(Goals& goals, const QString& folder) {
  const QString path = folder + QStringLiteral("/large.csv");
  double megabytes = 0;
  {
    QFile file(path);
    const QByteArray bytes = largeImport();
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "no large file");
    megabytes = static_cast<double>(bytes.size()) / kMegabyte;
  }
  std::vector<double> times;
  double peak = 0;
  for (int round = 0; round < 5; ++round) {
    const Import import = measureImport(folder, path);
    times.push_back(import.processorMilliseconds);
    peak = std::max(peak, import.peakMegabytes);
  }
  std::printf("import, %d rows, %.1f MB\n", kImportedRows, megabytes);
  goals.atMost("imported and shown, processor time", times, 1500);
  goals.mention("  every line into a std::string", linesIntoMemory(path));
  goals.atMostTimes("peak of memory", peak, "file", megabytes, 6, "MB");
}

void measure(Goals& goals, const QString& folder) {
  measureImports(goals, folder);
  measureStore(goals, folder);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
