// SPDX-License-Identifier: Apache-2.0
// Starts a process that edits and saves a list without end, kills it at a random moment, and checks that the
// store then holds the list as it was before or after the last edit. Again from there, as often as asked.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "core/base/PosixFiles.h"
#include "core/list/ListStore.h"

namespace ambrel {
namespace {

using Random = std::mt19937;

constexpr std::size_t kRowsAtFirst = 2000;
constexpr std::int64_t kLongestDelayMicroseconds = 20'000;

std::string someText(Random& random) {
  constexpr std::string_view kBytes = "abcdefghijklmnop ,\"\xc3\xa4";
  std::string text(1 + random() % 24, 'x');
  for (char& c : text)
    c = kBytes[random() % kBytes.size()];
  return text;
}

Row someone(Random& random) {
  return {someText(random), someText(random), std::to_string(random() % 50), random() % 5 == 0 ? "1" : ""};
}

std::vector<Row> firstList() {
  Random random(1);
  std::vector<Row> rows;
  while (rows.size() < kRowsAtFirst)
    rows.push_back(someone(random));
  return rows;
}

void edit(NameGrid& grid, Random& random) {
  const auto row = static_cast<std::int64_t>(random() % static_cast<std::size_t>(grid.rowCount() + 1));
  switch (random() % 8) {
    case 0:
      grid.insert(row, someone(random));
      break;
    case 1:
      grid.remove(row);
      break;
    case 2:
      grid.setMarker(!grid.markerForModelRow(row), row);
      break;
    case 3:
      grid.setBytes(row, Cell::Note, someText(random));
      break;
    default:
      grid.setCaptured(grid.capturedForModelRow(row) + 1, row);
  }
}

// The process that is to be killed: one byte to `reports` after each list that is in its file.
[[noreturn]] void editWithoutEnd(const QString& home, unsigned seed, int reports) {
  PosixFiles files;
  ListStore store(files, Locations::below(home));
  NameGrid grid;
  grid.replaceAll(store.load().value_or(std::vector<Row>()));
  Random random(seed);
  for (;;) {
    edit(grid, random);
    (void)store.save(grid);
    store.finishWriting();
    const bool saved = !store.isUnsaved();
    // A write to a pipe that nobody reads ends the process, so it never outlives its parent.
    if (!saved || write(reports, "s", 1) != 1) _exit(3);
  }
}

class Killer {
 public:
  explicit Killer(const char* program)
      : _program(program),
        _store(_files, Locations::below(_home.path())),
        _list(firstList()),
        _random(std::random_device{}()) {
    NameGrid grid;
    grid.replaceAll(_list);
    if (!_store.save(grid)) std::abort();
  }

  // False when the store is neither the list before nor after the last edit.
  bool startAndKill() {
    const auto seed = static_cast<unsigned>(_random());
    const std::size_t saves = savesUntilKilled(seed);
    _saves += saves;
    const std::vector<Row> found = _store.load().value_or(std::vector<Row>());
    NameGrid grid;
    grid.replaceAll(_list);
    Random random(seed);
    for (std::size_t i = 0; i < saves; ++i)
      edit(grid, random);
    const bool isBefore = found == grid.rows();
    edit(grid, random);
    const bool isAfter = found == grid.rows();
    _list = found;
    if (!isBefore && isAfter) ++_after;
    if (!isBefore && !isAfter)
      std::printf("violation: seed %u, %zu saves, %zu rows\n", seed, saves, found.size());
    clearTemporaryFiles();
    return isBefore || isAfter;
  }

  void report() const {
    std::printf(
        "%zu saves returned; %zu lists were ahead of the last save that returned; %zu kills while writing\n",
        _saves, _after, _interrupted);
  }

 private:
  std::size_t savesUntilKilled(unsigned seed) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
      close(ends[0]);
      execl(_program, _program, "--edit", QFile::encodeName(_home.path()).constData(),
            std::to_string(seed).c_str(), std::to_string(ends[1]).c_str(), nullptr);
      _exit(2);
    }
    close(ends[1]);
    // Half of the kills strike anywhere from the start on, half while the list is being edited.
    char reports[4096];
    std::size_t saves = 0;
    if (_random() % 2 == 0)
      saves += static_cast<std::size_t>(std::max<ssize_t>(0, read(ends[0], reports, 1)));
    std::this_thread::sleep_for(std::chrono::microseconds(_random() % kLongestDelayMicroseconds));
    kill(child, SIGKILL);
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFSIGNALED(status)) std::abort();
    for (ssize_t count = 0; (count = read(ends[0], reports, sizeof reports)) > 0;)
      saves += static_cast<std::size_t>(count);
    close(ends[0]);
    return saves;
  }

  void clearTemporaryFiles() {
    QDir folder = QFileInfo(_store.gridStorePath()).dir();
    const QStringList left = folder.entryList({QStringLiteral(".*")}, QDir::Files | QDir::Hidden);
    _interrupted += static_cast<std::size_t>(left.size());
    for (const QString& name : left)
      folder.remove(name);
  }

  const char* _program;
  QTemporaryDir _home;
  PosixFiles _files;
  ListStore _store;
  std::vector<Row> _list;
  Random _random;
  std::size_t _saves = 0;
  std::size_t _after = 0;
  std::size_t _interrupted = 0;
};

}  // namespace
}  // namespace ambrel

int main(int argc, char** argv) {
  if (argc == 5 && std::strcmp(argv[1], "--edit") == 0) {
    ambrel::editWithoutEnd(QFile::decodeName(argv[2]), static_cast<unsigned>(std::stoul(argv[3])),
                           std::atoi(argv[4]));
  }
  const int cases = argc == 2 ? std::atoi(argv[1]) : 0;
  if (cases <= 0) {
    std::fprintf(stderr, "usage: %s CASES\n", argv[0]);
    return 2;
  }
  ambrel::Killer killer(argv[0]);
  int violations = 0;
  for (int i = 0; i < cases; ++i)
    violations += killer.startAndKill() ? 0 : 1;
  killer.report();
  std::printf("%d cases, %d violations\n", cases, violations);
  return violations == 0 ? 0 : 1;
}
