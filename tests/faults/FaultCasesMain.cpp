// SPDX-License-Identifier: Apache-2.0
// Files four photos over and over, each time with a fault at another system call, starts again without one,
// and checks that nothing is lost. Its last line counts the cases and the violations.
#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "faults/FaultRunner.h"

namespace ambrel::faults {
namespace {

using std::chrono::steady_clock;

constexpr std::size_t kCasesWithCamera = 120;

struct Bundles {
  QString scripted = QStringLiteral(AMBREL_SCRIPTED_BUNDLE);
  QString real = QStringLiteral(AMBREL_REAL_BUNDLE);
};

struct Options {
  bool list = false;
  bool flushes = false;
  std::string only;        // a case's name or number
  std::size_t sample = 0;  // so many cases, spread over all of them; 0: all
  int lanes = 2;
};

struct Result {
  bool done;
  bool hit;
  std::int32_t milliseconds;
  std::array<char, 400> wrong;  // empty: all is well
  Call at;
};

QString scratchFolder() {
  // Kills and errors are the same there, and flushes cost nothing.
  const bool inMemory = ::access("/dev/shm", W_OK) == 0;
  return (inMemory ? QStringLiteral("/dev/shm") : QDir::tempPath()) + QStringLiteral("/ambrel-faults-XXXXXX");
}

std::vector<Case> allCases(Runner& runner, QStringList& wrong) {
  std::vector<Case> cases;
  for (const Task task : {Task::Shoot, Task::Burst}) {
    for (const Volume volume : {Volume::Plain, Volume::Across, Volume::NoReplace, Volume::NoLink}) {
      wrong += runner.dryRun(task, volume).wrong;
      const std::vector<Case> found = casesFor(task, volume, runner.session(), runner.restart());
      cases.insert(cases.end(), found.begin(), found.end());
    }
  }
  wrong += runner.dryRun(Task::Camera, Volume::Plain).wrong;
  const std::vector<Case> found = casesWithCamera(runner.session(), kCasesWithCamera);
  cases.insert(cases.end(), found.begin(), found.end());
  return cases;
}

std::vector<Case> spread(const std::vector<Case>& cases, std::size_t count) {
  if (count == 0 || count >= cases.size()) return cases;
  std::vector<Case> sample;
  for (std::size_t i = 0; i < count; ++i)
    sample.push_back(cases[i * cases.size() / count]);
  return sample;
}

void runLane(const std::vector<Case>& cases, std::size_t first, std::size_t step, const QString& folder,
             const Bundles& bundles, Result* results) {
  Runner runner(folder, bundles.scripted, bundles.real);
  for (std::size_t i = first; i < cases.size(); i += step) {
    const auto started = steady_clock::now();
    const Outcome outcome = runner.run(cases[i]);
    Result& result = results[i];
    result.hit = outcome.hit;
    result.at = outcome.at;
    result.milliseconds = static_cast<std::int32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - started).count());
    std::strncpy(result.wrong.data(), outcome.wrong.join(QStringLiteral("; ")).toUtf8().constData(),
                 result.wrong.size() - 1);
    result.done = true;
  }
}

struct Row {
  int cases = 0;
  int hits = 0;
  int violations = 0;
  std::int64_t milliseconds = 0;
  std::int32_t slowest = 0;
};

std::string groupOf(const Case& c) {
  std::string group = std::string(c.task == Task::Camera  ? "real worker and camera "
                                  : c.task == Task::Burst ? "burst "
                                                          : "one by one ") +
                      nameOf(c.plan.volume);
  group.resize(34, ' ');
  group += c.plan.side == Side::Looking ? "look " : "";
  group += c.killAgainAt != 0 ? "kill twice" : nameOf(c.plan.kind);
  return group;
}

int printTable(const std::vector<Case>& cases, const Result* results, double seconds) {
  std::map<std::string, Row> rows;
  Row sum;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    for (Row* row : {&rows[groupOf(cases[i])], &sum}) {
      ++row->cases;
      row->hits += results[i].hit ? 1 : 0;
      row->violations += results[i].wrong[0] != 0 || !results[i].done ? 1 : 0;
      row->milliseconds += results[i].milliseconds;
      row->slowest = std::max(row->slowest, results[i].milliseconds);
    }
  }
  rows["all"] = sum;
  std::printf("%-52s %7s %9s %11s %8s %11s\n", "session, volume, fault", "cases", "injected", "violations",
              "seconds", "slowest ms");
  for (const auto& [name, row] : rows) {
    std::printf("%-52s %7d %9d %11d %8.1f %11d\n", name.c_str(), row.cases, row.hits, row.violations,
                static_cast<double>(row.milliseconds) / 1000, row.slowest);
  }
  std::printf("%.0f s, %.1f cases a second\n", seconds, static_cast<double>(cases.size()) / seconds);
  return sum.violations;
}

void printViolations(const std::vector<Case>& cases, const Result* results) {
  for (std::size_t i = 0; i < cases.size(); ++i) {
    if (results[i].done && results[i].wrong[0] == 0) continue;
    std::printf("violation: %s at %s %s %s\n    %s\n", nameOf(cases[i]).c_str(), results[i].at.name.data(),
                results[i].at.path.data(), results[i].at.path2.data(),
                results[i].done ? results[i].wrong.data() : "the case did not end");
  }
}

int runAll(const std::vector<Case>& cases, const Options& options, const QString& folder,
           const Bundles& bundles) {
  const std::size_t bytes = sizeof(Result) * cases.size();
  auto* const results =
      static_cast<Result*>(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  if (results == MAP_FAILED) return 2;
  const auto started = steady_clock::now();
  for (int lane = 0; lane < options.lanes; ++lane) {
    if (fork() != 0) continue;
    runLane(cases, static_cast<std::size_t>(lane), static_cast<std::size_t>(options.lanes),
            folder + QStringLiteral("/lane%1").arg(lane), bundles, results);
    ::_exit(0);
  }
  while (wait(nullptr) > 0)
    ;
  const double seconds = std::chrono::duration<double>(steady_clock::now() - started).count();
  printViolations(cases, results);
  const int violations = printTable(cases, results, seconds);
  std::printf("%zu cases, %d violations\n", cases.size(), violations);
  return violations == 0 ? 0 : 1;
}

int runOne(const Case& c, const QString& folder, const Bundles& bundles) {
  Runner runner(folder, bundles.scripted, bundles.real);
  const Outcome outcome = runner.run(c);
  const std::size_t logged = std::min<std::size_t>(runner.session().logged, kLogEntries);
  for (std::size_t i = 0; i < logged; ++i) {
    const Call& call = runner.session().log[i];
    std::printf("%4zu  t%-3d %-11s %-5s %s %s\n", i, call.thread, call.name.data(),
                call.error > 0        ? nameOfError(call.error)
                : call.error == kNote ? "note"
                                      : "",
                call.path.data(), call.path2.data());
  }
  for (const QString& line : outcome.said)
    std::printf("      %s\n", line.toUtf8().constData());
  std::printf("%s: %s %s %s\n", nameOf(c).c_str(), outcome.hit ? "met at" : "not met", outcome.at.name.data(),
              outcome.at.path.data());
  for (const QString& line : outcome.wrong)
    std::printf("violation: %s\n", line.toUtf8().constData());
  return outcome.wrong.isEmpty() ? 0 : 1;
}

bool parse(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    const bool hasValue = i + 1 < argc;
    if (name == "--list") {
      options.list = true;
    } else if (name == "--flushes") {
      options.flushes = true;
    } else if (name == "--case" && hasValue) {
      options.only = argv[++i];
    } else if (name == "--sample" && hasValue) {
      options.sample = static_cast<std::size_t>(std::atoi(argv[++i]));
    } else if (name == "--lanes" && hasValue) {
      options.lanes = std::max(1, std::atoi(argv[++i]));
    } else {
      return false;
    }
  }
  return true;
}

int lintAll(const QString& folder, const Bundles& bundles) {
  Runner runner(folder, bundles.scripted, bundles.real);
  std::size_t wrong = 0;
  for (const Task task : {Task::Shoot, Task::Burst}) {
    for (const Volume volume : {Volume::Plain, Volume::Across, Volume::NoReplace, Volume::NoLink}) {
      const LintResult result = runner.lint(task, volume);
      std::printf("%-10s %-20s %3d renames, %3d flushes, %2d names relied on\n",
                  task == Task::Burst ? "burst" : "one by one", nameOf(volume), result.renames,
                  result.flushes, result.relied);
      for (const std::string& sentence : result.wrong)
        std::printf("violation: %s\n", sentence.c_str());
      // Four photos filed and five copied, or the log says nothing.
      wrong += result.wrong.size() + (result.relied < 9 ? 1 : 0);
    }
  }
  std::printf("flushes: %zu violations\n", wrong);
  return wrong == 0 ? 0 : 1;
}

int work(const Options& options) {
  QTemporaryDir folder(scratchFolder());
  const Bundles bundles;
  if (const auto named = caseNamed(options.only)) return runOne(*named, folder.filePath("one"), bundles);
  if (options.flushes) return lintAll(folder.filePath("lint"), bundles);
  QStringList wrong;
  std::vector<Case> cases;
  {
    Runner runner(folder.filePath("dry"), bundles.scripted, bundles.real);
    cases = allCases(runner, wrong);
  }
  for (const QString& line : wrong)
    std::printf("violation without a fault: %s\n", line.toUtf8().constData());
  if (!wrong.isEmpty()) return 1;
  if (!options.only.empty()) {
    const auto number = static_cast<std::size_t>(std::atoll(options.only.c_str()));
    if (number < 1 || number > cases.size()) return 2;
    return runOne(cases[number - 1], folder.filePath("one"), bundles);
  }
  if (options.list) {
    for (std::size_t i = 0; i < cases.size(); ++i)
      std::printf("%zu %s\n", i + 1, nameOf(cases[i]).c_str());
    return 0;
  }
  return runAll(spread(cases, options.sample), options, folder.path(), bundles);
}

}  // namespace
}  // namespace ambrel::faults

int main(int argc, char** argv) {
  ambrel::faults::Options options;
  if (!ambrel::faults::parse(argc, argv, options)) {
    std::fprintf(stderr,
                 "usage: %s [--list] [--flushes] [--case NAME|NUMBER] [--sample COUNT] [--lanes COUNT]\n",
                 argv[0]);
    return 2;
  }
  return ambrel::faults::work(options);
}
